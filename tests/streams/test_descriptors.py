"""Standard input, output and error, whether open or not, leave every output what it is."""

import contextlib
import subprocess

import pytest
from stream_runs import (
    ERRORS, EVERY_OUTPUT, OLD, OUTPUTS, RECORDS, SCRIPT, SUMMARY, expected_outputs,
)

FAILING = ["closed", "full"]


class Streams:
    """Descriptors 0 to 2, each of a kind: what the run gets, and what arrived there."""

    def __init__(self, path, **kinds):
        self.kinds = kinds
        if kinds.get("stderr") == "shared":
            self.kinds = {**kinds, "stderr": "closed" if kinds["stdout"] == "closed" else "shared"}
        self.path = path
        self.files = contextlib.ExitStack()

    def __enter__(self):
        return self

    def __exit__(self, *error):
        self.files.close()

    def options(self):
        numbers = {"stdin": 0, "stdout": 1, "stderr": 2}
        return {
            **{name: self.opened(name, kind) for name, kind in self.kinds.items()},
            "closed": [numbers[name] for name, kind in self.kinds.items() if kind == "closed"],
        }

    def opened(self, name, kind):
        if kind == "file":
            return self.files.enter_context(open(self.path / name, "w+b"))
        if kind == "full":
            return self.files.enter_context(open("/dev/full", "r+b", buffering=0))
        special = {"pipe": subprocess.PIPE, "shared": subprocess.STDOUT}
        return special.get(kind, subprocess.DEVNULL)

    def arrived(self, name, process):
        """What the run wrote there, None where nobody can know."""
        if self.kinds[name] == "file":
            return (self.path / name).read_bytes()
        return getattr(process, name, None) if self.kinds[name] == "pipe" else None


def put_outputs(place, state):
    if state == "old":
        place.put_old()
    if state == "link":
        (place.path / "targets").mkdir()
        place.put_old(*(f"targets/{name}" for name in OUTPUTS))
        for name in OUTPUTS:
            place.put_link(name, f"targets/{name}")


def assert_outputs(place, state, expected):
    for name in OUTPUTS:
        path = place.path / name
        through = state == "link" and name == RECORDS
        if name in expected:
            assert path.read_bytes() == expected[name]
            assert path.is_symlink() == through
        else:
            assert not path.is_symlink() and not path.exists()
        if state == "link":
            target = expected.get(name, b"") if through else OLD
            assert place.read(f"targets/{name}") == target


def assert_run(place, state, errors, **kinds):
    put_outputs(place, state)
    expected = expected_outputs(errors)
    here = {*place.names(), *(name for name, kind in kinds.items() if kind == "file"), *expected}
    with Streams(place.path, **kinds) as streams:
        process = place.assemble(errors, *EVERY_OUTPUT, **streams.options())
        assert process.returncode == (1 if kinds["stdout"] in FAILING else errors)
        assert streams.arrived("stdout", process) in (None, place.messages(errors))
        assert streams.arrived("stderr", process) in (None, b"")
        assert streams.arrived("stdin", process) in (None, b"")
    assert_outputs(place, state, expected)
    assert place.names() == sorted(here - ({RECORDS} - set(expected)))


STATES = pytest.mark.parametrize("state", ["new", "old", "link"])
STDIN = pytest.mark.parametrize("stdin", ["closed", "null", "file", "pipe"])
STDOUT = pytest.mark.parametrize("stdout", ["closed", "null", "full", "file", "pipe"])
STDERR = pytest.mark.parametrize("stderr", ["closed", "null", "full", "file", "pipe", "shared"])


@STATES
@STDIN
@STDOUT
@STDERR
def test_outputs_and_messages_go_where_they_belong(place, state, stdin, stdout, stderr):
    assert_run(place, state, 0, stdin=stdin, stdout=stdout, stderr=stderr)


@STATES
@STDOUT
@STDERR
def test_outputs_and_messages_go_where_they_belong_after_errors(place, state, stdout, stderr):
    assert_run(place, state, 2, stdin="closed", stdout=stdout, stderr=stderr)


# ---- Closed descriptors ----


@pytest.mark.parametrize("number", [0, 2])
@pytest.mark.parametrize("name", ["/dev/fd", "/proc/self/fd"])
def test_output_onto_a_closed_descriptor_goes_to_the_null_device(place, name, number):
    process = place.run("-o", f"{name}/{number}", "prog.szirpa", closed=[number])
    assert (process.returncode, process.stdout) == (0, SUMMARY)
    assert place.names() == [SCRIPT, "prog.szirpa"]


def test_output_onto_closed_standard_output_goes_to_the_null_device(place):
    process = place.run("-o", "/dev/stdout", "prog.szirpa", closed=[1])
    assert process.returncode == 1
    assert place.names() == [SCRIPT, "prog.szirpa"]


def test_source_from_closed_standard_input_is_empty(place):
    process = place.run("/dev/stdin", closed=[0])
    assert (process.returncode, process.stdout) == (0, SUMMARY)
    assert place.read("stdin.s19") == b"S9030000FC\n"


@pytest.mark.parametrize("closed", [[1], [0, 1], [1, 2], [0, 1, 2]])
@pytest.mark.parametrize(
    "arguments, status",
    [([], 1), (["-x", "-L"], 1), (["nowhere.szirpa"], 1), (["prog.szirpa"], 1), (["-L"], 0)],
)
def test_closed_standard_output_has_failed_when_there_is_something_to_say(
    place, arguments, status, closed
):
    assert place.run(*arguments, closed=closed).returncode == status


@pytest.mark.parametrize("closed", [[0], [2], [0, 2]])
@ERRORS
def test_other_closed_descriptors_do_not_matter(place, closed, errors):
    process = place.assemble(errors, closed=closed)
    assert (process.returncode, process.stdout) == (errors, place.messages(errors))


# Each line draws a warning, and all of them are longer than any buffer.
TALKATIVE = b' FCS "\x80"\n' * 3000


@pytest.mark.parametrize("closed", [[1], [0, 1], [1, 2], [0, 1, 2]])
@pytest.mark.parametrize("source", [TALKATIVE, b" BAD\n" * 3000], ids=["warnings", "errors"])
def test_many_messages_to_closed_standard_output_land_in_no_output(place, closed, source):
    place.write_source(source)
    arguments = ["-w", *EVERY_OUTPUT, "prog.szirpa"]
    place.run(*arguments, stdout=subprocess.DEVNULL)
    expected = {name: place.read(name) for name in place.names()}
    assert place.run(*arguments, closed=closed).returncode == 1
    assert {name: place.read(name) for name in place.names()} == expected
