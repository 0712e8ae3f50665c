#!/usr/bin/env python3
"""Writes what the editors know of the language's words from the program's own tables.

    program_words | tools/write_grammar.py editors web/page

The words are what tools/program_words.cpp prints. Written are the TextMate grammar and the words of
the page, as a whole, and the words of the Vim syntax and of the Emacs mode.
"""

import collections
import json
import pathlib
import sys
import textwrap

from textmate_grammar import grammar
from write_instructions import instructions_of, split_by_kind

# How the rest of a line after a directive or a conditional word is read.
DIRECTIVE_KINDS = {
    "org": "value",
    "equ": "equate",
    "rmb": "size",
    "fcs": "text",
    "end": "symbol",
}
CONDITIONAL_KINDS = {
    "#if": "test",
    "ifdef": "name",
    "ifndef": "name",
    "elif": "name",
    "define": "definition",
    "else": "plain",
    "endif": "plain",
    "error": "message",
}

BEGIN = "Written by tools/write_grammar.py: begin\n"
END = "Written by tools/write_grammar.py: end\n"
VIM_CONTINUED = "      \\"
VIM_WIDTH = 92
EMACS_WIDTH = 90
# A hash counts only in front of a conditional word.
VIM_HASH = r"/^\s*#\s*\ze"


def directive_kind(word):
    return DIRECTIVE_KINDS.get(word, "items")  # expressions with commas between them


def words_by_kind(words, kind_of):
    """The words by the way in which the rest of their line is read."""
    found = collections.defaultdict(list)
    for word in words:
        found[kind_of(word)].append(word)
    return found


def mnemonics_by_kind(words):
    return {
        kind: sorted(name.lower() for name in instructions)
        for kind, instructions in split_by_kind(instructions_of(words)).items()
    }


def vim_lines(start, words):
    """The alternatives of a pattern, over as many continued lines as they need."""
    lines = [rf"{VIM_CONTINUED} {start}\%({words[0]}"]
    for word in words[1:]:
        piece = rf"\|{word}"
        if len(lines[-1]) + len(piece) > VIM_WIDTH:
            lines.append(VIM_CONTINUED)
        lines[-1] += piece
    return lines


def vim_match(group, start, words, following):
    """A match for words that end at a blank, and what may follow them."""
    lines = [f"syn match {group}", *vim_lines(start, words)]
    lines[-1] += r"\)[!-~]\@!/"
    lines.append(rf"{VIM_CONTINUED} nextgroup={following} skipwhite")
    return "\n".join(lines) + "\n"


def vim_register(registers):
    names = r"\|".join(registers).lower()
    return rf"syn match szirpaRegister contained /\%({names}\)[a-z0-9_]\@!/" + "\n"


def vim_words(instructions, directives, conditionals):
    def words(group, found, following):
        return vim_match(f"{group} contained", "/", found, following)

    operand = "szirpaComment,szirpaOperand"
    rest = "szirpaComment,szirpaIgnored"
    with_operand = sorted(instructions["operand"] + instructions["pair"])
    values = directives["value"] + directives["size"] + directives["items"] + directives["equate"]
    all_conditionals = [word for found in conditionals.values() for word in found]
    return "".join(
        [
            words("szirpaMnemonic", with_operand, operand),
            words("szirpaBranch", instructions["branch"], operand),
            words("szirpaMnemonic", instructions["inherent"], rest),
            words("szirpaDirective", values + directives["symbol"], operand),
            words("szirpaDirective", directives["text"], "szirpaComment,szirpaString"),
            vim_match("szirpaHash", VIM_HASH, all_conditionals, "szirpaConditional"),
            words("szirpaConditional", conditionals["test"], operand),
            words("szirpaConditional", conditionals["name"], "szirpaTestedName"),
            words("szirpaConditional", conditionals["definition"], "szirpaDefinedName"),
            words("szirpaConditional", conditionals["plain"], rest),
            words("szirpaConditional", conditionals["message"], "szirpaMessage"),
        ]
    )


def emacs_list(name, words, text):
    """A constant with a list of words, over as many lines as it needs."""
    listed = textwrap.fill(
        " ".join(f'"{word.lower()}"' for word in sorted(words)),
        EMACS_WIDTH, initial_indent="  '(", subsequent_indent="    ", break_on_hyphens=False,
    )  # fmt: skip
    return f'(defconst {name}\n{listed})\n  "{text}")\n'


def emacs_words(instructions, directives, conditionals, registers):
    def all_of(kinds):
        return [word for words in kinds.values() for word in words]

    return "".join(
        [
            emacs_list("szirpa-instructions", all_of(instructions), "Words of instructions."),
            emacs_list("szirpa-directives", all_of(directives), "Words of directives."),
            emacs_list("szirpa-conditionals", all_of(conditionals), "Words behind a hash."),
            emacs_list("szirpa-registers", registers, "Names of registers."),
        ]
    )


def replace_words(path, comment, words):
    """Puts other words between the two marks of a file."""
    before, begin, rest = path.read_text().partition(f"{comment} {BEGIN}")
    end, after = rest.partition(f"{comment} {END}")[1:]
    path.write_text(before + begin + words + end + after)


def write_all(words, editors, page):
    instructions = mnemonics_by_kind(words)
    directives = words_by_kind(words["directives"], directive_kind)
    conditionals = words_by_kind(words["conditionals"], CONDITIONAL_KINDS.__getitem__)

    textmate = editors / "vscode" / "syntaxes" / "szirpa.tmLanguage.json"
    content = grammar(instructions, directives, conditionals, words["registers"])
    textmate.write_text(json.dumps(content, indent=2) + "\n")

    matches = vim_words(instructions, directives, conditionals) + vim_register(words["registers"])
    replace_words(editors / "vim" / "syntax" / "szirpa.vim", '"', matches)
    lists = emacs_words(instructions, directives, conditionals, words["registers"])
    replace_words(editors / "emacs" / "szirpa-mode.el", ";;", lists)

    registers = [name.lower() for name in words["registers"]]
    kinds = {"instructions": instructions, "directives": directives,
             "conditionals": conditionals, "registers": registers}  # fmt: skip
    (page / "src" / "words.json").write_text(json.dumps(kinds, indent=2) + "\n")


if __name__ == "__main__":
    write_all(json.load(sys.stdin), pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))
