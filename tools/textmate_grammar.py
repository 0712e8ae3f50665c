"""The TextMate grammar, which write_grammar.py fills with the words of the language.

A statement is read as the assembler reads it: a label in the first column, an operation that ends
at a blank, an operand that ends at a blank too, and then text that is ignored. What the assembler
would reject is marked as invalid where one line is enough to tell.
"""

import re

# Blanks in the assembler's sense: everything but the printing ASCII characters.
BLANK = r"[^!-\x7F]"
NONBLANK = r"[!-\x7F]"
WORD_END = rf"(?!{NONBLANK})"
# What ends no number, so that it is read as a digit, if a faulty one.
DIGIT = r"""["#$'0-9?@A-Z\\_`a-z\x7F]"""
NO_DIGIT = rf"(?!{DIGIT})"
# At most 128 characters; a character that is not ASCII right behind makes it no name.
NAME = r"(?>[A-Za-z_][A-Za-z0-9_$.]{0,127})(?![^\x00-\x7F])"
NO_NAME = "(?![A-Za-z0-9_])"
INDEX = rf"(?i:x|y){NO_NAME}"
# Behind an operand "%" is the remainder, elsewhere it begins a binary number.
BEHIND_OPERAND = r"(?<=[A-Za-z0-9_$.')])"

# Scopes that several rules give.
COMMA_SCOPE = "punctuation.separator.comma"
REGISTER_SCOPE = "variable.language.register"
STEP_SCOPE = "keyword.operator.step"


def scope(name):
    return f"{name}.szirpa"


def match(pattern, name=None, captures=()):
    """A rule for one token; captures are scopes for the groups of the pattern, in their order."""
    rule = {"match": pattern}
    if name:
        rule["name"] = scope(name)
    if captures:
        rule["captures"] = numbered(captures)
    return rule


def region(begin, end, patterns, name=None, captures=()):
    rule = {"begin": begin, "end": end, "patterns": patterns}
    if name:
        rule["name"] = scope(name)
    if captures:
        rule["beginCaptures"] = numbered(captures)
    return rule


def numbered(scopes):
    return {str(index): {"name": scope(name)} for index, name in enumerate(scopes, 1)}


def include(*names):
    return [{"include": f"#{name}"} for name in names]


def any_of(words):
    return "(?i:" + "|".join(re.escape(word) for word in words) + ")" + WORD_END


# ---- Expressions ----

ILLEGAL_CHARACTER = match(NONBLANK, "invalid.illegal.character")
COMMA = match(",", COMMA_SCOPE)


def numbers():
    mark = ["punctuation.definition.numeric"]
    return [
        match(rf"(\$)[0-9A-Fa-f]+{NO_DIGIT}", "constant.numeric.hexadecimal", mark),
        match(rf"{BEHIND_OPERAND}%", "keyword.operator.arithmetic"),
        match(rf"(%)[01]+{NO_DIGIT}", "constant.numeric.binary", mark),
        match(rf"[0-9]+{NO_DIGIT}", "constant.numeric.decimal"),
        match(rf"[$%0-9]{DIGIT}*", "invalid.illegal.number"),
    ]


def operators():
    return [
        match(r"==|!=|<=|>=", "keyword.operator.comparison"),
        match(r"<<|>>", "keyword.operator.bitwise"),
        match(r"\|\||&&|!", "keyword.operator.logical"),
        match(r"[|&^~]", "keyword.operator.bitwise"),
        match(r"[+\-*/]", "keyword.operator.arithmetic"),
        # Read by the assembler, but without a meaning.
        match(r"[<>]", "invalid.illegal.operator"),
        match(r"[()]", "punctuation.section.group"),
    ]


def expression(register):
    return [
        *numbers(),
        match(register, "invalid.illegal.reserved-word"),
        match(NAME, "variable.other"),
        *operators(),
    ]


def expression_rules(register):
    return {
        "character": {"patterns": [match("'.'", "constant.character")]},
        # A conditional line is cut at blanks before its expression is read.
        "nonblank-character": {"patterns": [match(rf"'{NONBLANK}'", "constant.character")]},
        "expression": {"patterns": expression(register)},
        "index": {"patterns": index(register)},
    }


def register_pair(register):
    captures = [REGISTER_SCOPE, COMMA_SCOPE, REGISTER_SCOPE]
    return match(rf"\G({register})(,)({register})", captures=captures)


def index(register):
    """What an operand has besides an expression: registers, and the signs of their steps."""
    comma, name, step = COMMA_SCOPE, REGISTER_SCOPE, STEP_SCOPE
    return [
        match(rf"\G(,)([+\-])({INDEX})", captures=[comma, step, name]),
        match(rf"\G(,)({INDEX})([+\-])", captures=[comma, name, step]),
        match(rf"\G(?i:(a)(,)(x|y)){NO_NAME}", captures=[name, comma, name]),
        # Without an offset there is no index: it is written "0,X".
        match(rf"\G,{register}", "invalid.illegal.operand"),
        match(rf"(,)((?i:x|y|sp){NO_NAME})", captures=[comma, name]),
    ]


# ---- Operand fields, each of which begins where its operation and the blanks have ended ----


def operand(patterns):
    return region(rf"\G(?={NONBLANK})", WORD_END, [*patterns, ILLEGAL_CHARACTER])


def value(patterns):
    """An expression; nobody looks at what follows its end."""
    start = rf"\G(?![,;])(?={NONBLANK})"
    return region(start, rf"{WORD_END}|(?=[,;])", [*patterns, ILLEGAL_CHARACTER])


def immediate(patterns):
    mark = ["keyword.operator.immediate"]
    return region(r"\G(#)", WORD_END, [*patterns, ILLEGAL_CHARACTER], captures=mark)


def operand_rules(register):
    values = include("character", "expression")
    conditional_value = include("nonblank-character", "expression")
    return {
        "operand": {
            "patterns": [immediate(values), operand([*include("index"), *values])],
        },
        "registers": {"patterns": [register_pair(register), illegal_operand()]},
        "items": operand([COMMA, *values]),
        "size": operand(values),
        "value": value(values),
        "test": value(conditional_value),
        "symbol": match(r"\G[A-Za-z0-9_]+", "variable.other"),
        "text": {"patterns": [string(), unclosed_string(), illegal_operand()]},
        "name": match(rf"\G{NONBLANK}+", "variable.other"),
        "definition": {"patterns": [illegal_macro(), definition()]},
        "message": match(r"\G.+", "string.unquoted.message"),
    }


def string():
    """A string; its first character may be a quote, which then does not close it."""
    escapes = [match(r"\\[bnrt\\\"'0-9]", "constant.character.escape")]
    rule = region(
        r'\G(")(\\.|[^\\])(?=(?:\\.|[^\\"])*")', '"', escapes, "string.quoted.double"
    )
    rule["beginCaptures"] = {
        "1": {"name": scope("punctuation.definition.string.begin")},
        "2": {"patterns": escapes},
    }
    rule["endCaptures"] = {"0": {"name": scope("punctuation.definition.string.end")}}
    return rule


def unclosed_string():
    return match(r'\G".*', "invalid.illegal.unclosed-string")


def illegal_operand():
    return match(rf"\G(?!;){NONBLANK}+", "invalid.illegal.operand")


def illegal_macro():
    return match(rf"\G(?={NONBLANK}*[()]){NONBLANK}+", "invalid.illegal.macro")


def definition():
    return region(
        rf"\G({NONBLANK}+)[ \t]*", "$", include("comment", "test", "ignored"),
        captures=["entity.name.constant"],
    )


# ---- Statements ----


def statement(words, name, *fields):
    """An operation up to the end of its line."""
    return region(
        rf"\G({any_of(words)})[ \t]*", "$", include("comment", *fields, "ignored"), captures=[name]
    )


def operation(instructions, directives):
    mnemonic = "keyword.mnemonic"
    directive = "keyword.directive"
    fields = {"equate": "value"}
    return [
        *include("comment"),
        statement(instructions["operand"], mnemonic, "operand"),
        statement(instructions["branch"], f"{mnemonic}.branch", "operand"),
        statement(instructions["pair"], mnemonic, "registers"),
        statement(instructions["inherent"], mnemonic),
        *(
            statement(words, directive, fields.get(kind, kind))
            for kind, words in directives.items()
        ),
        match(rf"\G{NONBLANK}+", "invalid.illegal.mnemonic"),
    ]


def conditional(words, *fields):
    return region(
        rf"^{BLANK}*(#{BLANK}*{any_of(words)})[ \t]*",
        "$",
        include(*fields, "comment", "ignored"),
        "meta.preprocessor",
        ["keyword.control.conditional"],
    )


def conditionals_of(words):
    fields = {"plain": []}
    return [
        *(conditional(found, *fields.get(kind, [kind])) for kind, found in words.items()),
        # The if with an expression has two hashes.
        match(rf"^[ \t]*(#{BLANK}*(?i:if){WORD_END})", captures=["invalid.illegal.conditional"]),
    ]


def line_rules(directives):
    equate = any_of(directives["equate"])
    colon = "punctuation.separator.label"
    label = rf"^({NAME})(:)?"
    return {
        "debugger-line": region(
            r"^(\.stab)", r"(?<![+\n])$", [], "meta.debugger", ["keyword.directive.debugger"]
        ),
        "constant-line": region(
            rf"{label}[ \t]*(?={equate})", "$", include("operation"),
            captures=["entity.name.constant", colon],
        ),
        "label-line": region(
            rf"{label}[ \t]*", "$", include("operation"), captures=["entity.name.label", colon]
        ),
        "line": region(r"^[ \t]+", "$", include("operation")),
        "illegal-label": match(rf"^{NONBLANK}+", "invalid.illegal.label"),
        "line-comment": comment("^"),
        "comment": comment(""),
        # Behind a complete statement everything is ignored, with or without a mark.
        "ignored": match(rf"(?!;){NONBLANK}.*", "comment.line.ignored"),
    }


def comment(anchor):
    return match(
        rf"{anchor}(;).*", "comment.line.semicolon", ["punctuation.definition.comment"]
    )


def grammar(instructions, directives, conditionals, registers):
    register = f"(?i:{'|'.join(registers).lower()}){NO_NAME}"
    repository = {
        **line_rules(directives),
        "conditional": {"patterns": conditionals_of(conditionals)},
        "operation": {"patterns": operation(instructions, directives)},
        **operand_rules(register),
        **expression_rules(register),
    }
    order = ["line-comment", "conditional", "debugger-line", "constant-line", "label-line", "line"]
    return {
        "information_for_contributors": [
            "Written by tools/write_grammar.py from the program's own tables."
        ],
        "name": "ZIRPA Assembler",
        "scopeName": "source.szirpa",
        "patterns": include(*order, "illegal-label"),
        "repository": repository,
    }
