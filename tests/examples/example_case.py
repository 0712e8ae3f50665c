"""Examples with their expected S-records, worked out by hand.

NAME.s19 belongs to examples/NAME.szirpa assembled without options. An example that is meant to be
assembled with options has variants: NAME.VARIANT.s19 with the options in NAME.VARIANT.args, one a
line.
"""

import pathlib
import subprocess

EXPECTED = pathlib.Path(__file__).resolve().parent
SOURCES = EXPECTED.parents[1] / "examples"
TIME_LIMIT_SECONDS = 60


class ExampleCase:
    """One example in one of its variants."""

    def __init__(self, identifier):
        self.identifier = identifier
        self.stem = identifier.partition(".")[0]
        self.source_path = SOURCES / (self.stem + ".szirpa")

    def options(self):
        path = EXPECTED / (self.identifier + ".args")
        return path.read_text().splitlines() if path.is_file() else []

    def expected_records(self):
        return (EXPECTED / (self.identifier + ".s19")).read_bytes()

    def run(self, program, directory, *more_options):
        """Assembles the example in an empty directory; returns the process and the files."""
        name = self.stem + ".szirpa"
        (directory / name).write_bytes(self.source_path.read_bytes())
        process = subprocess.run(
            [program, *more_options, *self.options(), name],
            cwd=directory,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=TIME_LIMIT_SECONDS,
            check=False,
        )
        return process, {path.name: path.read_bytes() for path in directory.iterdir()}


def find_examples():
    """Every variant of every example."""
    return [ExampleCase(path.stem) for path in sorted(EXPECTED.glob("*.s19"))]


def find_sources():
    return sorted(SOURCES.glob("*.szirpa"))
