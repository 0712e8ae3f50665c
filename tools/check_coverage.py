"""Checks line and branch coverage of the program's own code.

    check_coverage.py EXPORT.json LINES.txt

EXPORT.json is what `llvm-cov export -summary-only` prints, LINES.txt what `llvm-cov show` does. Prints
the lines that no test reaches, branches a file and the totals; exits with 1 when they fall short.
"""

import json
import os
import re
import sys

LEAST_BRANCHES = 97.0

# Lines that no test can reach.
EXCLUDED = {
    # For targets that forbid a branch to the next instruction; this one allows it.
    'Error("Short branch displacement is zero");',
    # The tool counts what follows an assertion as never reached.
    "ListItem *item = newlistitem.get();",
    "lists.cursor = nullptr;",
    "startptr->cursor = startptr->first.get();",
}

UNREACHED = re.compile(r"^ *(\d+)\| +0\|(.*)$")


def unreached_lines(shown):
    """(file, number, text) of every line with a count of 0 that is not excluded."""
    name = ""
    for line in shown:
        if line.startswith("/"):
            name = os.path.relpath(line.strip().rstrip(":"))
        match = UNREACHED.match(line)
        if match and match[2].strip() not in EXCLUDED | {"}"}:
            yield name, match[1], match[2].strip()


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        data = json.load(file)["data"][0]
    with open(sys.argv[2], encoding="utf-8") as file:
        unreached = list(unreached_lines(file))
    for entry in data["files"]:
        branches = entry["summary"]["branches"]
        if branches["count"] > 0:
            print(f"{os.path.relpath(entry['filename']):30} branches {branches['percent']:7.2f} %")
    for line in unreached:
        print("not reached: %s:%s: %s" % line)
    branches = data["totals"]["branches"]["percent"]
    print(f"{len(unreached)} lines not reached, branches {branches:.2f} %")
    return 0 if not unreached and branches >= LEAST_BRANCHES else 1


sys.exit(main())
