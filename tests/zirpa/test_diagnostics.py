"""Every diagnostic, in a case of its own: ID.szirpa draws it, and ID.txt is what zirpa check says.

ID.args has options, one a line. A source ID.clean.szirpa is nearly the same and draws nothing.
"""

import pathlib

import pytest
import running

CASES = pathlib.Path(__file__).resolve().parent / "diagnostics"
SOURCES = sorted(CASES.glob("*.szirpa"))


def stem_of(source):
    return source.name.split(".")[0]


def check(zirpa, source):
    options = CASES / (stem_of(source) + ".args")
    words = options.read_text().splitlines() if options.exists() else []
    return running.run(CASES, zirpa, "check", *words, source.name)


@pytest.mark.parametrize("source", SOURCES, ids=lambda source: source.name)
def test_diagnostics_are_as_expected(source, zirpa):
    process = check(zirpa, source)
    is_clean = source.name.endswith(".clean.szirpa")
    expected = b"" if is_clean else source.with_suffix(".txt").read_bytes()
    assert process.stderr.decode("utf-8", "replace") == expected.decode("utf-8", "replace")
    assert process.stdout == b""
    assert process.returncode == (1 if b" error: " in expected else 0)
