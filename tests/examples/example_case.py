"""Examples with their expected S-records, worked out by hand.

NAME.s19 belongs to examples/NAME.szirpa assembled without options. An example that is meant to be
assembled with options has variants: NAME.VARIANT.s19 with the options in NAME.VARIANT.args, one a
line.
"""

import pathlib

import running

EXPECTED = pathlib.Path(__file__).resolve().parent
SOURCES = EXPECTED.parents[1] / "examples"


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
        process = running.run(directory, program, *more_options, *self.options(), name)
        return process, running.files_below(directory)


def find_examples():
    """Every variant of every example."""
    return [ExampleCase(path.stem) for path in sorted(EXPECTED.glob("*.s19"))]


def find_sources():
    return sorted(SOURCES.glob("*.szirpa"))
