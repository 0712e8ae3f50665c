"""The opcode matrix: every mnemonic in every operand form.

Each line of allowed.szirpa states its bytes in its own comment ("; = F0 05"), each line of
forbidden.szirpa its message ("; ! Illegal Addressing Mode"). The bytes are checked in the listing,
line by line, and in the S-records as a whole.
"""

import pathlib
import re

import running
from zirpa_tables import OPTAB

MATRIX = pathlib.Path(__file__).resolve().parent
LISTING_LINE = re.compile(r"^(?P<address>..)(?P<bytes>(?: [0-9A-F]{2}| {3}){6}) +\d+\. (?P<text>.*)$")
MESSAGE_LINE = re.compile(r'^"forbidden.szirpa" line (?P<line>\d+), ERROR: (?P<text>.*)$')


def assemble(program, tmp_path, name):
    """Runs the program on one file of the matrix with a listing; returns the finished process."""
    source = (MATRIX / f"{name}.szirpa").read_bytes()
    (tmp_path / f"{name}.szirpa").write_bytes(source)
    return running.run(tmp_path, program, "-L", f"{name}.szirpa")


def source_lines(name):
    return (MATRIX / f"{name}.szirpa").read_text().splitlines()


def listed_lines(listing):
    """(bytes, text) of every listing line that has byte columns."""
    matches = (LISTING_LINE.match(line) for line in listing.splitlines())
    return [(match["bytes"].split(), match["text"]) for match in matches if match]


def data_of_records(records):
    """The data bytes of 16-bit data records, in order."""
    return [
        byte
        for line in records.splitlines()
        if line.startswith("S1")
        for byte in re.findall("..", line[8:-2])
    ]


def test_allowed_forms_give_the_stated_bytes(program, tmp_path):
    process = assemble(program, tmp_path, "allowed")
    assert (process.stdout, process.returncode) == (b"-- No errors.\n", 0)
    stated = []
    for listed, text in listed_lines((tmp_path / "allowed.lst").read_text()):
        comment = text.partition("; = ")[2].split()
        assert listed == comment, text
        stated += comment
    assert stated == data_of_records((tmp_path / "allowed.s19").read_text())


def test_allowed_forms_are_all_there():
    found = (re.match(r"\w* +(\w+).*; = ", line) for line in source_lines("allowed"))
    words = {match[1].upper() for match in found if match}
    assert words == {mnemonic.decode() for mnemonic in OPTAB}


def test_forbidden_forms_give_the_stated_message_and_no_bytes(program, tmp_path):
    assemble(program, tmp_path, "forbidden")
    listing = (tmp_path / "forbidden.lst").read_text()
    messages = [match for match in map(MESSAGE_LINE.match, listing.splitlines()) if match]
    stated = [
        (str(number), line.partition("; ! ")[2].strip())
        for number, line in enumerate(source_lines("forbidden"), start=1)
        if "; ! " in line
    ]
    assert [(match["line"], match["text"]) for match in messages] == stated
    assert all(not listed for listed, _ in listed_lines(listing))
    assert not (tmp_path / "forbidden.s19").exists()
    assert "#setMemory" not in (tmp_path / "forbidden.fmem").read_text()
