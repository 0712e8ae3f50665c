"""Counts the instructions of a program, which needs no quiet machine."""

import re
import shutil
import subprocess
import sys

# Nothing of the caller's environment counts: the C library looks at each variable.
ENVIRONMENT = {}
VALGRIND = shutil.which("valgrind")
COLLECTED = re.compile(r"Collected\s*:\s*(\d+)")


class Failure(Exception):
    """The measured program failed."""


def run(command, directory):
    """A finished run under callgrind; no profile is kept."""
    return subprocess.run(
        [VALGRIND, "--tool=callgrind", "--callgrind-out-file=/dev/null", *map(str, command)],
        cwd=directory, env=ENVIRONMENT, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
        text=True, check=False)


def obstacle(directory):
    """Why callgrind can't be used here, or an empty text."""
    if VALGRIND is None:
        return "valgrind is not installed"
    process = run(["/bin/true"], directory)
    if process.returncode != 0 or not COLLECTED.search(process.stderr):
        return "valgrind does not work here"
    return ""


def instructions(command, directory):
    """How many instructions a command takes that is to end with status 0."""
    process = run(command, directory)
    found = COLLECTED.search(process.stderr)
    if process.returncode != 0 or not found:
        sys.stderr.write(process.stderr)
        raise Failure(f"status {process.returncode} of {' '.join(map(str, command))}")
    return int(found.group(1))
