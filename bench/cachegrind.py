"""Counts the instructions and mispredicted branches of a program, which needs no quiet machine.

The branches are those that a simple predictor would miss, always the same ones; a processor's own
misses fewer, by its make and by what it has learnt.
"""

import dataclasses
import re
import shutil
import subprocess
import sys

# Nothing of the caller's environment counts: the C library looks at each variable.
ENVIRONMENT = {}
VALGRIND = shutil.which("valgrind")
INSTRUCTIONS = re.compile(r"I\s+refs:\s+([\d,]+)")
MISPREDICTIONS = re.compile(r"Mispredicts:\s+([\d,]+)")


class Failure(Exception):
    """The measured program failed."""


@dataclasses.dataclass(frozen=True)
class Counts:
    instructions: int
    mispredictions: int


def run(command, directory):
    """A finished run under cachegrind; no profile is kept."""
    return subprocess.run(
        [VALGRIND, "--tool=cachegrind", "--cache-sim=no", "--branch-sim=yes",
         "--cachegrind-out-file=/dev/null", *map(str, command)],
        cwd=directory, env=ENVIRONMENT, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
        text=True, check=False)


def obstacle(directory):
    """Why cachegrind can't be used here, or an empty text."""
    if VALGRIND is None:
        return "valgrind is not installed"
    process = run(["/bin/true"], directory)
    if process.returncode != 0 or not MISPREDICTIONS.search(process.stderr):
        return "valgrind does not work here"
    return ""


def counts(command, directory):
    """What a command takes that is to end with status 0."""
    process = run(command, directory)
    found = [pattern.search(process.stderr) for pattern in (INSTRUCTIONS, MISPREDICTIONS)]
    if process.returncode != 0 or not all(found):
        sys.stderr.write(process.stderr)
        raise Failure(f"status {process.returncode} of {' '.join(map(str, command))}")
    return Counts(*(int(match.group(1).replace(",", "")) for match in found))
