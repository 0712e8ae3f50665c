"""Texts under edits, positions in both encodings, and the diagnostics of a text."""

import pytest
from client import URI, edit, span

# U+1D11E is two units of UTF-16 and four bytes of UTF-8, U+00E4 is one unit and two bytes.
WIDE = "; \U0001d11e\u00e4\n"
FAULTY = "\tORG\t0\n\tLDXA\t#5\n"


def ranges(diagnostics):
    return [(each["code"], each["range"]) for each in diagnostics if "code" in each]


@pytest.fixture
def pulling(server):
    server.start({"textDocument": {"diagnostic": {}}})
    return server


def test_a_diagnostic_points_at_its_word(editor):
    editor.open(FAULTY)
    (found,) = editor.diagnostics()
    assert found["range"] == span(1, 1, 1, 5)
    assert found["severity"] == 1
    assert found["code"] == "unknown-instruction"
    assert found["message"] == "unknown instruction 'LDXA' (did you mean LDX or LDA?)"
    assert found["codeDescription"]["href"].endswith("/docs/diagnostics.md#unknown-instruction")


def test_diagnostics_have_the_version_of_the_text(editor):
    editor.open(FAULTY)
    editor.change(edit(1, 4, 1, 5, ""))
    first = editor.notification("textDocument/publishDiagnostics")
    if first["version"] == 1:  # the edit had not arrived when the text was analysed
        first = editor.notification("textDocument/publishDiagnostics")
    assert (first["version"], first["diagnostics"]) == (2, [])


def test_what_belongs_elsewhere_is_related(editor):
    editor.open("\tORG\t0\nloop\tNOP\nloop\tNOP\n")
    (found,) = editor.diagnostics()
    (related,) = found["relatedInformation"]
    assert related["message"] == "first defined here"
    assert related["location"] == {"uri": URI, "range": span(1, 0, 1, 4)}


def test_skipped_lines_are_shown_as_unnecessary(editor):
    editor.open("#ifdef NO\n NOP\n NOP\n#endif\n")
    (found,) = editor.diagnostics()
    assert found["range"] == span(1, 0, 2, 4)
    assert (found["severity"], found["tags"]) == (4, [1])


def test_unused_labels_are_unnecessary(server):
    server.start(options={"warn": ["unused-label"]})
    server.open("\tORG\t0\nidle\tNOP\n")
    (found,) = server.diagnostics()
    assert (found["code"], found["tags"]) == ("unused-label", [1])


def test_a_closed_document_has_no_diagnostics(editor):
    editor.open(FAULTY)
    assert editor.diagnostics()
    editor.notice("textDocument/didClose", textDocument={"uri": URI})
    assert editor.diagnostics() == []


def test_whoever_pulls_gets_nothing_unasked(pulling):
    pulling.open(FAULTY)
    report = pulling.of("diagnostic")
    assert report["kind"] == "full"
    assert ranges(report["items"]) == [("unknown-instruction", span(1, 1, 1, 5))]
    assert pulling.of("diagnostic", previousResultId=report["resultId"])["kind"] == "unchanged"
    pulling.change(edit(0, 0, 0, 0, "\n"))
    moved = pulling.of("diagnostic", previousResultId=report["resultId"])
    assert ranges(moved["items"]) == [("unknown-instruction", span(2, 1, 2, 5))]
    assert pulling.notices == []


# ---- Texts ----


@pytest.mark.parametrize("encoding, size", [("utf-16", 5), ("utf-8", 8)])
def test_positions_count_in_the_encoding(encoding, size, server):
    server.start({"general": {"positionEncodings": [encoding]}})
    server.open(WIDE + FAULTY)
    server.change(edit(0, size, 0, size, "!"))
    server.change(edit(0, 0, 0, size - 1, ""))
    # What is left is "ä!", and is no label: three bytes of UTF-8, two units of UTF-16.
    assert server.of("selectionRange", positions=[{"line": 0, "character": 99}])
    whole = {"line": 0, "character": 99}
    chain = server.of("selectionRange", positions=[whole])[0]
    while "parent" in chain and chain["range"]["end"]["line"] == 0:
        line, chain = chain["range"], chain["parent"]
    assert line["end"]["character"] == (3 if encoding == "utf-8" else 2)


@pytest.mark.parametrize("end", ["\n", "\r\n", "\r"])
def test_lines_end_in_three_ways(end, editor):
    editor.open(end.join(["; one", "; two", "; three"]))
    fold = editor.of("foldingRange")
    # A carriage return alone ends a line for an editor, but not for the assembler.
    expected = [] if end == "\r" else [{"startLine": 0, "endLine": 2, "kind": "comment"}]
    assert fold == expected
    editor.change(edit(1, 2, 1, 5, "2"))
    editor.change(edit(1, 3, 2, 0, ""))
    whole = editor.of("selectionRange", positions=[{"line": 0, "character": 0}])[0]
    while "parent" in whole:
        whole = whole["parent"]
    assert whole["range"] == span(0, 0, 1, 10)


def test_a_line_end_may_be_made_of_two_edits(editor):
    editor.open("; a\r; b\n")
    editor.change(edit(1, 0, 1, 0, "\n"))
    editor.open("\tNOP\n", "file:///other.szirpa")
    whole = editor.of("selectionRange", positions=[{"line": 1, "character": 1}])[0]
    assert whole["range"] == span(1, 0, 1, 3)


def test_changes_of_one_notification_follow_each_other(editor):
    editor.open("")
    editor.diagnostics()
    editor.change(edit(0, 0, 0, 0, "X"), edit(0, 1, 0, 1, "Y"), {"text": FAULTY}, edit(1, 4, 1, 5, ""))
    assert editor.diagnostics() == []


def test_positions_beyond_the_text_are_its_end(editor):
    editor.open("\tORG\t0")
    editor.change(edit(0, 99, 0, 99, "\n"), edit(99, 7, 2**31 - 1, 2**40, FAULTY))
    editor.diagnostics()
    assert editor.of("codeLens")


def test_a_range_that_is_turned_round_is_turned_back(editor):
    editor.open("\tNOXP\n")
    editor.change(edit(0, 4, 0, 3, ""))
    assert editor.of("codeLens")[0]["command"]["title"] == "1 of 256 bytes used"


def test_a_wrong_change_changes_nothing(editor):
    editor.open("\tNOP\n")
    editor.change(edit(0, 0, 0, 0, "\tNOP\n"), {"text": 7})
    assert editor.of("codeLens")[0]["command"]["title"] == "1 of 256 bytes used"


def test_a_file_that_does_not_end_is_analysed(editor):
    # The most that is reserved at once is 1 MiB, so that nobody waits.
    editor.open("\tORG\t0\n\tRMB\t4294967296\n")
    assert editor.diagnostics()[0]["code"] == "bad-reservation"
