#!/usr/bin/env python3
"""Writes the instruction pages of the manual from the program's own table.

    program_words | tools/write_instructions.py >docs/instructions.md

The table is among what tools/program_words.cpp prints.
"""

import collections
import json
import sys

INTRODUCTION = """\
# The instructions

Every instruction of the ZIRPA, in every form that the assembler takes, with its opcode in
hexadecimal. This page is written from the program's own table by `tools/write_instructions.py`.

An opcode alone is an instruction of one byte; an opcode followed by *n*, as in `F0 n`, is one of
two, and *n* is its operand byte. Mnemonics may be written in either case.

HXzirpa(5) says in a word what each instruction does (`man -l man/HXzirpa.5` before an installation),
as inferred from its name: what counts, and what it does to the condition codes, is in the documents
of the processor.
"""

OPERANDS = """\
## The forms of an operand

| form | operand |
|---|---|
| `#n` | the value n itself |
| `n` | the address n; for branches, the address to branch to |
| `n,X` `n,Y` `n,SP` | the address X, Y or SP plus n |
| `A,X` `A,Y` | the address X or Y plus A |
| `,X+` `,Y+` | the address X or Y, which is incremented afterwards |
| `,X-` `,Y-` | the address X or Y, which is decremented afterwards |
| `,+X` `,+Y` | the address X or Y, which is incremented first |
| `,-X` `,-Y` | the address X or Y, which is decremented first |

The instruction takes the byte there, but `JMP`, `JSR`, `LEAX`, `LEAY` and `LEASP` take the address
itself.

n is an expression. An operand holds no blanks but that of `' '`: `LDA 5 ,X` is `LDA 5`, because a
blank ends the operand and what follows it is ignored. `,X` alone is not a form; write `0,X`.
"""

BRANCH_NOTE = (
    "The operand is the address to branch to. The byte n is its distance from the instruction\n"
    "that follows the branch, from -128 to 127; `Displacement (0x80) is out of range` is reported\n"
    "when it is further away. A branch does not go on from FF to 00."
)
OPCODE_NOTE = (
    "All 256 of them. Where several instructions share an opcode, `zirpa dis` writes the first; `none`\n"
    "is an opcode that no instruction has."
)
COMMON_FORMS = ["#n", "n", "n,SP", "n,X", "A,X", "n,Y", "A,Y"]
STEP_FORMS = [",X+", ",X-", ",+X", ",-X", ",Y+", ",Y-", ",+Y", ",-Y"]
OPCODE_COLUMNS = 4


def instructions_of(words):
    """The table: mnemonic to form to the bytes of the instruction as they are shown."""
    instructions = collections.defaultdict(dict)
    for row in words["instructions"]:
        shown = row["opcode"] + {1: "", 2: " n"}[row["length"]]
        instructions[row["mnemonic"]][row["form"]] = shown
    return instructions


def table(heads, rows):
    lines = [heads, ["---"] * len(heads), *rows]
    return "".join(f"| {' | '.join(line)} |\n" for line in lines)


def code(text):
    return f"`{text}`" if text else ""


def section(title, body, note=""):
    return f"\n## {title}\n\n" + (f"{note}\n\n" if note else "") + body


def form_table(instructions, forms):
    """Those instructions that take one of the forms, with a column for each form."""
    rows = [
        [code(name), *(code(found.get(form, "")) for form in forms)]
        for name, found in sorted(instructions.items())
        if any(form in found for form in forms)
    ]
    return table(["instruction", *map(code, forms)], rows)


def single_form_table(instructions):
    rows = [[code(name), code(*found.values())] for name, found in sorted(instructions.items())]
    return table(["instruction", "bytes"], rows)


def pair_table(instructions):
    rows = [
        [code(f"{name} {pair}"), code(shown)]
        for name, found in sorted(instructions.items())
        for pair, shown in sorted(found.items(), key=lambda item: (item[1], item[0]))
    ]
    return table(["instruction", "bytes"], rows)


def is_pair(form):
    return "," in form and form not in COMMON_FORMS + STEP_FORMS


def split_by_kind(instructions):
    """The instructions without operand, the branches, those of register pairs, and the rest."""
    kinds = collections.defaultdict(dict)
    for name, found in instructions.items():
        if list(found) == [""]:
            kinds["inherent"][name] = found
        elif list(found) == ["n"]:
            kinds["branch"][name] = found
        elif any(map(is_pair, found)):
            kinds["pair"][name] = found
        else:
            kinds["operand"][name] = found
    return kinds


def same_encodings(instructions):
    """The groups of mnemonics that mean the same bytes in every form."""
    groups = collections.defaultdict(list)
    for name, found in instructions.items():
        groups[tuple(sorted(found.items()))].append(name)
    return [", ".join(map(code, sorted(group))) for group in groups.values() if len(group) > 1]


def opcode_table(instructions, meanings):
    """All 256 opcodes in order, in several columns that are read downwards. Of instructions that
    share an opcode the first is the one as which it is read."""
    by_opcode = collections.defaultdict(list)
    for name, found in sorted(instructions.items()):
        for form, shown in sorted(found.items()):
            by_opcode[shown].append(f"{name} {form}".strip())
    cells = []
    for shown, texts in by_opcode.items():
        texts.sort(key=lambda text, usual=meanings[int(shown[:2], 16)]: text != usual)
        assert texts[0] == meanings[int(shown[:2], 16)], texts
        cells.append([code(shown), "<br>".join(map(code, texts))])
    cells += [[code(f"{number:02X}"), "none"]
              for number, meaning in enumerate(meanings) if not meaning]
    assert len(cells) == 256, len(cells)
    cells.sort()
    height = len(cells) // OPCODE_COLUMNS
    rows = [sum(cells[row::height], []) for row in range(height)]
    return table(["bytes", "instruction"] * OPCODE_COLUMNS, rows)


def page(instructions, meanings):
    kinds = split_by_kind(instructions)
    same = "".join(f"- {group}\n" for group in sorted(same_encodings(instructions)))
    return "".join(
        [
            INTRODUCTION,
            "\n" + OPERANDS,
            section("With an operand", form_table(kinds["operand"], COMMON_FORMS)),
            section("With a step of X or Y", form_table(kinds["operand"], STEP_FORMS)),
            section("Branches", single_form_table(kinds["branch"]), BRANCH_NOTE),
            section("Of two registers", pair_table(kinds["pair"])),
            section("Without an operand", single_form_table(kinds["inherent"])),
            section("Two names for the same", same),
            section("By opcode", opcode_table(instructions, meanings), OPCODE_NOTE),
        ]
    )


if __name__ == "__main__":
    words = json.load(sys.stdin)
    sys.stdout.write(page(instructions_of(words), words["opcodes"]))
