"""The model by itself: every golden case comes out as the case expects."""

import os

import pytest
from golden_case import find_cases
from program_words import directives, instructions, words
from zirpa_model import run
from zirpa_tables import MACRO_PURE, OPTAB, PSEUDO_ZIRPA

WORKING_DIRECTORY = "/w"
# The model reads the files of the working directory and searches no include directories.
BEYOND_THE_MODEL = {
    "command_line/source_by_rooted_name",
    "source/first_matching_include_directory_wins",
    "source/include_directory_is_probed_with_a_backslash_and_opened_with_a_slash",
    "source/include_directory_joined_and_quoted",
}
ALL_CASES = {case.identifier: case for case in find_cases()}


def relative(name):
    return os.path.relpath(os.path.join(WORKING_DIRECTORY, os.fsdecode(name)), WORKING_DIRECTORY)


@pytest.mark.parametrize("identifier", sorted(ALL_CASES.keys() - BEYOND_THE_MODEL))
def test_golden_case(identifier):
    case = ALL_CASES[identifier]
    inputs = case.inputs()
    directories = {os.fsencode(f"{name}/"): b"" for name in case.input_directories()}
    files = {os.fsencode(name): content for name, content in inputs.items()}
    arguments = [b"HXzirpa", *case.arguments()]
    result = run(arguments, files | directories, os.fsencode(WORKING_DIRECTORY))
    assert result.status == case.expected_status()
    assert result.stdout == case.expected_output(WORKING_DIRECTORY)
    written = {relative(name): content for name, content in result.files.items()}
    removed = {relative(name) for name in result.removed}
    left = {name: content for name, content in inputs.items() if name not in removed}
    assert left | written == case.expected_tree()


def test_model_knows_the_words_of_the_program():
    assert {word.decode() for word in OPTAB} == set(instructions())
    assert {word.decode().upper() for word in PSEUDO_ZIRPA} == set(directives())
    assert {word.decode() for word in MACRO_PURE} == set(words()["conditionals"])


def test_cases_beyond_the_model_exist():
    assert BEYOND_THE_MODEL <= ALL_CASES.keys()
