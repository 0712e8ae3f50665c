#!/usr/bin/env python3
"""Checks that no module of the program uses one above it, and that there is no circle.

    tools/check_floors.py [--library PATH] [--list]

A module is a header and its source. What it uses is read from its includes, and from the symbols
that its object file takes from others (nm), so that nothing is used by way of somebody else's
header. The floors are those of tools/floors.txt. --list prints each floor with what its modules
use.
"""

import argparse
import collections
import fnmatch
import pathlib
import re
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
FLOORS = TOP / "tools" / "floors.txt"
FOLDERS = ["as", "target", "expr", "symtab", "util", "door", "dis", "zirpa", "zirpa/lsp",
           "web"]
INCLUDE = re.compile(r'^#include "((?:%s)/\w+)\.h"' % "|".join(FOLDERS), re.MULTILINE)


def files():
    """The program's headers and sources, in order of their names."""
    return [path for folder in FOLDERS for path in sorted((TOP / folder).glob("*"))
            if path.suffix in (".h", ".cpp")]


def module_of(path):
    return path.relative_to(TOP).with_suffix("").as_posix()


def included():
    """The modules that each module includes."""
    uses = {module_of(path): set() for path in files()}
    for path in files():
        uses[module_of(path)].update(INCLUDE.findall(path.read_text()))
    return uses


def linked(library):
    """The modules from which each module's object file takes a symbol."""
    listed = subprocess.run(["nm", "-A", library],
                            capture_output=True, text=True, check=True).stdout
    # The library holds the lowest of those that have the same name.
    modules = {pathlib.PurePath(module).name: module for module in reversed(list(included()))}
    owners, wanted = {}, collections.defaultdict(set)
    for line in listed.splitlines():
        place, symbol = line.rsplit(" ", 1)
        member, kind = place.split(":")[1], place.split()[-1]
        module = modules.get(member.split(".")[0])
        if kind in "TDBR":
            owners[symbol] = module
        elif kind == "U":
            wanted[module].add(symbol)
    return {module: {owners[symbol] for symbol in symbols if symbol in owners}
            for module, symbols in wanted.items()}


def read_floors():
    """The list of floors, each a list of names, and the arrows that are allowed for now."""
    floors, exceptions = [], set()
    for line in FLOORS.read_text().splitlines():
        line = line.split("#")[0].strip()
        if line.startswith("except "):
            exceptions.add(tuple(re.split(r"\s*->\s*", line[len("except "):])))
        elif line:
            floors.append(line.split())
    return floors, exceptions


def floor_of(module, floors):
    """The number of a module's floor, or None."""
    for matches in (lambda name: name == module, lambda name: fnmatch.fnmatch(module, name)):
        for number, names in enumerate(floors):
            if any(map(matches, names)):
                return number
    return None


def circles(uses):
    """The groups of modules that can all reach each other."""
    def reach(start):
        seen, waiting = set(), [start]
        while waiting:
            for module in uses[waiting.pop()] - seen:
                seen.add(module)
                waiting.append(module)
        return seen
    reached = {module: reach(module) for module in uses}
    return sorted({tuple(sorted(other for other in uses
                                if other in reached[module] and module in reached[other]))
                   for module in uses if module in reached[module]})


def arrows(library=None):
    """What each module uses, itself left out."""
    uses = included()
    if library:
        for module, others in linked(library).items():
            uses[module] |= others
    return {module: others - {module} for module, others in uses.items()}


def arrows_up(uses, floors):
    return sorted((module, other) for module, others in uses.items() for other in others
                  if floor_of(other, floors) > floor_of(module, floors))


def print_floors(uses, floors):
    for number in reversed(range(len(floors))):
        for module in sorted(module for module in uses if floor_of(module, floors) == number):
            print(f"{number:2}  {module:18} {'  '.join(sorted(uses[module]))}".rstrip())


def faults(uses, floors, exceptions):
    """A sentence for each fault."""
    homeless = [module for module in uses if floor_of(module, floors) is None]
    if homeless:
        return [f"{module} has no floor in {FLOORS.name}" for module in homeless]
    allowed = {module: {other for other in others if (module, other) not in exceptions}
               for module, others in uses.items()}
    found = [f"{module} uses {other}, which stands above it"
             for module, other in arrows_up(allowed, floors)]
    return found + ["a circle: " + ", ".join(circle) for circle in circles(allowed)]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--library", help="the program's library, for the symbols that are used")
    parser.add_argument("--list", action="store_true", help="print the floors")
    arguments = parser.parse_args()
    uses = arrows(arguments.library)
    floors, exceptions = read_floors()
    found = faults(uses, floors, exceptions)
    if arguments.list:
        print_floors(uses, floors)
    for module, other in sorted(exceptions):
        if other not in uses.get(module, ()):
            print(f"not needed any more: except {module} -> {other}")
    for sentence in found:
        print(f"floors: {sentence}", file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
