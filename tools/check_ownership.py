#!/usr/bin/env python3
"""Checks that modules change each other's state only as docs/architecture.md says.

    tools/check_ownership.py [--build DIRECTORY] [--list]

Every module owns the state that its header declares. clang-query finds where such state is changed:
assigned, counted up, handed on for a change, or changed by a function of its own. What a module
changes of others is compared with the third column of the table of modules. --list prints it.
"""

import argparse
import collections
import fnmatch
import pathlib
import re
import subprocess
import sys

import check_floors

TABLE = check_floors.TOP / "docs" / "architecture.md"
OWNING = ["as", "target", "expr", "symtab", "util", "door"]

# Everyone writes text to the streams: that is their use and no change of their owner's state.
# Looking into a container through a function that could also change it is no change either.
QUERY = r"""
set bind-root false
let global varDecl(hasGlobalStorage(), hasExternalFormalLinkage(),
    unless(anyOf(hasType(isConstQualified()), hasType(cxxRecordDecl(hasName("OutputFile"))),
                 isExpansionInSystemHeader())))
let state ignoringParenImpCasts(declRefExpr(to(global)).bind("state"))
let member memberExpr(hasObjectExpression(state))
let element expr(anyOf(arraySubscriptExpr(hasBase(state)),
    cxxOperatorCallExpr(hasOverloadedOperatorName("[]"), hasArgument(0, state))))
let place expr(anyOf(state, member, element))
let reader cxxMethodDecl(anyOf(isConst(), hasAnyName("at", "back", "begin", "data", "end", "front",
    "operator[]")))
let changed parmVarDecl(hasType(lValueReferenceType(pointee(unless(isConstQualified())))))
match expr(unless(isExpansionInSystemHeader()), anyOf(
    binaryOperator(isAssignmentOperator(), hasLHS(place)),
    unaryOperator(hasAnyOperatorName("++", "--", "&"), hasUnaryOperand(place)),
    cxxOperatorCallExpr(hasAnyOverloadedOperatorName("=", "+=", "++", "--"), hasArgument(0, place)),
    cxxMemberCallExpr(on(place), unless(callee(reader))),
    callExpr(unless(cxxOperatorCallExpr()), forEachArgumentWithParam(place, changed))))
"""
BOUND = re.compile(r'^(/.*):(\d+):(\d+): note: "state" binds here', re.MULTILINE)
REFUSED = re.compile(r"^\d+:\d+: ", re.MULTILINE)  # a place in the query
DECLARED = re.compile(r"^extern .*?(?:\(\*(\w+)\).*|\b(\w+)(?:\[\w*\])?);", re.MULTILINE)


def owners():
    """The module that owns each name of the state."""
    return {pointer or name: check_floors.module_of(header)
            for header in check_floors.files() if header.suffix == ".h"
            for pointer, name in DECLARED.findall(header.read_text())}


def changes(build):
    """The names of others that each module changes, with a place of each change."""
    owner = owners()
    # The others include no header of these folders, so there is no state that they could change.
    sources = [path for path in check_floors.files()
               if path.suffix == ".cpp" and path.parent.name in OWNING]
    # A statement of clang-query ends with its line.
    commands = re.sub(r"\n +", " ", QUERY).strip().splitlines()
    options = [word for command in commands for word in ("-c", command)]
    run = subprocess.run(["clang-query-14", "-p", build, *options, *sources],
                         capture_output=True, text=True, check=True)
    if REFUSED.search(run.stdout) or not BOUND.search(run.stdout):
        sys.exit(f"clang-query finds nothing:\n{run.stdout[:2000]}{run.stderr[-2000:]}")
    found = collections.defaultdict(dict)
    for path, line, column in BOUND.findall(run.stdout):
        path = pathlib.Path(path)
        text = path.read_text().splitlines()[int(line) - 1][int(column) - 1:]
        name = re.match(r"\w+", text).group()
        module = check_floors.module_of(path)
        if owner.get(name, module) != module:
            found[module].setdefault(name, f"{module}{path.suffix}:{line}")
    return found


def listed():
    """The names that the table lets each module change; they may hold wildcards."""
    table = {}
    for row in TABLE.read_text().splitlines():
        columns = row.split("|")
        module = re.match(r" `(\w+/\w*)`", columns[1]) if len(columns) == 6 else None
        if module:
            table[module.group(1)] = re.findall(r"`([\w*]+)[^`]*`", columns[3])
    return table


def faults(found, table):
    """A sentence for each difference."""
    owner = owners()
    for module, names in sorted(found.items()):
        for name, place in sorted(names.items()):
            if not any(fnmatch.fnmatch(name, row) for row in table.get(module, [])):
                yield f"{place}: changes {name} of {owner[name]}, which the table does not list"
    for module, rows in sorted(table.items()):
        for row in rows:
            if not any(fnmatch.fnmatch(name, row) for name in found.get(module, {})):
                yield f"the table lets {module} change {row}, which it does not"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", default="build/clang", help="holds compile_commands.json")
    parser.add_argument("--list", action="store_true", help="print what each module changes")
    arguments = parser.parse_args()
    found = changes(arguments.build)
    if arguments.list:
        for module, names in sorted(found.items()):
            print(f"{module:16} {' '.join(sorted(names))}")
    sentences = list(faults(found, listed()))
    for sentence in sentences:
        print(f"ownership: {sentence}", file=sys.stderr)
    return 1 if sentences else 0


if __name__ == "__main__":
    sys.exit(main())
