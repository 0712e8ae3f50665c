"""The sources and the expected outputs that the editors' files are tried on."""

import pathlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
EDITORS = ROOT / "editors"
GOLDEN = ROOT / "tests" / "golden"
# Where the expected outputs have this, a run has its working directory.
DIRECTORY = "/home/user/zirpa"


def all_sources():
    return sorted((ROOT / "examples").glob("*.szirpa")) + sorted(GOLDEN.glob("*/*.szirpa"))


def lines_of(path):
    """A file's lines, every byte as one character."""
    text = path.read_bytes().decode("latin-1").replace("@DIR@", DIRECTORY)
    return [line.removesuffix("\r") for line in text.split("\n")]


def expected_outputs():
    """All that the program is expected to print."""
    return sorted(GOLDEN.glob("*/*.out"))


def expected_listings():
    return sorted(path for path in GOLDEN.rglob("*.lst") if path.is_file())
