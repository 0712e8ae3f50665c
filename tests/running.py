"""How tests run a program: in a directory, with nothing to read and for a limited time."""

import subprocess

TIME_LIMIT_SECONDS = 60


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


def files_below(directory):
    """All files below a directory: relative name to content."""
    return {
        path.relative_to(directory).as_posix(): path.read_bytes()
        for path in sorted(directory.rglob("*"))
        if path.is_file()
    }
