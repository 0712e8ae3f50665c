"""What the README shows is what the program does."""

import pathlib

import shown

ROOT = pathlib.Path(__file__).resolve().parents[2]


def test_what_is_shown_is_what_happens(program, tmp_path):
    reader = shown.Reader(program, tmp_path / "zirpa")
    for source in sorted((ROOT / "examples").glob("*.szirpa")):
        reader.write(source.name, source.read_text())
    shown.Play("README.md", (ROOT / "README.md").read_text(), reader).play()
