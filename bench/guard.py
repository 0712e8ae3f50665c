#!/usr/bin/env python3
"""Fails when the program takes noticeably more instructions than it used to.

    bench/guard.py [--program PATH] [--store]

Counts the instructions for a small workload with all outputs and compares them with the figure in
guard.json. Where valgrind can't run, nothing is compared.
"""

import argparse
import json
import pathlib
import sys
import tempfile

import callgrind
import generate

HERE = pathlib.Path(__file__).resolve().parent
STORED = HERE / "guard.json"
TOLERANCE_PERCENT = 10
OPTIONS = ["-L", "-S", "-g"]


def count(program, directory):
    generate.write(directory, ["guard-large"])
    return callgrind.instructions([program, *OPTIONS, "guard-large.szirpa"], directory)


def verdict(counted, stored):
    """A sentence on the change, and the status of the guard."""
    percent = 100 * (counted - stored) / stored
    text = f"{counted:,} instructions, {percent:+.1f} % against {stored:,}"
    if percent > TOLERANCE_PERCENT:
        return f"FAILED: {text}; make it faster, or say why and store the new figure (--store)", 1
    if percent < -TOLERANCE_PERCENT:
        return f"passed: {text}; store the new figure (--store), so that it is kept", 0
    return f"passed: {text}", 0


def guard(program, store):
    with tempfile.TemporaryDirectory() as name:
        directory = pathlib.Path(name)
        reason = callgrind.obstacle(directory)
        if reason:
            return f"SKIPPED: the number of instructions is not compared, since {reason}", 0
        try:
            counted = count(program, directory)
        except callgrind.Failure as failure:
            return f"FAILED: {failure}", 1
    if store:
        STORED.write_text(json.dumps({"instructions": counted}) + "\n")
        return f"stored: {counted:,} instructions", 0
    if not STORED.exists():
        return "FAILED: there is no stored figure (--store)", 1
    return verdict(counted, json.loads(STORED.read_text())["instructions"])


def main():
    parser = argparse.ArgumentParser(description="Guards the number of instructions.")
    parser.add_argument("--program", type=pathlib.Path, default=HERE.parent / "build" / "HXzirpa")
    parser.add_argument("--store", action="store_true", help="store the figure instead")
    arguments = parser.parse_args()
    text, status = guard(arguments.program.resolve(), arguments.store)
    print(text)
    return status


if __name__ == "__main__":
    sys.exit(main())
