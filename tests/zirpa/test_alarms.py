"""No false alarm: examples and the golden cases that are meant to be clean draw nothing but what is
provably right.

What the assembler reports itself (with -w), what options bring about, and addresses are held against the
assembler, the command line and the S-records. All other lines that are warned of are traps which are the
very rule of a case: alarms.txt names them, and each has been read against its source.
"""

import pathlib
import re

import golden_case
import program_messages
import pytest
import running
from outputs import read_records, split_debug

ROOT = pathlib.Path(__file__).resolve().parents[2]
ALARMS = dict(
    line.split(" ", 1) for line in (ROOT / "tests" / "zirpa" / "alarms.txt").read_text().splitlines()
)
CLEAN = [
    case
    for case in golden_case.find_cases()
    if b" Error: " not in case.expected_output("") and case.expected_status() == 0
]
DIAGNOSTIC = re.compile(r":(?:(\d+):)?(?:\d+:)? (?:warning|error): .*\[([a-z0-9-]+)\]$", re.MULTILINE)
REPORT = re.compile(r"^.* \((\d+)\) Warning: (.*)$", re.MULTILINE)
ROW = re.compile(r"^    \{" + program_messages.LITERAL + r',\s*"([a-z-]+)",', re.MULTILINE)
BY_OPTION = {"idle-option", "array-without-listing"}
WITH_VALUE = ("-d", "-o", "-D", "-I", "-C")


def formats():
    """What reports look like, with their identifiers."""
    for text, name in ROW.findall((ROOT / "door" / "messages.cpp").read_text()):
        pieces = program_messages.PLACEHOLDERS.split(program_messages.unescaped(text))
        yield re.compile(".*".join(map(re.escape, pieces))), name


FORMATS = list(formats())


def reported(case, program, directory):
    """(identifier, line) of what the assembler itself warns of."""
    process = running.run(directory, program, b"-w", *case.arguments())
    for line, text in REPORT.findall(process.stdout.decode("latin-1")):
        (name,) = [name for shape, name in FORMATS if shape.fullmatch(text)]
        yield name, int(line)


def options_of(case):
    words = [word.decode("latin-1") for word in case.arguments()]
    while words and words[0].startswith("-"):
        option = words.pop(0)
        yield option + (words.pop(0) if option in WITH_VALUE and words else "")


def brought_about(options):
    """The identifiers of what is said of options."""
    idle = re.compile(r"-I|-d|-S[123]$|-Cnonative$")
    if any(map(idle.match, options)):
        yield "idle-option"
    if "-A" in options and "-L" not in options:
        yield "array-without-listing"


def writes_beyond(case):
    files = [content for name, content in case.expected_files().items() if name.endswith(".s19")]
    records = [record for content in files for record in read_records(split_debug(content)[0])]
    return any(data and address + len(data) > 0x100 for _, address, data in records)


def listed(case):
    """The lines of alarms.txt: ID:LINE,LINE ..., without lines where the whole source is meant."""
    for entry in ALARMS.get(case.identifier, "").split():
        name, _, lines = entry.partition(":")
        yield from ((name, int(line)) for line in (lines or "0").split(","))


@pytest.mark.parametrize("case", [pytest.param(case, id=case.identifier) for case in CLEAN])
def test_a_clean_case_draws_what_its_rule_is_about(case, program, zirpa, tmp_path):
    case.prepare(tmp_path)
    of_assembler = set(reported(case, program, tmp_path))
    process = running.run(tmp_path, zirpa, "build", *case.arguments())
    if b"See zirpa build --help." in process.stderr:
        return
    found = DIAGNOSTIC.findall(process.stderr.decode("latin-1"))
    drawn = {(name, int(line or 0)) for line, name in found}
    names = {name for name, _ in drawn}
    assert names & BY_OPTION == set(brought_about(list(options_of(case))))
    # The address of a record of bytes above the first ORG is not theirs.
    if "bytes-before-org" not in names:
        assert ("address-above-ff" in names) == writes_beyond(case)
    others = {each for each in drawn if each[0] not in BY_OPTION | {"address-above-ff"}}
    assert others == of_assembler | set(listed(case))


def test_every_row_is_of_a_case():
    assert set(ALARMS) <= {case.identifier for case in CLEAN}


@pytest.mark.parametrize("source", sorted((ROOT / "examples").glob("*.szirpa")), ids=str)
def test_examples_draw_nothing(source, zirpa):
    process = running.run(source.parent, zirpa, "check", source.name)
    assert (process.returncode, process.stderr) == (0, b"")
