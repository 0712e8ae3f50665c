"""Skipped tests are found in a log of ctest, whoever skipped them, and held against the reasons."""

import running
from conftest import ROOT

LOG = """\
5/9 Testing: editors.vscode
sssssss.                                                                 [100%]
SKIPPED [7] tests/editors/test_vscode.py:57: the registry can't be reached
1 passed, 7 skipped in 0.50s
6/9 Testing: limits.release
SKIPPED [2] tests/limits/test_limits.py:9: the stack is fixed
7/9 Testing: limits.sanitized
SKIPPED [2] tests/limits/test_limits.py:9: the stack is fixed
8/9 Testing: unit.output
/home/me/zirpa/tests/unit/output_test.cpp:264: Skipped
Devices can be made by root only.

[  SKIPPED ] OutputFile.IsLeftAlone (0 ms)
"""
LIST = """\
skipped tests:
      1 SKIPPED [7] tests/editors/test_vscode.py:57: the registry can't be reached
      1 Devices can be made by root only.
      2 SKIPPED [2] tests/limits/test_limits.py:9: the stack is fixed
"""


def listed(directory, log, *allowed):
    (directory / "log").write_text(log)
    for text in allowed:
        (directory / "allowed").write_text(text)
    names = ["log", *["allowed"] * len(allowed)]
    process = running.run(directory, ROOT / "tools" / "list_skipped.sh", *names, text=True)
    assert process.stderr == ""
    return sorted(process.stdout.splitlines()), process.returncode


def test_skipped_tests_are_listed(tmp_path):
    assert listed(tmp_path, LOG) == (sorted(LIST.splitlines()), 0)


def test_nothing_skipped(tmp_path):
    assert listed(tmp_path, "3 passed in 0.50s\n", "reason\n") == (["no tests skipped"], 0)


def test_allowed_reasons(tmp_path):
    allowed = "# Why.\n\nregistry\nthe stack is fixed\n by root only\n"
    assert listed(tmp_path, LOG, allowed) == (sorted(LIST.splitlines()), 0)


def test_other_reasons_fail(tmp_path):
    text, status = listed(tmp_path, LOG, "# by root only\n\nregistry\nthe stack\n")
    root = "      1 Devices can be made by root only."
    said = ["not among the reasons in allowed:", root]
    assert (text, status) == (sorted([*LIST.splitlines(), *said]), 1)
