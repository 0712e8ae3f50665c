"""Checks line and branch coverage of the program's own code, from `llvm-cov export -summary-only`.

    check_coverage.py EXPORT.json

Prints a line a file and the totals; exits with 1 when a total falls short.
"""

import json
import os
import sys

LEAST_LINES = 100.0
LEAST_BRANCHES = 97.0


def shares(summary):
    """(lines, branches) in per cent."""
    return summary["lines"]["percent"], summary["branches"]["percent"]


def relative(path):
    return os.path.relpath(path)


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        data = json.load(file)["data"][0]
    for entry in data["files"]:
        lines, branches = shares(entry["summary"])
        print(f"{relative(entry['filename']):60} {lines:7.2f} {branches:7.2f}")
    lines, branches = shares(data["totals"])
    print(f"{'lines and branches in all, per cent':60} {lines:7.2f} {branches:7.2f}")
    return 0 if lines >= LEAST_LINES and branches >= LEAST_BRANCHES else 1


sys.exit(main())
