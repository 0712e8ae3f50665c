#!/usr/bin/env python3
"""Prints figures on the program's sources: floors, sizes of files and functions, comments.

    tools/figures.py [DIRECTORY]

Run by hand, to see whether the house stays in order; nothing is held against the figures. Functions
are those that universal-ctags finds with their last lines. The share of comments counts the lines
that hold one.
"""

import json
import pathlib
import statistics
import subprocess
import sys

import check_floors

LONG_FUNCTION = 60


def functions(sources):
    """The functions that the sources define, as pairs of their lines and their names."""
    listed = subprocess.run(
        ["ctags", "--output-format=json", "--fields=+ne", "--kinds-C++=f", "--language-force=C++",
         "-o", "-", *map(str, sources)], capture_output=True, text=True, check=True).stdout
    tags = [json.loads(line) for line in listed.splitlines()]
    return sorted((tag["end"] - tag["line"] + 1, tag["name"]) for tag in tags if "end" in tag)


def comment_share(paths):
    """The part of the lines that hold a comment, in percent."""
    lines = [line for path in paths for line in path.read_text().splitlines()]
    return 100 * sum("//" in line for line in lines) / len(lines)


def main():
    if len(sys.argv) > 1:
        check_floors.TOP = pathlib.Path(sys.argv[1]).resolve()
    paths = check_floors.files()
    sources = [path for path in paths if path.suffix == ".cpp"]
    headers = [path for path in paths if path.suffix == ".h"]
    uses = check_floors.arrows()
    floors, exceptions = check_floors.read_floors()
    circles = check_floors.circles(uses)
    known = {module for module in uses if check_floors.floor_of(module, floors) is not None}
    up = check_floors.arrows_up({module: uses[module] & known for module in known}, floors)
    lengths = sorted((len(path.read_text().splitlines()), path.name) for path in sources)
    found = functions(sources)
    long = [name for lines, name in found if lines > LONG_FUNCTION]
    print(f"modules             {len(uses)}, in circles: {sum(map(len, circles))}")
    print(f"arrows up           {len(up)}, allowed for now: {len(exceptions & set(up))}")
    print(f"sources             {len(sources)}, {sum(lines for lines, _ in lengths):,} lines, "
          f"median {statistics.median(lines for lines, _ in lengths):g}, "
          f"longest {lengths[-1][0]} ({lengths[-1][1]})")
    print(f"functions           {len(found)}, "
          f"median {statistics.median(lines for lines, _ in found):g}, "
          f"longest {found[-1][0]} ({found[-1][1]})")
    print(f"above {LONG_FUNCTION} lines      {len(long)} {' '.join(long)}".rstrip())
    print(f"comments, sources   {comment_share(sources):.1f} %")
    print(f"comments, headers   {comment_share(headers):.1f} %")


if __name__ == "__main__":
    main()
