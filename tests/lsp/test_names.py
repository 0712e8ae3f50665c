"""Names: definitions, references, highlights, renaming, outlines."""

import pytest
from client import URI, span

SOURCE = """\
SIZE\tEQU\t3
\tORG\t$10
loop\tLDA\t#SIZE
\tBRA\tloop
#ifdef OTHER
\tLDX\t#SIZE
#endif
\tEND\tloop
"""
REQUEST_FAILED = -32803


@pytest.fixture
def opened(editor):
    editor.open(SOURCE)
    return editor


def ranges(locations):
    assert all(each["uri"] == URI for each in locations)
    return [each["range"] for each in locations]


def test_a_use_leads_to_the_definition(opened):
    assert ranges(opened.at("definition", 3, 6)) == [span(2, 0, 2, 4)]
    assert ranges(opened.at("definition", 2, 10)) == [span(0, 0, 0, 4)]
    assert opened.at("definition", 2, 6) == []


def test_uses_are_found_with_the_start_address(opened):
    uses = [span(3, 5, 3, 9), span(7, 5, 7, 9)]
    found = opened.at("references", 2, 1, context={"includeDeclaration": False})
    assert ranges(found) == uses
    found = opened.at("references", 3, 6, context={"includeDeclaration": True})
    assert ranges(found) == [span(2, 0, 2, 4), *uses]


def test_highlights_tell_definitions_from_uses(opened):
    found = opened.at("documentHighlight", 0, 0)
    assert [(each["kind"], each["range"]) for each in found] == [
        (3, span(0, 0, 0, 4)),
        (2, span(2, 10, 2, 14)),
    ]


# ---- Renaming ----


def renamed(editor, line, character, name):
    return editor.ask(
        "textDocument/rename",
        textDocument={"uri": URI},
        position={"line": line, "character": character},
        newName=name,
    )


def test_a_name_is_renamed_in_skipped_blocks_too(opened):
    edits = renamed(opened, 0, 1, "COUNT")["result"]["changes"][URI]
    assert sorted(each["range"]["start"]["line"] for each in edits) == [0, 2, 5]
    assert {each["newText"] for each in edits} == {"COUNT"}


@pytest.mark.parametrize(
    "name", ["A", "sp", "X.1", "LDA", "equ", "loop", "1st", "a b", "", "N" * 129, "pl\u00e4ne"]
)
def test_names_that_would_be_something_else_are_refused(name, opened):
    assert renamed(opened, 0, 1, name)["error"]["code"] == REQUEST_FAILED


def test_case_counts_unless_it_is_said_not_to(server):
    server.start()
    server.open(SOURCE)
    assert "result" in renamed(server, 0, 1, "Loop")


def test_where_case_does_not_count_the_other_case_is_taken(server):
    server.start(options={"compatibility": ["nocase"]})
    server.open(SOURCE.replace("#SIZE", "#Size"))
    assert "error" in renamed(server, 0, 1, "Loop")
    edits = renamed(server, 0, 1, "size")["result"]["changes"][URI]
    assert sorted(each["range"]["start"]["line"] for each in edits) == [0, 2, 5]


def test_a_name_that_changes_the_program_is_refused(opened):
    # The block would be taken.
    opened.open(SOURCE.replace("#ifdef OTHER", "#ifdef LATER"))
    assert "error" in renamed(opened, 0, 1, "LATER")


@pytest.mark.parametrize("line, character", [(2, 6), (1, 6), (4, 9)])
def test_what_is_no_name_of_the_source_is_not_renamed(line, character, opened):
    assert opened.at("prepareRename", line, character) is None
    assert "error" in renamed(opened, line, character, "other")


def test_the_name_that_is_renamed_is_shown(opened):
    found = opened.at("prepareRename", 3, 7)
    assert found == {"range": span(3, 5, 3, 9), "placeholder": "loop"}


# ---- Outlines ----


def test_the_outline_has_values(server):
    nested = {"documentSymbol": {"hierarchicalDocumentSymbolSupport": True}}
    server.start({"textDocument": nested})
    server.open(SOURCE)
    found = server.of("documentSymbol")
    assert [(each["name"], each["kind"], each["detail"]) for each in found] == [
        ("SIZE", 14, "3 ($3)"),
        ("loop", 12, "16 ($10)"),
    ]
    assert found[0]["selectionRange"] == span(0, 0, 0, 4)
    assert found[0]["range"] == span(0, 0, 0, 10)


def test_the_outline_is_flat_for_clients_of_old(opened):
    found = opened.of("documentSymbol")
    assert found[1]["location"] == {"uri": URI, "range": span(2, 0, 2, 4)}


def test_names_of_all_documents_are_found_by_their_letters(opened):
    opened.open("\tORG\t0\nloopback\tNOP\n", "file:///project/b.szirpa")
    found = opened.result("workspace/symbol", query="LP")
    assert sorted(each["name"] for each in found) == ["loop", "loopback"]


# ---- Structure ----


def test_conditionals_and_comments_fold(editor):
    editor.open("; a\n; b\n##if 1\n\tNOP\n#else\n\tNOP\n\tNOP\n#endif\n")
    assert editor.of("foldingRange") == [
        {"startLine": 0, "endLine": 1, "kind": "comment"},
        {"startLine": 2, "endLine": 3, "kind": "region"},
        {"startLine": 4, "endLine": 6, "kind": "region"},
    ]


def test_a_selection_grows_by_steps(editor):
    editor.open("##if 1\n\tLDA\t#5+1 ; x\n#endif\n")
    step = editor.of("selectionRange", positions=[{"line": 1, "character": 6}])[0]
    found = []
    while step:
        found.append(step["range"])
        step = step.get("parent")
    assert found == [
        span(1, 6, 1, 7), span(1, 5, 1, 9), span(1, 0, 1, 13), span(0, 0, 2, 6), span(0, 0, 3, 0)
    ]  # fmt: skip


def test_the_bytes_that_are_used_are_counted(opened):
    assert opened.of("codeLens")[0]["command"]["title"] == "4 of 256 bytes used"


# ---- Lines that have an error ----


def test_names_on_faulty_lines_are_found(editor):
    # The assembler does not look at the operand where a label is defined twice.
    editor.open("SIZE\tEQU\t3\n\tORG\t0\na\tNOP\na\tLDA\t#SIZE\n")
    assert ranges(editor.at("definition", 3, 8)) == [span(0, 0, 0, 4)]
    uses = editor.at("references", 0, 0, context={"includeDeclaration": False})
    assert ranges(uses) == [span(3, 7, 3, 11)]
    edits = renamed(editor, 0, 0, "COUNT")["result"]["changes"][URI]
    assert sorted(each["range"]["start"]["line"] for each in edits) == [0, 3]
