"""Every message of the program occurs in the expected outputs of some golden case, in both forms."""

import pathlib
import re

import program_messages
import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
GOLDEN = ROOT / "tests" / "golden"

# What no source line can bring about; the unit tests do.
ONLY_IN_UNIT_TESTS = {
    # Words of other dialects.
    "Old fashioned directive: '%s', use '%s' instead",
    "Unimplemented assembler directive, ignored",
    "DPR register is 8 bits",
    # The main file is the only one, and ends at its first END with a name.
    "Program entry defined, END <address> ignored",
    # Reported from the command line, where nothing is printed.
    "Include stack is exhausted, '%s' is ignored",
    "Pathname should be quoted, option ignored",
    # Internal faults.
    "(F1016)",
    "(F1017)",
    "RegisterSymSize failed",
    "Word (16 bit) sized operand/data truncated",
}

# What is never printed.
NEVER_SEEN = {
    # Reported ahead of the final pass only.
    "Recursion in file stack, file ignored",
    "(F1034)",
    "Can't create listfile",
    "Can't create C output file",
    "(F1023)",
    # Always the second message of its line.
    "Bad preproc",
    # For targets that forbid a branch to the next instruction.
    "Short branch displacement is zero",
}


LEFT_OUT = ONLY_IN_UNIT_TESTS | NEVER_SEEN
ERRORS = sorted(program_messages.errors() - LEFT_OUT)
WARNINGS = sorted(program_messages.warnings() - LEFT_OUT)


def expected_text(suffix):
    return "\n".join(
        path.read_text(encoding="latin-1") for path in sorted(GOLDEN.glob(f"*/*{suffix}"))
    )


def pattern_of(message):
    return program_messages.pattern_of(message, value=".*?")


def test_messages_are_found_in_the_sources():
    assert len(ERRORS) > 35
    assert len(WARNINGS) > 8
    assert not program_messages.unknown_arguments()


@pytest.mark.parametrize("message", ERRORS)
def test_error_occurs_in_both_forms(message):
    assert re.search(r"\(\d+\) Error: " + pattern_of(message), expected_text(".out"))
    assert re.search(r'" line \d+, ERROR: ' + pattern_of(message), expected_text(".lst"))


@pytest.mark.parametrize("message", WARNINGS)
def test_warning_occurs_in_both_forms(message):
    assert re.search(r"\(\d+\) Warning: " + pattern_of(message), expected_text(".out"))
    assert re.search(r'" LINE: \d+,WARNING: ' + pattern_of(message), expected_text(".lst"))


@pytest.mark.parametrize("message", sorted(ONLY_IN_UNIT_TESTS))
def test_other_messages_occur_in_unit_tests(message):
    text = "\n".join(path.read_text() for path in (ROOT / "tests" / "unit").glob("*_test.cpp"))
    longest = max(re.split(r"%[a-z]", message), key=len)
    assert longest in text
