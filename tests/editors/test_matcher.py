"""The problem matchers of the VS Code extension, over every line of the expected outputs."""

import collections
import json

import pytest
import running
from diagnostics import expected_lines
from sources import EDITORS, ROOT

PACKAGE = EDITORS / "vscode" / "package.json"
SCRIPT = ROOT / "tests" / "editors" / "match_problems.js"

PATTERNS = {
    ("printed", "error"): ("hxzirpa", "Error"),
    ("printed", "warning"): ("hxzirpa", "Warning"),
    ("printed", "fatal"): ("hxzirpa", "error"),
    ("listed", "error"): ("hxzirpa-listing-error", "ERROR"),
    ("listed", "warning"): ("hxzirpa-listing-warning", "WARNING"),
    ("listed", "fatal"): ("hxzirpa-listing-fatal", "error"),
}
# Places and texts that are hard to tell apart; a listing's fatal error is in no expected output.
UNUSUAL = {
    "/w/a (2).szirpa (7) Error: Illegal label": (
        "hxzirpa", "/w/a (2).szirpa", "7", "Error", "Illegal label"
    ),
    "/w/a.szirpa (0)Fatal error: Cannot create output fil 'b (1) Error: c'": (
        "hxzirpa", "/w/a.szirpa", "0", "error", "Cannot create output fil 'b (1) Error: c'"
    ),
    '"/w/a b.szirpa" (0) Fatal error: Cannot create output fil \'"c" line 1, ERROR: \'': (
        "hxzirpa-listing-fatal", "/w/a b.szirpa", "0", "error",
        "Cannot create output fil '\"c\" line 1, ERROR: '",
    ),
    '"a.szirpa" line 3, ERROR: No label for "equ"': (
        "hxzirpa-listing-error", "a.szirpa", "3", "ERROR", 'No label for "equ"'
    ),
}
NO_DIAGNOSTICS = [
    "a.szirpa (3) Error: text",
    "see /w/a.szirpa (3) Error: text",
    "/w/a.szirpa (x) Error: text",
    "/w/a.szirpa (3)Error: text",
    "/w/a.szirpa (3)Warning: text",
    "/w/a.szirpa (3) Fatal error: text",
    "/w/a.szirpa (3) error: text",
    "/w/a.szirpa (3) Note: text",
    ' "a.szirpa" line 3, ERROR: text',
    '"a.szirpa" line 3,ERROR: text',
    '"a.szirpa" line 3, WARNING: text',
    '"a.szirpa" LINE: 3, WARNING: text',
    '"a.szirpa" LINE: 3,ERROR: text',
    '"a.szirpa" (3)Fatal error: text',
    "Fatal error: text",
]


def found_by_patterns(lines):
    running.need("node", "nodejs")
    command = ["node", SCRIPT, PACKAGE]
    return json.loads(running.printed_by(*command, input=json.dumps(lines), stderr=None))


def wanted_match(form, diagnostic):
    name, severity = PATTERNS[form, diagnostic.severity]
    fields = {
        "file": diagnostic.file,
        "line": str(diagnostic.line),
        "severity": severity,
        "message": diagnostic.message,
    }
    return {name: fields}


@pytest.fixture(scope="module")
def lines():
    return expected_lines()


def test_every_line_is_matched_by_its_pattern_alone(lines):
    found = found_by_patterns([text for text, _, _ in lines])
    for (text, form, diagnostic), matches in zip(lines, found):
        assert matches == (wanted_match(form, diagnostic) if diagnostic else {}), text


def test_expected_outputs_hold_every_form(lines):
    counts = collections.Counter(
        (form, diagnostic.severity) for _, form, diagnostic in lines if diagnostic
    )
    assert set(counts) == set(PATTERNS) - {("listed", "fatal")}
    assert counts["printed", "error"] > 1000
    assert counts["listed", "error"] > 50


@pytest.mark.parametrize("text", UNUSUAL)
def test_unusual_diagnostics_are_matched(text):
    name, *values = UNUSUAL[text]
    fields = dict(zip(("file", "line", "severity", "message"), values))
    assert found_by_patterns([text]) == [{name: fields}]


def test_near_misses_are_not_matched():
    for text, matches in zip(NO_DIAGNOSTICS, found_by_patterns(NO_DIAGNOSTICS)):
        assert not matches, text


def test_every_pattern_has_a_matcher():
    contributes = json.loads(PACKAGE.read_text())["contributes"]
    patterns = {f"${pattern['name']}" for pattern in contributes["problemPatterns"]}
    assert {matcher["pattern"] for matcher in contributes["problemMatchers"]} == patterns
    assert {f"${matcher['name']}" for matcher in contributes["problemMatchers"]} == patterns
