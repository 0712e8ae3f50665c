"""Every example, in every variant, gives the expected bytes and no message."""

import re

import pytest
from example_case import EXPECTED, find_examples, find_sources

EVERY_EXAMPLE = pytest.mark.parametrize(
    "example", find_examples(), ids=lambda example: example.identifier
)

DATA_RECORD = re.compile(rb"^S1(?P<length>..)(?P<address>....)", re.MULTILINE)
WIDE_RECORD = re.compile(rb"^S[23]", re.MULTILINE)
# Of a record's length, two bytes are its address and one is its checksum.
LENGTH_BESIDES_DATA = 3
MEMORY_SIZE = 256
TERMINAL_WIDTH = 80


@EVERY_EXAMPLE
def test_expected_records(example, program, tmp_path):
    process, files = example.run(program, tmp_path)
    assert process.returncode == 0
    assert process.stdout == b"-- No errors.\n"
    assert process.stderr == b""
    assert files[example.stem + ".s19"] == example.expected_records()


@EVERY_EXAMPLE
def test_no_message(example, program, tmp_path):
    # This summary is printed only when warnings are asked for and there is none.
    process, _ = example.run(program, tmp_path, "-w")
    assert process.returncode == 0
    assert process.stdout == b"No errors.\n"
    assert process.stderr == b""


@EVERY_EXAMPLE
def test_fits_into_memory(example, program, tmp_path):
    _, files = example.run(program, tmp_path)
    records = files[example.stem + ".s19"]
    assert not WIDE_RECORD.search(records)
    ends = [
        int(record["address"], 16) + int(record["length"], 16) - LENGTH_BESIDES_DATA
        for record in DATA_RECORD.finditer(records)
    ]
    assert ends
    assert max(ends) <= MEMORY_SIZE


@pytest.mark.parametrize("source", find_sources(), ids=lambda source: source.stem)
def test_source_is_tidy(source):
    for line in source.read_text(encoding="ascii").splitlines():
        assert len(line) < TERMINAL_WIDTH, line
        assert "\t" not in line, line
        assert line == line.rstrip(), line


def test_examples_and_expectations_belong_together():
    examples = find_examples()
    assert {example.stem for example in examples} == {source.stem for source in find_sources()}
    variants = {example.identifier for example in examples}
    assert {path.stem for path in EXPECTED.glob("*.args")} <= variants
