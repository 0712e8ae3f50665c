"""What changes a text: quick fixes and formatting. A fix is taken, and its diagnostic is gone."""

import pytest
from client import URI, edit, span

BLANKS = {"tabSize": 8, "insertSpaces": True}


def applied(text, edits):
    """The text after edits; columns are those of plain characters."""
    lines = text.split("\n")
    offset = [0]
    for line in lines:
        offset.append(offset[-1] + len(line) + 1)

    def place(position):
        return min(offset[position["line"]] + position["character"], len(text))

    for each in sorted(edits, key=lambda one: place(one["range"]["start"]), reverse=True):
        begin, end = place(each["range"]["start"]), place(each["range"]["end"])
        text = text[:begin] + each["newText"] + text[end:]
    return text


def fixes(editor, text):
    editor.open(text)
    return editor.of("codeAction", range=span(0, 0, 99, 0), context={"diagnostics": []})


ORG = "\tORG\t0\n"


def test_a_blank_in_quotes_is_not_taken_out(editor):
    found = fixes(editor, ORG + "\tLDA\t#1 + ' '\n")
    assert not [each for each in found if each["title"] == "Join it to the operand"]


@pytest.mark.parametrize(
    "text, title, fixed",
    [
        (ORG + "\tLDXA\t#5\n", "Replace by LDX", ORG + "\tLDX\t#5\n"),
        (ORG + "#endfi\n", "Replace by #endif", None),
        ("a\tEQU\t1\n#if 1\n", "Replace by ##if", "a\tEQU\t1\n##if 1\n"),
        ("#ifdef N\n#if 1\n#endif\n", "Replace by ##if", "#ifdef N\n##if 1\n#endif\n"),
        (ORG + "\tLDA\t#cuont\ncount\tEQU\t5\n", "Replace by count",
         ORG + "\tLDA\t#count\ncount\tEQU\t5\n"),
        (ORG + "\tLDA\t#1+7%4\n", "Compute as in C: 1+(7%4)", ORG + "\tLDA\t#1+(7%4)\n"),
        (ORG + "\tLDA\t#1 + 2\n", "Join it to the operand", ORG + "\tLDA\t#1+2\n"),
        (ORG + "\tFCB\t1, 2, 3\n", "Remove the blank", ORG + "\tFCB\t1,2, 3\n"),
        ("\tNOP\n", "Write ORG above this line", ORG + "\tNOP\n"),
        ("\ufeff; a\n" + ORG, "Remove the byte-order mark", "; a\n" + ORG),
        (ORG + "NOP\tX\n", "Put a blank before it", None),
        (ORG + "\tLDA\t#5;five\n", "Put a blank before the comment", ORG + "\tLDA\t#5 ;five\n"),
        (ORG + "\tLDA\u00a0#5\n", "Replace it by a blank", ORG + "\tLDA #5\n"),
    ],
)  # fmt: skip
def test_a_suggestion_can_be_taken(text, title, fixed, editor):
    found = {each["title"]: each for each in fixes(editor, text)}
    assert title in found
    action = found[title]
    assert action["kind"] == "quickfix"
    (mended,) = action["diagnostics"]
    after = applied(text, action["edit"]["changes"][URI])
    if fixed is not None:
        assert after == fixed
    editor.notices.clear()
    editor.open(after)
    assert mended not in editor.diagnostics()


def test_fixes_are_those_of_the_range(editor):
    editor.open(ORG + "\tLDXA\t#5\n")
    context = {"diagnostics": []}
    assert editor.of("codeAction", range=span(0, 0, 0, 9), context=context) == []
    assert editor.of("codeAction", range=span(1, 3, 1, 3), context=context)


@pytest.mark.parametrize(
    "only, count", [(["quickfix"], 2), ([""], 2), (["refactor"], 0), ([], 0), (["source"], 0)]
)
def test_other_kinds_of_actions_are_none(only, count, editor):
    editor.open(ORG + "\tLDXA\t#5\n")
    context = {"diagnostics": [], "only": only}
    assert len(editor.of("codeAction", range=span(0, 0, 9, 0), context=context)) == count


# ---- Formatting ----


def formatted(editor, text, options=None):
    editor.open(text)
    edits = editor.of("formatting", options=options or BLANKS)
    return applied(text, edits)


@pytest.mark.parametrize(
    "text, laid_out",
    [
        (" LDA #5\n", "        LDA     #5\n"),
        ("loop: LDA #5 ;five \n", "loop:   LDA     #5              ;five\n"),
        ("long_label_name LDA #5\n", "long_label_name LDA #5\n"),
        (" RTS and back\n", "        RTS                     and back\n"),
        (" FCS \"a  b\" ;text\n", "        FCS     \"a  b\"          ;text\n"),
        (" FCB ' ',1\n", "        FCB     ' ',1\n"),
        ("alone   \n", "alone\n"),
        ("alone ;here\n", "alone                           ;here\n"),
        ("; a comment  \n", "; a comment\n"),
        ("    ; indented\n", "    ; indented\n"),
        ("#ifdef  X  \n  NOP\n#endif\n", "#ifdef  X\n  NOP\n#endif\n"),
        (" LDXA  #5\n", " LDXA  #5\n"),
        (" END\n  below\n", "        END\n  below\n"),
    ],
)
def test_fields_move_to_their_columns(text, laid_out, editor):
    assert formatted(editor, text) == laid_out


def test_line_ends_stay(editor):
    editor.open(" NOP\r\n NOP\r\n")
    edits = editor.of("formatting", options=BLANKS)
    assert [each["range"] for each in edits] == [span(0, 0, 0, 4), span(1, 0, 1, 4)]
    assert {each["newText"] for each in edits} == {"        NOP"}


def test_tabs_are_written_where_they_are_wanted(editor):
    options = {"tabSize": 8, "insertSpaces": False}
    assert formatted(editor, "a LDA #5 ;x\n", options) == "a\tLDA\t#5\t\t;x\n"


def test_columns_are_settings(server):
    server.start(options={"format": {"operation": 4, "operand": 10, "comment": 20}})
    assert formatted(server, "a LDA #5 ;x\n") == "a   LDA   #5        ;x\n"


def test_a_range_is_formatted_alone(editor):
    editor.open(" NOP\n NOP\n NOP\n")
    edits = editor.of("rangeFormatting", range=span(1, 0, 1, 4), options=BLANKS)
    assert [each["range"]["start"]["line"] for each in edits] == [1]


@pytest.mark.parametrize("size", [0, -1, 1000, "x", None])
def test_wrong_sizes_of_tabs_are_refused(size, editor):
    editor.open(" NOP\n")
    options = {"tabSize": size, "insertSpaces": True}
    answer = editor.ask("textDocument/formatting", textDocument={"uri": URI}, options=options)
    assert answer["error"]["code"] == -32602


def test_a_text_that_is_formatted_stays(editor):
    text = formatted(editor, "a LDA #5 ;x\n RTS x\nb EQU 5*(3+1) y\n")
    assert formatted(editor, text) == text


def test_an_edit_after_a_fix_is_one_of_the_new_text(editor):
    editor.open(ORG + "\tLDXA\t#5\n")
    editor.change(edit(1, 4, 1, 5, ""))
    assert editor.of("codeAction", range=span(0, 0, 9, 0), context={"diagnostics": []}) == []
