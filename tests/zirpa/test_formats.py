"""The three formats say the same of a source."""

import json
import pathlib
import random
import re
import urllib.parse

import pytest
import running

ROOT = pathlib.Path(__file__).resolve().parents[2]
CASES = ROOT / "tests" / "zirpa" / "diagnostics"
RANDOM_SOURCES = 60
LINES = 25

HEAD = re.compile(
    r"^(?P<file>[^ ]+?):(?:(?P<line>\d+):)?(?:(?P<column>\d+):)? "
    r"(?P<severity>error|warning|note): (?P<message>.*?)(?: \[(?P<id>[a-z0-9-]+)\])?$"
)


def random_source(generator):
    """Lines that are put together from pieces of lines that draw something."""
    pieces = b"".join(path.read_bytes() for path in sorted(CASES.glob("*.szirpa"))).split(b"\n")
    lines = [generator.choice(pieces) for _ in range(LINES)]
    for number in generator.sample(range(LINES), 5):
        line = bytearray(lines[number])
        line.insert(generator.randrange(len(line) + 1), generator.randrange(1, 256))
        lines[number] = bytes(line)
    return b"\n".join(lines) + b"\n"


def sources():
    generator = random.Random(13)
    cases = [path.read_bytes() for path in sorted(CASES.glob("*.szirpa"))]
    return cases + [random_source(generator) for _ in range(RANDOM_SOURCES)]


@pytest.fixture(scope="module")
def reports(zirpa, tmp_path_factory):
    """What is said of all sources, as text, JSON and SARIF."""
    directory = tmp_path_factory.mktemp("sources")
    names = []
    for number, source in enumerate(sources()):
        names.append(f"s{number}.szirpa")
        (directory / names[-1]).write_bytes(source)
    text = running.run(directory, zirpa, "check", *names).stderr
    made = [
        running.run(directory, zirpa, "check", "--format", form, *names).stdout
        for form in ("json", "sarif")
    ]
    return text.decode("utf-8", "replace"), *made


def shown(text):
    """The text as a terminal gets it."""
    return "".join(
        "?" if (ch < " " and ch != "\t") or "\x7f" <= ch < "\xa0" or ch == "\ufffd" else ch for ch in text
    )


def places_of_text(text):
    """(file, line, column, severity, identifier, message) of all diagnostics and notes."""
    found = []
    for line in text.splitlines():
        if match := HEAD.match(line):
            numbers = (int(match[name] or 0) for name in ("line", "column"))
            found.append((match["file"], *numbers, match["severity"], match["id"], match["message"]))
    return found


def places_of_json(document):
    for file in document["files"]:
        for each in file["diagnostics"]:
            entry = (each.get("line", 0), each.get("column", 0))
            yield each["file"], *entry, each["severity"], each["id"], shown(each["message"])
            for note in each.get("notes", []):
                entry = (note["line"], note.get("column", 0))
                yield each["file"], *entry, "note", None, shown(note["message"])


def place_of_location(location):
    place = location["physicalLocation"]
    region = place.get("region", {})
    name = urllib.parse.unquote(place["artifactLocation"]["uri"])
    return name, region.get("startLine", 0), region.get("startColumn", 0)


def places_of_sarif(document):
    for each in document["runs"][0]["results"]:
        place = place_of_location(each["locations"][0])
        yield *place, each["level"], each["ruleId"], shown(each["message"]["text"])
        for note in each.get("relatedLocations", []):
            yield *place_of_location(note), "note", None, shown(note["message"]["text"])


def test_texts_and_places_are_the_same_in_all_formats(reports):
    text, as_json, as_sarif = reports
    in_json = list(places_of_json(json.loads(as_json)))
    assert len(in_json) > RANDOM_SOURCES
    assert list(places_of_sarif(json.loads(as_sarif))) == in_json
    assert places_of_text(text) == in_json


def test_counts_and_status_are_those_of_the_diagnostics(reports):
    for file in json.loads(reports[1])["files"]:
        severities = [each["severity"] for each in file["diagnostics"]]
        assert file["errors"] == severities.count("error")
        assert file["warnings"] == severities.count("warning")
        assert file["status"] == (1 if file["errors"] else 0)


def test_ends_of_places_are_the_same(reports):
    _, as_json, as_sarif = reports
    ends = [
        each.get("endColumn", 0)
        for file in json.loads(as_json)["files"]
        for each in file["diagnostics"]
    ]
    results = json.loads(as_sarif)["runs"][0]["results"]
    regions = [each["locations"][0]["physicalLocation"].get("region", {}) for each in results]
    assert [region.get("endColumn", 0) for region in regions] == ends
