"""HXzirpa.5 holds every directive, conditional word and instruction, as the program takes them."""

import re

import running
from man_page import items, page, part
from program_words import conditionals, directives, instructions, words

NO_OPERAND = ""
ROW = re.compile(r'\.It (?:Ic (\w+) )?Ta (?:"([^"]*)"|(\S+)) Ta ?(.*)')
ROW_WITHOUT_OPERAND = re.compile(r"\.It Ic (\w+) Ta [^\"]*")


def run(program, directory, text):
    """Assembles a text; returns standard output and the listing."""
    (directory / "source.szirpa").write_text(text)
    process = running.run(directory, program, "-L", "source.szirpa", text=True)
    return process.stdout, (directory / "source.lst").read_text()


def described_instructions():
    """A dictionary of the mnemonics on the page: the sets of their forms."""
    source = page(5).read_text().partition(".Sh INSTRUCTIONS\n")[2].partition("\n.Sh ")[0]
    described = {}
    mnemonic = None
    for line in source.replace("\\-", "-").splitlines():
        row = ROW.fullmatch(line)
        if row:
            mnemonic = row[1] or mnemonic
            described.setdefault(mnemonic, set()).update((row[2] or row[3]).split())
        elif line.startswith(".It "):
            assert ROW_WITHOUT_OPERAND.fullmatch(line), line
            described[ROW_WITHOUT_OPERAND.fullmatch(line)[1]] = {NO_OPERAND}
    return described


def test_words_are_found():
    assert len(instructions()) > 80
    assert {"ADCA", "LDA", "TST"} <= set(instructions())


def test_every_instruction_is_described_with_its_forms():
    assert described_instructions() == instructions()


def test_forms_are_described():
    shown = " ".join(items(part(5, "DESCRIPTION"), 5)).replace("−", "-").split()
    assert set(words()["forms"]) <= set(shown)


def test_every_directive_is_described():
    shown = items(part(5, "DIRECTIVES"), 5)
    described = {re.sub(r"^name ", "", item).partition(" ")[0] for item in shown}
    assert described == set(directives())


def test_every_conditional_word_is_described():
    shown = items(part(5, "CONDITIONAL ASSEMBLY"), 5)
    described = {item.partition(" ")[0] for item in shown if item.startswith("#")}
    assert described == set(conditionals())


def test_values_of_expressions_are_right(program, tmp_path):
    source = page(5).read_text()
    rows = re.findall(r"^\.It Li (\S+) Ta (\d+) Ta(?: Li (\S+))?$", source, re.MULTILINE)
    assert len(rows) >= 6
    text = "".join(f" FCB {written}\n" for written, _, _ in rows)
    output, listing = run(program, tmp_path, " ORG 0\n" + text)
    assert output == "-- No errors.\n"
    bytes_shown = re.findall(r"^[0-9A-F]{2} ([0-9A-F]{2}) .*FCB", listing, re.MULTILINE)
    assert [int(byte, 16) for byte in bytes_shown] == [int(value) for _, value, _ in rows]


def test_programs_of_the_page_assemble(program, tmp_path):
    source = page(5).read_text().partition(".Sh EXAMPLES\n")[2]
    programs = re.findall(r"^\.Bd -literal.*?\n(.*?)^\.Ed$", source, re.DOTALL | re.MULTILINE)
    assert len(programs) == 2
    for text in programs:
        output, _ = run(program, tmp_path, text)
        assert output == "-- No errors.\n"
