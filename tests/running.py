"""How tests run a program, in a directory, with nothing to read and for a limited time; and how its
outputs begin."""

import functools
import shutil
import subprocess

import pytest

TIME_LIMIT_SECONDS = 60

VERSION = "1.3"
BANNER = (
    f"HXzirpa - ZIRPA Absolute crossassembler, Version {VERSION}\n"
    "Free software under the MIT License.\n"
).encode()


def run(directory, *command, **options):
    """The finished process, with what it has printed."""
    given = {
        "stdin": subprocess.DEVNULL,
        "stdout": subprocess.PIPE,
        "stderr": subprocess.PIPE,
        "timeout": TIME_LIMIT_SECONDS,
        **options,
    }
    if "input" in options:
        del given["stdin"]  # subprocess makes a pipe of its own
    return subprocess.run(command, cwd=directory, check=False, **given)


def need(command, package):
    assert shutil.which(command), f"{command} is missing: the Debian package {package} is needed"


@functools.cache
def need_npm_registry():
    need("npm", "npm")
    ping = ["npm", "ping", "--fetch-retries=1", "--fetch-timeout=20000"]
    if subprocess.run(ping, capture_output=True, check=False).returncode != 0:
        pytest.skip("npm's registry can't be reached, so the extension's tools can't be installed")


def printed_by(*command, cwd=None, **options):
    """What a command that must succeed prints, errors included."""
    given = {"stderr": subprocess.STDOUT, "timeout": 600, "text": True, **options}
    process = run(cwd, *command, **given)
    assert process.returncode == 0, f"{command}\n{process.stdout}"
    return process.stdout


def files_below(directory):
    """All files below a directory: relative name to content."""
    return {
        path.relative_to(directory).as_posix(): path.read_bytes()
        for path in sorted(directory.rglob("*"))
        if path.is_file()
    }
