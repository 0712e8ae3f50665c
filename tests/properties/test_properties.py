"""What holds for every program without errors, whatever it is.

Each golden case that ends without errors is run with several sets of outputs asked for:

- S-records, script, C array and listing tell the same bytes (the listing where it is not cut, and
  but for RMB, of which it shows one byte), and all checksums are right;
- the S-record lines, the script and the bytes are the same whatever else is asked for.

Of debugger lines (.stab) -g makes statements of the final pass, and may so change what is assembled
or find errors. Sources that hold them are run as the case has it, always with -g or always without.
"""

import os
import re
import shutil

import pytest
import running
from golden_case import find_cases
from outputs import (
    Outputs,
    bytes_of_records,
    pattern_of_listing,
    read_array,
    read_listing,
    read_records,
    read_script,
    script_of_records,
    split_command,
    split_debug,
)

DEBUGGER_LINE = re.compile(rb"^\.stab", re.MULTILINE)
CLEAN_CASES = [
    case
    for case in find_cases()
    if case.expected_status() == 0 and b"No errors.\n" in (case.file(".out") or b"")
]
REQUESTS = ["", "L", "S", "g", "A", "w", "LA", "LSgAw", "wAgSL"]


class Run:
    """A case run with some outputs asked for."""

    def __init__(self, program, case, directory, letters):
        shutil.rmtree(directory, ignore_errors=True)
        directory.mkdir()
        case.prepare(directory)
        options, source = split_command(case.arguments())
        self.letters = letters
        flags = [b"-" + letter.encode() for letter in letters]
        before = running.files_below(directory)
        process = running.run(directory, program, *flags, *options, source)
        self.out, self.status = process.stdout, process.returncode
        self.refused = b"Cannot create output fil" in self.out
        after = running.files_below(directory)
        self.outputs = Outputs({name: after[name] for name in after if after[name] != before.get(name)})
        path = directory / os.fsdecode(source)
        self.source = path.read_bytes() if path.is_file() else None


@pytest.fixture(name="runs")
def runs_of_the_case(program, case, tmp_path):
    """All runs but those refused because an output that was asked for would overwrite another."""
    directory = tmp_path.resolve() / "work"
    requests = REQUESTS
    if any(DEBUGGER_LINE.search(text) for text in case.inputs().values()):
        debug = "g" if b"-g" in case.arguments() else ""
        requests = [debug + letters for letters in REQUESTS if "g" not in letters]
    runs = [Run(program, case, directory, letters) for letters in requests]
    runs = [run for run in runs if not run.refused]
    assert len(runs) > 1
    assert [run.letters for run in runs if run.status != 0] == []
    assert runs[0].letters == requests[0]
    return runs


def assert_outputs_agree(run):
    outputs = run.outputs
    records, debug = split_debug(outputs.records)
    assert bool(debug) == ("g" in run.letters)
    assert not debug or debug.startswith(b"SX:C:s:start\n")
    found = read_records(records)
    name, pairs = read_script(outputs.script)
    assert os.fsdecode(name) == outputs.names["script"]
    assert pairs == script_of_records(found)
    program = bytes_of_records(found)
    assert outputs.listing is None or "L" in run.letters
    if outputs.array is not None:
        # Without a listing the array is created and stays empty.
        is_empty = outputs.listing is None
        assert outputs.array == b"" if is_empty else read_array(outputs.array) == program
    if outputs.listing is not None and run.source is not None:
        pattern = pattern_of_listing(read_listing(outputs.listing, run.source))
        assert pattern.fullmatch(program), "the listing shows other bytes"


@pytest.mark.parametrize("case", CLEAN_CASES, ids=lambda case: case.identifier)
def test_outputs_agree_and_do_not_depend_on_each_other(runs):
    records, _ = split_debug(runs[0].outputs.records)
    for run in runs:
        assert_outputs_agree(run)
        assert split_debug(run.outputs.records)[0] == records, f"-{run.letters} changes the S-records"
        assert run.outputs.script == runs[0].outputs.script, f"-{run.letters} changes the script"
        if "S" not in run.letters and "w" not in run.letters:
            assert run.out == runs[0].out, f"-{run.letters} changes what is printed"
    plain = [run.outputs.listing for run in runs if not set(run.letters) & set("Sw")]
    listings = {listing for listing in plain if listing}
    assert len(listings) <= 1, "-A changes the listing"


def test_there_are_many_cases():
    assert len(CLEAN_CASES) > 100
