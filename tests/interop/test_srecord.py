"""The package srecord agrees on what the S-records say.

It is given the S-records only, since it refuses the debug records of -g.
"""

import re

import running
from outputs import split_debug
from subjects import ADDRESS_MASK, find_subjects, of_each


def ranges_of(addresses):
    """[first, last] of every run of adjacent addresses."""
    ranges = []
    for address in sorted(addresses):
        if ranges and ranges[-1][1] == address - 1:
            ranges[-1][1] = address
        else:
            ranges.append([address, address])
    return ranges


def runs_past_the_last_address(subject):
    """Whether adjacent bytes lie at the last address of 32 bits and at address 0."""
    return any(address == ADDRESS_MASK for address, _ in subject.data)


def write_plain_records(path, content):
    path.write_bytes(split_debug(content)[0])


@of_each(find_subjects())
def test_srec_info(subject, outputs, tmp_path):
    write_plain_records(tmp_path / "in.s19", outputs(subject)[subject.records_name])
    process = running.run(tmp_path, "srec_info", "in.s19", text=True)
    assert process.returncode == 0, process.stderr
    entry = re.search(r"^Execution Start Address: ([0-9A-F]+)$", process.stdout, re.MULTILINE)
    assert int(entry[1], 16) == subject.entry
    # A range that goes on at address 0 is shown with its ends exchanged: nothing to compare.
    if not runs_past_the_last_address(subject):
        shown = re.findall(r"\b([0-9A-F]+) - ([0-9A-F]+)$", process.stdout, re.MULTILINE)
        found = [[int(first, 16), int(last, 16)] for first, last in shown]
        assert found == ranges_of(subject.memory)


def memory_of_hex_dump(text):
    """The bytes of a dump: lines "00000010: F0 05 ...  #..", blank where there is no byte."""
    memory = {}
    for line in text.splitlines():
        address, cells = line.split(":", 1)
        for index in range(16):
            cell = cells[3 * index : 3 * index + 3].strip()
            if cell:
                memory[int(address, 16) + index] = int(cell, 16)
    return memory


@of_each(find_subjects())
def test_srec_cat(subject, outputs, tmp_path):
    write_plain_records(tmp_path / "in.s19", outputs(subject)[subject.records_name])
    # Where data overlap, srec_cat wants to be told that the later byte counts.
    process = running.run(tmp_path, "srec_cat", "-multiple", "in.s19", "-o", "-", "-hex-dump", text=True)
    assert process.returncode == 0, process.stderr
    assert memory_of_hex_dump(process.stdout) == subject.memory
