"""What the README shows is what the program does."""

import pathlib
import shutil

import shown

ROOT = pathlib.Path(__file__).resolve().parents[2]


def test_what_is_shown_is_what_happens(program, tmp_path):
    reader = shown.Reader(program, tmp_path / "zirpa")
    for source in (ROOT / "examples").glob("*.szirpa"):
        shutil.copy(source, reader.directory)
    reader.play(ROOT / "README.md")
