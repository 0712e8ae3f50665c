"""Every diagnostic, in a case of its own: ID.szirpa draws it, and ID.txt is what zirpa check says.

ID.args has options, one a line; where the first is "build", that is the command. A source ID.clean.szirpa
is nearly the same, or ID.clean.args are other options, and draws nothing.
"""

import pathlib
import shutil

import pytest
import running

CASES = pathlib.Path(__file__).resolve().parent / "diagnostics"
SOURCES = sorted(CASES.glob("*.szirpa"))


def stem_of(source):
    return source.name.split(".")[0]


def options_of(source):
    for options in (source.with_suffix(".args"), CASES / (stem_of(source) + ".args")):
        if options.exists():
            return options.read_text().splitlines()
    return []


def check(zirpa, source, directory):
    words = options_of(source)
    command = [] if words[:1] == ["build"] else ["check"]
    shutil.copy(source, directory)
    return running.run(directory, zirpa, *command, *words, source.name)


@pytest.mark.parametrize("source", SOURCES, ids=lambda source: source.name)
def test_diagnostics_are_as_expected(source, zirpa, tmp_path):
    process = check(zirpa, source, tmp_path)
    is_clean = source.name.endswith(".clean.szirpa")
    expected = b"" if is_clean else source.with_suffix(".txt").read_bytes()
    assert process.stderr.decode("utf-8", "replace") == expected.decode("utf-8", "replace")
    assert process.stdout == b""
    assert process.returncode == (1 if b" error: " in expected else 0)
