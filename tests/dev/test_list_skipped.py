"""Skipped tests are found in a log of ctest, whoever skipped them, and held against the reasons."""

import subprocess
import sys

import pytest
from conftest import ROOT

LOG = """\
5/9 Testing: editors.vscode
Output:
----------------------------------------------------------
sssssss.                                                                 [100%]
=========================== short test summary info ============================
SKIPPED [7] tests/editors/test_vscode.py:57: the registry can't be reached
1 passed, 7 skipped in 0.50s
----------------------------------------------------------
6/9 Testing: limits.release
SKIPPED [2] tests/limits/test_limits.py:9: the stack is fixed
7/9 Testing: limits.sanitized
SKIPPED [2] tests/limits/test_limits.py:9: the stack is fixed
8/9 Testing: unit.output
[ RUN      ] OutputFile.IsWritten
[       OK ] OutputFile.IsWritten (0 ms)
[ RUN      ] OutputFile.IsLeftAlone
/home/me/zirpa/tests/unit/output_test.cpp:264: Skipped
Devices can be made
by root only.

[  SKIPPED ] OutputFile.IsLeftAlone (0 ms)
[  SKIPPED ] 1 test, listed below:
[  SKIPPED ] OutputFile.IsLeftAlone
9/9 Testing: instructions
SKIPPED: nothing is compared
"""
LIST = """\
13 tests skipped:
  nothing is compared
  tests/editors/test_vscode.py:57: the registry can't be reached (7 tests)
  tests/limits/test_limits.py:9: the stack is fixed (4 tests)
  tests/unit/output_test.cpp:264: Devices can be made by root only.
"""


@pytest.fixture
def listed(tmp_path):
    def run(log, allowed=None):
        (tmp_path / "log").write_text(log)
        command = [sys.executable, ROOT / "tools" / "list_skipped.py", "log"]
        if allowed is not None:
            (tmp_path / "allowed").write_text(allowed)
            command += ["--allowed", "allowed"]
        process = subprocess.run(
            command, cwd=tmp_path, stdout=subprocess.PIPE, text=True, check=False
        )
        return process.stdout, process.returncode

    return run


def test_skipped_tests_are_listed(listed):
    assert listed(LOG) == (LIST, 0)


def test_nothing_skipped(listed):
    assert listed("1/1 Testing: golden\n3 passed in 0.50s\n", "") == ("no tests skipped\n", 0)


def test_allowed_reasons(listed):
    allowed = "# Why.\n\nregistry\nthe stack is fixed\n by root only \nnothing is compared\n"
    assert listed(LOG, allowed) == (LIST, 0)


def test_other_reasons_fail(listed):
    text, status = listed(LOG, "# nothing is compared\nregistry\nstack\nroot\n")
    assert status == 1
    remark = "  nothing is compared [not among the reasons in allowed]\n"
    assert text == LIST.replace("  nothing is compared\n", remark)
