#!/usr/bin/env python3
"""Writes what the editors know of the language's words from the program's own tables.

    instruction_table | tools/write_grammar.py editors

The instructions are what tools/instruction_table.cpp prints, the directives are read from
as/asPseudo.cpp. Written are the TextMate grammar, as a whole, and the words of the Vim syntax.
"""

import json
import pathlib
import re
import sys

from textmate_grammar import grammar
from write_instructions import read_rows, split_by_kind

DIRECTIVES = pathlib.Path(__file__).resolve().parents[1] / "as" / "asPseudo.cpp"
TABLE_PATTERN = r"DirectiveEntry %s\[\] = \{\n(.*?)\n\};"
ROW_PATTERN = r'\{"([^"]+)",\s*(DIR_\w+),'

# How the rest of a line behind a directive is read.
DIRECTIVE_KINDS = {
    "DIR_ORG": "value",
    "DIR_EQU": "equate",
    "DIR_RESERVE": "size",
    "DIR_BYTES": "items",
    "DIR_STRING": "text",
    "DIR_END": "symbol",
}
CONDITIONAL_KINDS = {
    "DIR_IF": "test",
    "DIR_IFDEF": "name",
    "DIR_IFNDEF": "name",
    "DIR_ELIF": "name",
    "DIR_COND_DEFINE": "definition",
    "DIR_ELSE": "plain",
    "DIR_ENDIF": "plain",
    "DIR_ERROR": "message",
}

VIM_BEGIN = '" Written by tools/write_grammar.py: begin\n'
VIM_END = '" Written by tools/write_grammar.py: end\n'
VIM_CONTINUED = "      \\"
VIM_WIDTH = 92
# A hash counts only in front of a conditional word.
VIM_HASH = r"/^\s*#\s*\ze"


def words_by_kind(table, kinds):
    """The words of a directive table, by the way in which the rest of their line is read."""
    text = re.search(TABLE_PATTERN % table, DIRECTIVES.read_text(), re.DOTALL).group(1)
    found = {kind: [] for kind in kinds.values()}
    for word, token in re.findall(ROW_PATTERN, text):
        found[kinds[token]].append(word)
    return found


def instruction_words(stream):
    return {
        kind: sorted(name.lower() for name in instructions)
        for kind, instructions in split_by_kind(read_rows(stream)).items()
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


def with_new_words(text, words):
    """The text of the Vim syntax, with other words between its two marks."""
    before, _, rest = text.partition(VIM_BEGIN)
    after = rest.partition(VIM_END)[2]
    return before + VIM_BEGIN + words + VIM_END + after


def write_all(stream, editors):
    instructions = instruction_words(stream)
    directives = words_by_kind("pseudo_zirpa", DIRECTIVE_KINDS)
    conditionals = words_by_kind("macro_pure", CONDITIONAL_KINDS)

    textmate = editors / "vscode" / "syntaxes" / "szirpa.tmLanguage.json"
    content = json.dumps(grammar(instructions, directives, conditionals), indent=2)
    textmate.write_text(content + "\n")

    vim = editors / "vim" / "syntax" / "szirpa.vim"
    words = vim_words(instructions, directives, conditionals)
    vim.write_text(with_new_words(vim.read_text(), words))


if __name__ == "__main__":
    write_all(sys.stdin, pathlib.Path(sys.argv[1]))
