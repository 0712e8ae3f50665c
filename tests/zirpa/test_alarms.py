"""No false alarm: examples and the golden cases that are meant to be clean draw nothing, but for those
whose very rule is a trap. alarms.txt names these, with what each is warned of; every line has been read
against its source."""

import pathlib
import re

import golden_case
import pytest
import running

ROOT = pathlib.Path(__file__).resolve().parents[2]
ALARMS = {
    line.split()[0]: line.split()[1:]
    for line in (ROOT / "tests" / "zirpa" / "alarms.txt").read_text().splitlines()
}
CLEAN = [
    case
    for case in golden_case.find_cases()
    if b" Error: " not in case.expected_output("") and case.expected_status() == 0
]
DIAGNOSTIC = re.compile(r": (?:warning|error): .*\[([a-z0-9-]+)\]$", re.MULTILINE)


@pytest.mark.parametrize("case", [pytest.param(case, id=case.identifier) for case in CLEAN])
def test_a_clean_case_draws_what_its_rule_is_about(case, zirpa, tmp_path):
    case.prepare(tmp_path)
    process = running.run(tmp_path, zirpa, "build", *case.arguments())
    drawn = sorted(set(DIAGNOSTIC.findall(process.stderr.decode("latin-1"))))
    assert drawn == ALARMS.get(case.identifier, [])


@pytest.mark.parametrize("source", sorted((ROOT / "examples").glob("*.szirpa")), ids=str)
def test_examples_draw_nothing(source, zirpa):
    process = running.run(source.parent, zirpa, "check", source.name)
    assert (process.returncode, process.stderr) == (0, b"")
