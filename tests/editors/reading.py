"""A plain reading of source lines, against which the grammar is held.

It tells where the first tokens of a line stand and what they are, by splitting the line at blanks.
"""

import re

from zirpa_tables import MACRO_PURE, OPTAB, PSEUDO_ZIRPA

INHERENT = 0
BRANCH = 2
VALUES = {"ORG", "EQU"}
DIRECTIVES = {word.decode().upper() for word in PSEUDO_ZIRPA}
CONDITIONALS = {word.decode().upper() for word in MACRO_PURE}

LABEL = re.compile(r"[A-Za-z_][A-Za-z0-9_.$]{0,127}")
WORD = re.compile(r"[^ \t]+")
OPERAND = re.compile(r"(?:'.'|[^ \t])*")
STRING = re.compile(r'"(?:\\.|[^\\])(?:\\.|[^\\"])*"')
CONDITIONAL = re.compile(r"([ \t]*)#[ \t]*([^ \t]+)")


def is_plain(text):
    """Lines of printing characters, blanks and tabs, short enough to be one line."""
    return len(text) < 4000 and all(char == "\t" or " " <= char <= "~" for char in text)


def rest_of_line(text, position):
    """What stands behind a complete statement: a comment, with or without its mark."""
    found = WORD.search(text, position)
    if found is None:
        return []
    kind = "comment.line.semicolon" if found[0][0] == ";" else "comment.line.ignored"
    return [(found.start(), kind)]


def operand_end(name, text, position):
    """The end of the operand field; None where its faults make it hard to tell."""
    if name == "FCS":
        found = STRING.match(text, position)
        return found.end() if found else None
    operand = OPERAND.match(text, position)
    if ";" in re.sub("'.'", "", operand[0]) or name in ("END", "TFR", "EXG"):
        return None
    if name in VALUES and "," in re.sub("'.'", "", operand[0]):
        return None
    return operand.end()


def operation(text, position):
    """The operation at a position behind blanks, and the comment behind its operand."""
    # No blank is needed behind a label that a colon or its greatest length ends.
    found = WORD.search(text, position)
    if found is None:
        return []
    name = found[0].upper()
    row = OPTAB.get(name.encode())
    if found[0][0] == ";":
        return [(found.start(), "comment.line.semicolon")]
    if row is None and name not in DIRECTIVES:
        return [(found.start(), "invalid.illegal.mnemonic")]
    kind = "keyword.directive" if row is None else "keyword.mnemonic"
    if row is not None and row[2] == BRANCH:
        kind = "keyword.mnemonic.branch"
    tokens = [(found.start(), kind)]
    operand = WORD.search(text, found.end())
    if operand is None:
        return tokens
    if operand[0][0] == ";" or (row is not None and row[2] == INHERENT):
        return tokens + rest_of_line(text, operand.start())
    end = operand_end(name, text, operand.start())
    return tokens if end is None else tokens + rest_of_line(text, end)


def statement(text):
    if text[0] in " \t":
        return operation(text, 0)
    label = LABEL.match(text)
    if label is None:
        return [(0, "invalid.illegal.label")]
    position = label.end() + text.startswith(":", label.end())
    behind = operation(text, position)
    is_constant = re.match(r"[ \t]*EQU(?![^ \t])", text[position:], re.IGNORECASE)
    return [(0, "entity.name.constant" if is_constant else "entity.name.label"), *behind]


def read_line(text):
    """The first tokens of a line: their columns and scopes."""
    conditional = CONDITIONAL.match(text)
    if not text.strip(" \t"):
        return []
    if text[0] == ";":
        return [(0, "comment.line.semicolon")]
    if conditional is not None and conditional[2].upper() in CONDITIONALS:
        return [(len(conditional[1]), "keyword.control.conditional")]
    if conditional is not None and conditional[2].upper() == "IF":
        return [(len(conditional[1]), "invalid.illegal.conditional")]
    return statement(text)


def read_source(lines):
    """The tokens of all lines that are plain; None for the others."""
    readings = []
    debugging = False
    for text in lines:
        continued = debugging
        debugging = (continued or text.startswith(".stab")) and text.endswith("+")
        if continued or text.startswith(".stab"):
            readings.append([(0, "meta.debugger")] if text else [])
        else:
            readings.append(read_line(text) if is_plain(text) else None)
    return readings


def assembled_part(lines):
    """How many lines stand ahead of all conditional words and of the end: those are assembled."""
    for index, text in enumerate(lines):
        operations = [word.upper() for word in text.split()[:2]]
        if text.lstrip(" \t").startswith("#") or "END" in operations:
            return index
    return len(lines)
