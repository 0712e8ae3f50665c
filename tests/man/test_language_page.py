"""HXzirpa.5 holds every directive, conditional word and instruction, as the program takes them."""

import re
import subprocess

import pytest
from man_page import items, page, part
from program_words import mnemonics, table_words

FORMS = "#n n n,SP n,X A,X ,X+ ,X- ,+X ,-X n,Y A,Y ,Y+ ,Y- ,+Y ,-Y".split()
REGISTERS = ("A", "CC", "X", "Y", "SP")
PAIRS = [f"{first},{second}" for first in REGISTERS for second in REGISTERS]
NO_OPERAND = ""
# Stands for n. Branches reach it from where the instructions are put.
VALUE = "$20"
ROW = re.compile(r'\.It (?:Ic (\w+) )?Ta (?:"([^"]*)"|(\S+)) Ta ?(.*)')
ROW_WITHOUT_OPERAND = re.compile(r"\.It Ic (\w+) Ta [^\"]*")


@pytest.fixture(scope="module")
def program(request):
    return request.config.getoption("--program")


def run(program, directory, text):
    """Assembles a text; returns standard output and the listing."""
    (directory / "source.szirpa").write_text(text)
    process = subprocess.run(
        [program, "-L", "source.szirpa"],
        cwd=directory,
        capture_output=True,
        text=True,
        timeout=60,
        check=False,
    )
    return process.stdout, (directory / "source.lst").read_text()


def described_instructions():
    """A dictionary of the mnemonics on the page: the sets of their forms."""
    source = page(5).read_text().partition(".Sh INSTRUCTIONS\n")[2].partition("\n.Sh ")[0]
    instructions = {}
    mnemonic = None
    for line in source.replace("\\-", "-").splitlines():
        row = ROW.fullmatch(line)
        if row:
            mnemonic = row[1] or mnemonic
            instructions.setdefault(mnemonic, set()).update((row[2] or row[3]).split())
        elif line.startswith(".It "):
            assert ROW_WITHOUT_OPERAND.fullmatch(line), line
            instructions[ROW_WITHOUT_OPERAND.fullmatch(line)[1]] = {NO_OPERAND}
    return instructions


def accepted_instructions(program, directory):
    """The same dictionary, found out by assembling each mnemonic with every operand."""
    tried = []
    lines = []
    for mnemonic in sorted(mnemonics()):
        for operand in (NO_OPERAND, *FORMS, *PAIRS):
            tried.append((mnemonic, operand))
            lines += [" ORG $10", f" {mnemonic} {operand.replace('n', VALUE)}"]
    output, _ = run(program, directory, "\n".join(lines) + "\n")
    faulty = {int(line) for line in re.findall(r"^\S+ \((\d+)\) Error: ", output, re.MULTILINE)}
    accepted = {}
    for number, (mnemonic, operand) in enumerate(tried):
        if 2 * number + 2 not in faulty:
            accepted.setdefault(mnemonic, set()).add(operand)
    # Behind an instruction without an operand anything may stand.
    return {
        mnemonic: {NO_OPERAND} if NO_OPERAND in operands else operands
        for mnemonic, operands in accepted.items()
    }


def test_mnemonics_are_found_in_the_sources():
    assert len(mnemonics()) > 80
    assert {"ADCA", "LDA", "TST"} <= mnemonics()


def test_every_instruction_is_described_with_its_forms(program, tmp_path):
    described = described_instructions()
    accepted = accepted_instructions(program, tmp_path)
    assert set(described) == mnemonics()
    for mnemonic, forms in accepted.items():
        assert described[mnemonic] == forms, mnemonic


def test_forms_are_described():
    shown = " ".join(items(part(5, "DESCRIPTION"), 5)).replace("−", "-").split()
    assert set(FORMS) <= set(shown)


def test_every_directive_is_described():
    shown = items(part(5, "DIRECTIVES"), 5)
    words = {re.sub(r"^name ", "", item).partition(" ")[0] for item in shown}
    assert words == {word.upper() for word in table_words("pseudo_zirpa")}


def test_every_conditional_word_is_described():
    shown = items(part(5, "CONDITIONAL ASSEMBLY"), 5)
    words = {item.partition(" ")[0] for item in shown if item.startswith("#")}
    assert words == {"#" + word for word in table_words("macro_pure")}


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
