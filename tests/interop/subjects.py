"""What the readers are given: the outputs of every run that ends without errors and has bytes."""

import functools

import pytest
import running
from example_case import find_examples
from golden_case import find_cases
from outputs import read_records, split_debug

ADDRESS_MASK = 0xFFFFFFFF
ARRAY_START = b"const unsigned char algo[] = {\n"
ARRAY_SUFFIX = "_cout.c"

# A program that goes back and sets some of its bytes again, to other values and to the same one.
OVERLAPPING_STEM = "data_set_twice"
OVERLAPPING_SOURCE = b" ORG 5\n FCB 1,2,3,4\n ORG 6\n FCB 9\n ORG 8\n FCB 4,7\n"
OVERLAPPING_RECORDS = b"S107000501020304E9\nS104000609EC\nS10500080407E7\nS9030005F7\n"


class Subject:
    """One run, and what its expected S-records say."""

    def __init__(self, identifier, run, records_name, records, has_array):
        self.identifier = identifier
        self.run = run  # (program, directory) -> (finished process, files after the run)
        self.records_name = records_name
        self.has_array = has_array
        found = read_records(split_debug(records)[0])
        self.entry = found[-1][1]
        self.data = [
            ((address + index) & ADDRESS_MASK, byte)
            for _, address, data in found
            for index, byte in enumerate(data)
        ]

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
            if content[:1] == b"S":
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
    process = running.run(directory, program, "-L", "-A", source_name)
    return process, running.files_below(directory)


@functools.cache
def find_subjects():
    """All subjects, in an order that does not change."""
    overlapping = Subject(
        OVERLAPPING_STEM, run_overlapping, OVERLAPPING_STEM + ".s19", OVERLAPPING_RECORDS, True
    )
    subjects = [*golden_subjects(), *example_subjects(), overlapping]
    return [subject for subject in subjects if subject.data]


def of_each(subjects):
    return pytest.mark.parametrize("subject", subjects, ids=lambda subject: subject.identifier)
