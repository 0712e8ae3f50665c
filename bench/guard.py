#!/usr/bin/env python3
"""Fails when the program takes noticeably more instructions or mispredictions than it used to.

    bench/guard.py [--program PATH] [--store]

Counts them for three small workloads and compares the counts with those in guard.json. Where
valgrind can't run, nothing is compared.
"""

import argparse
import dataclasses
import json
import pathlib
import sys
import tempfile

import cachegrind
import generate

HERE = pathlib.Path(__file__).resolve().parent
STORED = HERE / "guard.json"
TOLERANCE_PERCENT = 10
# The workloads and the options that they are assembled with.
JOBS = {"guard-large": ["-L", "-S", "-g"], "guard-expressions": [], "guard-data": []}


def count(program):
    """Counts of each workload: its name -> what is counted -> how many."""
    with tempfile.TemporaryDirectory() as directory:
        generate.write(pathlib.Path(directory), JOBS)
        return {name: dataclasses.asdict(
                    cachegrind.counts([program, *options, f"{name}.szirpa"], directory))
                for name, options in JOBS.items()}


def changes(counted, stored):
    """Each count with its change in percent."""
    for name, counts in counted.items():
        for kind, value in counts.items():
            before = stored[name][kind]
            percent = 100 * (value - before) / before
            yield percent, f"{name}: {value:,} {kind}, {percent:+.1f} % against {before:,}"


def verdict(counted, stored):
    """What is to be said of the counts, a line each, and the status of the guard."""
    told = list(changes(counted, stored))
    if any(percent > TOLERANCE_PERCENT for percent, _ in told):
        advice = "FAILED: make it faster, or say why and store the new counts (--store)"
    elif any(percent < -TOLERANCE_PERCENT for percent, _ in told):
        advice = "passed: store the new counts (--store), so that they are kept"
    else:
        advice = "passed"
    return "\n".join([advice, *(text for _, text in told)]), advice.startswith("FAILED")


def guard(program, store):
    reason = cachegrind.obstacle("/")
    if reason:
        return f"SKIPPED: instructions and branches are not counted, since {reason}", False
    try:
        counted = count(program)
    except cachegrind.Failure as failure:
        return f"FAILED: {failure}", True
    if store:
        STORED.write_text(json.dumps(counted, indent=2) + "\n")
        return "stored", False
    return verdict(counted, json.loads(STORED.read_text()))


def main():
    parser = argparse.ArgumentParser(description="Guards instructions and mispredicted branches.")
    parser.add_argument("--program", type=pathlib.Path, default=HERE.parent / "build" / "HXzirpa")
    parser.add_argument("--store", action="store_true", help="store the counts instead")
    arguments = parser.parse_args()
    text, failed = guard(arguments.program.resolve(), arguments.store)
    print(text)
    return int(failed)


if __name__ == "__main__":
    sys.exit(main())
