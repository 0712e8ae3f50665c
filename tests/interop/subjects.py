"""What the readers are given: the outputs of every run that ends without errors."""

import functools
import re
import subprocess

from example_case import find_examples
from golden_case import find_cases

RECORD = re.compile(rb"S[0-9](?:[0-9A-F]{2})+")
ADDRESS_BYTES = {b"1": 2, b"2": 3, b"3": 4, b"7": 4, b"8": 3, b"9": 2}
ADDRESS_MASK = 0xFFFFFFFF
ARRAY_START = b"const unsigned char algo[] = {\n"
ARRAY_SUFFIX = "_cout.c"
TIME_LIMIT_SECONDS = 60

# A program that goes back and sets some of its bytes again, to other values and to the same one.
OVERLAPPING_STEM = "data_set_twice"
OVERLAPPING_SOURCE = b" ORG 5\n FCB 1,2,3,4\n ORG 6\n FCB 9\n ORG 8\n FCB 4,7\n"
OVERLAPPING_RECORDS = b"S107000501020304E9\nS104000609EC\nS10500080407E7\nS9030005F7\n"


def record_lines(content):
    """The S-records of a file, as grep '^S[0-9]' finds them: without the debug records."""
    return [line for line in content.splitlines() if re.match(rb"S[0-9]", line)]


def data_of_records(content):
    """(address, byte) of every data byte, in the order of the records."""
    data = []
    for line in record_lines(content):
        if line[1:2] not in b"123":
            continue
        data_at = 4 + 2 * ADDRESS_BYTES[line[1:2]]
        start = int(line[4:data_at], 16)
        for index, at in enumerate(range(data_at, len(line) - 2, 2)):
            data.append(((start + index) & ADDRESS_MASK, int(line[at : at + 2], 16)))
    return data


def entry_of_records(content):
    """The address in the end record."""
    (end,) = (line for line in record_lines(content) if line[1:2] in b"789")
    return int(end[4 : 4 + 2 * ADDRESS_BYTES[end[1:2]]], 16)


def is_record_file(content):
    lines = content.splitlines()
    return bool(lines) and RECORD.fullmatch(lines[0]) is not None


class Subject:
    """One run, and what its expected S-records say."""

    def __init__(self, identifier, run, records_name, records, has_array):
        self.identifier = identifier
        self.run = run  # (program, directory) -> (finished process, files after the run)
        self.records_name = records_name
        self.data = data_of_records(records)
        self.entry = entry_of_records(records)
        self.is_narrow = {line[1:2] for line in record_lines(records)} <= {b"1", b"9"}
        self.has_array = has_array

    @property
    def memory(self):
        """What the bytes leave in memory: where data overlap, the later ones stay."""
        return dict(self.data)


def golden_subjects():
    for case in find_cases():
        if case.expected_status() != 0:
            continue
        expected = case.expected_files()
        has_array = any(
            name.endswith(ARRAY_SUFFIX) and content.startswith(ARRAY_START)
            for name, content in expected.items()
        )
        for name, content in expected.items():
            if is_record_file(content):
                yield Subject(case.identifier, case.run, name, content, has_array)


def example_subjects():
    for example in find_examples():
        yield Subject(
            f"example/{example.identifier}",
            example.run,
            example.stem + ".s19",
            example.expected_records(),
            "-A" in example.options() and "-L" in example.options(),
        )


def run_overlapping(program, directory):
    source_name = OVERLAPPING_STEM + ".szirpa"
    (directory / source_name).write_bytes(OVERLAPPING_SOURCE)
    process = subprocess.run(
        [program, "-L", "-A", source_name],
        cwd=directory,
        stdin=subprocess.DEVNULL,
        capture_output=True,
        timeout=TIME_LIMIT_SECONDS,
        check=False,
    )
    return process, {path.name: path.read_bytes() for path in directory.iterdir()}


@functools.cache
def find_subjects():
    """All subjects, in an order that does not change."""
    overlapping = Subject(
        OVERLAPPING_STEM, run_overlapping, OVERLAPPING_STEM + ".s19", OVERLAPPING_RECORDS, True
    )
    return [*golden_subjects(), *example_subjects(), overlapping]


def read_by(directory, *command):
    """Runs a reader; returns the finished process."""
    return subprocess.run(
        command,
        cwd=directory,
        stdin=subprocess.DEVNULL,
        capture_output=True,
        timeout=TIME_LIMIT_SECONDS,
        check=False,
        encoding="ascii",
    )
