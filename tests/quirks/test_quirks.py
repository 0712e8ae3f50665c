"""Every quirk has its row in docs/quirks.md, its comment in the code and a test that shows it."""

import pathlib
import re

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
MODULES = ("as", "target", "expr", "symtab", "util")

# The first and the last cell of a row. Names have small letters, unlike the tables' heads.
ROW = re.compile(r"^\| (?!name \|)([a-z0-9-]+) \|.*\| ([^|]+) \|$", re.MULTILINE)
COMMENT = re.compile(r"Quirk \(([^)]*)\):")


def rows():
    """(name, tests) of every row of the page."""
    page = (ROOT / "docs" / "quirks.md").read_text()
    return [(name, tests.split(", ")) for name, tests in ROW.findall(page)]


def text_of(folders):
    files = (path for folder in folders for path in sorted((ROOT / folder).rglob("*")))
    return "\n".join(path.read_text() for path in files if path.suffix in (".cpp", ".h", ".py"))


NAMES = [name for name, _ in rows()]
TESTS = [(name, test) for name, tests in rows() for test in tests]


def exists(test):
    """True for a golden case, or for a test function given as PATH::FUNCTION."""
    path, _, function = test.partition("::")
    if function:
        return f"\ndef {function}(" in (ROOT / path).read_text()
    return any((ROOT / "tests" / "golden" / (test + end)).is_file() for end in (".szirpa", ".args"))


def test_names_are_found_and_differ():
    assert len(NAMES) > 50
    assert len(NAMES) == len(set(NAMES))


def test_rows_and_comments_have_the_same_names():
    code = text_of(MODULES)
    assert sorted(set(COMMENT.findall(code))) == sorted(NAMES)
    assert code.count("Quirk") == len(COMMENT.findall(code)), "a comment has no name"


def test_comments_of_tests_name_quirks():
    assert set(COMMENT.findall(text_of(["tests/unit", "tests/model"]))) <= set(NAMES)


@pytest.mark.parametrize("name, test", TESTS, ids=[f"{name}-{test}" for name, test in TESTS])
def test_named_test_exists(name, test):
    assert exists(test), name


def test_a_missing_test_is_noticed():
    assert not exists("expressions/no_such_case")
    assert not exists("tests/limits/test_limits.py::test_no_such")
