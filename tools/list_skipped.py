#!/usr/bin/env python3
"""Lists what the last run of ctest skipped, with the reasons.

    list_skipped.py LOG [--allowed FILE]

ctest calls an entry passed when one of its tests passed and all others were skipped, so skipped tests
are looked for in the log, in the words of pytest and GoogleTest. With --allowed, the status is 1 when
the reason of a skip contains no line of the file; empty lines and comments (#) do not count.
"""

import argparse
import collections
import pathlib
import re
import sys

# "SKIPPED [2] tests/editors/test_vscode.py:57: the reason", "SKIPPED: the reason"
PYTHON = re.compile(r"^SKIPPED(?: \[(\d+)\]|:) (.+)$", re.MULTILINE)
# The reason stands in the lines from the place to the name.
GOOGLETEST = re.compile(
    r"^\S+?([^/\n]+_test\.cpp:\d+): Skipped\n(.+?)\n\[  SKIPPED \] \S+ \(", re.MULTILINE | re.DOTALL
)


def skips(log):
    """The number of tests for each place and reason."""
    found = collections.Counter()
    for number, text in PYTHON.findall(log):
        found[text] += int(number or 1)
    for place, reason in GOOGLETEST.findall(log):
        found[f"tests/unit/{place}: {' '.join(reason.split())}"] += 1
    return found


def allowed_reasons(path):
    lines = (line.strip() for line in path.read_text().splitlines())
    return [line for line in lines if line and not line.startswith("#")]


def main():
    parser = argparse.ArgumentParser(description="Lists skipped tests.")
    parser.add_argument("log", type=pathlib.Path)
    parser.add_argument("--allowed", type=pathlib.Path)
    arguments = parser.parse_args()
    found = skips(arguments.log.read_text(errors="replace"))
    print(f"{found.total() or 'no'} tests skipped" + (":" if found else ""))
    status = 0
    for text, number in sorted(found.items()):
        remark = ""
        if arguments.allowed and not any(r in text for r in allowed_reasons(arguments.allowed)):
            remark = f" [not among the reasons in {arguments.allowed}]"
            status = 1
        print(f"  {text}{f' ({number} tests)' if number > 1 else ''}{remark}")
    return status


if __name__ == "__main__":
    sys.exit(main())
