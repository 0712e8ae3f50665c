"""What is shown of words: hover, hints, colours, completion, signatures."""

import re

import pytest
from client import edit, span

SOURCE = """\
SIZE\tEQU\t3
\tORG\t$10
start\tLDA\t#SIZE+4*2 ; load
\tSTA\tlast
\tBRA\tstart
last\tRMB\t2
text\tFCS\t"Hi"
#ifdef NO
\tNOP
#endif
"""


@pytest.fixture
def opened(editor):
    editor.open(SOURCE)
    return editor


def shown(editor, line, character):
    result = editor.at("hover", line, character)
    return result and result["contents"]["value"]


# ---- Hover ----


def test_an_instruction_shows_its_forms(opened):
    text = shown(opened, 2, 7)
    rows = re.findall(r"\| `(LDA [^`]*)` \| `\$(..)` \| (\d) \|", text)
    assert rows[0] == ("LDA #n", "F0", "2")
    assert ("LDA ,X+", "F5", "1") in rows
    assert len(rows) == 15


def test_an_instruction_without_operand_shows_its_opcode(editor):
    editor.open("\trts\n")
    assert "| `RTS` | `$43` | 1 |" in shown(editor, 0, 2)


def test_register_pairs_show_their_opcodes(editor):
    editor.open("\tTFR\tX,Y\n")
    assert "| `TFR X,Y` | `$1A` | 1 |" in shown(editor, 0, 2)


@pytest.mark.parametrize("line, word", [(0, "name EQU value"), (5, "[name] RMB size")])
def test_a_directive_shows_its_rule(line, word, opened):
    assert shown(opened, line, 6).startswith(f"`{word}`")


def test_a_conditional_word_shows_its_rule(editor):
    editor.open("##if 1\n#else\n#endif\n")
    assert "`#if` opens nothing" in shown(editor, 0, 3)


def test_a_name_shows_value_place_and_uses(opened):
    text = shown(opened, 3, 6)
    # 10 LDA, 12 STA, 14 BRA, so the label is at 16, which is 22.
    assert text == "**last** label, line 6\n\n`22` · `$16` · `%00010110`\n\n1 use"


@pytest.mark.parametrize(
    "written, bases",
    [
        ("65", "`65` · `$41` · `%01000001` · `'A'`"),
        ("$7f", "`127` · `$7F` · `%01111111`"),
        ("%101", "`5` · `$05` · `%00000101`"),
        ("'a'", "`97` · `$61` · `%01100001` · `'a'`"),
        ("1000", "`1000` · `$3E8` · `%1111101000`"),
    ],
)
def test_a_number_is_shown_in_all_bases(written, bases, editor):
    editor.open(f"x\tEQU\t{written}\n")
    assert shown(editor, 0, 6) == bases


@pytest.mark.parametrize(
    "expression, steps",
    [
        ("1+7%4", ["1+7 = 8 ($8)", "1+7%4 = 0 ($0)"]),
        ("2+3*4", ["3*4 = 12 ($C)", "2+3*4 = 14 ($E)"]),
        ("8/2*2", ["8/2*2 = 2 ($2)"]),
        ("3-(1+1)", ["1+1 = 2 ($2)", "3-(1+1) = 1 ($1)"]),
        ("SIZE+1<<1", ["SIZE+1 = 4 ($4)", "SIZE+1<<1 = 8 ($8)"]),
        ("-2*3", ["-2*3 = -6 (-$6)"]),
    ],
)
def test_an_expression_is_shown_step_by_step(expression, steps, editor):
    editor.open(f"SIZE\tEQU\t3\n\tORG\t0\n\tFCB\t{expression}\n")
    text = shown(editor, 2, 6)
    assert re.search(r"```\n(.*?)\n```", text, re.S)[1].split("\n") == steps


def test_comments_and_skipped_lines_show_nothing(opened):
    assert shown(opened, 2, 22) is None
    assert shown(opened, 8, 2) is None


# ---- Hints ----


def hints(editor, first=0, last=99):
    found = editor.of("inlayHint", range=span(first, 0, last, 0))
    return [(each["position"]["line"], each["label"]) for each in found]


def test_hints_show_addresses_bytes_and_values(opened):
    # 3+8 is 11; STA has the opcode E1 for an address, BRA goes from 16 back to 10.
    assert hints(opened) == [
        (2, "= 11 ($B)"),
        (2, "10: F0 0B"),
        (3, "= 22 ($16)"),
        (3, "12: E1 16"),
        (4, "= 16 ($10)"),
        (4, "14: 21 FA"),
        (5, "16: (2)"),
        (6, "18: 48 69"),
    ]


def test_hints_are_those_of_the_range(opened):
    assert hints(opened, 6, 6) == [(6, "18: 48 69")]


@pytest.mark.parametrize(
    "settings, labels",
    [
        ({"bytes": False}, ["= 11 ($B)", "= 22 ($16)", "= 16 ($10)"]),
        ({"bytes": False, "values": False}, []),
    ],
)
def test_hints_are_switched_off_by_settings(settings, labels, server):
    server.start(options={"inlayHints": settings})
    server.open(SOURCE)
    assert [label for _, label in hints(server)] == labels


# ---- Colours ----

TYPES = {}


def tokens(editor, legend, result):
    line = character = 0
    found = []
    data = result["data"]
    for on, right, length, kind, modifiers in zip(*(data[i::5] for i in range(5))):
        line += on
        character = right if on else character + right
        names = [name for i, name in enumerate(legend["tokenModifiers"]) if modifiers >> i & 1]
        found.append((line, character, length, legend["tokenTypes"][kind], names))
    return found


@pytest.fixture
def legend(server):
    return server.start()["capabilities"]["semanticTokensProvider"]["legend"]


def test_words_have_their_kinds(legend, server):
    server.open(SOURCE)
    found = tokens(server, legend, server.of("semanticTokens/full"))
    assert [each for each in found if each[0] == 2] == [
        (2, 0, 5, "function", ["definition"]),
        (2, 6, 3, "keyword", []),
        (2, 10, 1, "operator", []),
        (2, 11, 4, "enumMember", ["readonly"]),
        (2, 15, 1, "operator", []),
        (2, 16, 1, "number", []),
        (2, 17, 1, "operator", []),
        (2, 18, 1, "number", []),
        (2, 20, 6, "comment", []),
    ]
    assert [each for each in found if each[0] == 8] == [(8, 1, 3, "comment", ["skipped"])]
    ranged = tokens(server, legend, server.of("semanticTokens/range", range=span(2, 0, 3, 9)))
    assert ranged == [each for each in found if each[0] in (2, 3)]


def test_changes_of_colours_make_those_of_the_new_text(legend, server):
    server.open(SOURCE)
    before = server.of("semanticTokens/full")
    server.change(edit(3, 0, 3, 0, "\tNOP\n"))
    delta = server.of("semanticTokens/full/delta", previousResultId=before["resultId"])
    data = before["data"]
    for each in delta["edits"]:
        start = each["start"]
        data[start : start + each["deleteCount"]] = each["data"]
    assert data == server.of("semanticTokens/full")["data"]
    none = server.of("semanticTokens/full/delta", previousResultId=delta["resultId"])
    assert none["edits"] == []
    assert "data" in server.of("semanticTokens/full/delta", previousResultId="unknown")


# ---- Completion ----


def offered(editor, text, line=None):
    """What is offered at the end of a text, which is put below the source."""
    editor.open(SOURCE + text)
    line = SOURCE.count("\n") if line is None else line
    found = editor.at("completion", line, len(text.rpartition("\n")[2]))
    return {each["label"]: each for each in found}


@pytest.mark.parametrize(
    "text, some, others",
    [
        ("\tLD", {"LDA", "LDX", "ORG"}, {"start", "#endif", "A"}),
        ("name\t", {"LDA", "EQU"}, {"start"}),
        ("\tLDA\t", {"start", "SIZE", "A,X", ",X+"}, {"LDA", "#endif"}),
        ("\tLDA\t#", {"start", "SIZE"}, {"A,X", "LDA"}),
        ("\tLDA\t2,", {"X", "Y", "SP"}, {"start", "LDA"}),
        ("\tTFR\t", {"A,CC", "X,Y"}, {"LDA"}),
        ("\tRTS\t", set(), {"start", "A,X"}),
        ("#", {"##if", "#ifdef", "#endif"}, {"LDA", "start"}),
        ("#ifdef ", {"SIZE"}, {"LDA"}),
        ("\tFCS\t\"", set(), {"start", "SIZE"}),
        ("\tLDA\t#5 ; ", set(), {"start", "LDA"}),
        ("; ", set(), {"start", "LDA"}),
        ("", {"#ifdef"}, {"LDA", "start"}),
    ],
)
def test_what_is_offered_fits_the_place(text, some, others, editor):
    found = {label.replace("##IF", "##if") for label in offered(editor, text)}
    found = {label.lower() if label.startswith("#") else label for label in found}
    assert some <= found
    assert not others & found


def test_an_offer_replaces_the_word_that_is_begun(editor):
    found = offered(editor, "\tLDA\t#SI")
    assert found["SIZE"]["textEdit"] == {"newText": "SIZE", "range": span(10, 6, 10, 8)}
    assert found["SIZE"]["detail"] == "3 ($3)"


def test_names_are_offered_where_an_open_conditional_skips_all(editor):
    # A conditional without an end is still open when the last pass begins.
    assert {"SIZE", "start"} <= set(offered(editor, "#ifdef NO\n\tLDA\t#", SOURCE.count("\n") + 1))


def test_a_name_that_is_missing_is_offered_as_a_label(editor):
    editor.open("\tJMP\tsoon\n")
    assert "soon" in {each["label"] for each in editor.at("completion", 1, 0)}


# ---- Signatures ----


@pytest.mark.parametrize(
    "operand, active",
    [
        ("", "LDA #n"),
        ("#", "LDA #n"),
        ("#5", "LDA #n"),
        ("5", "LDA n"),
        ("5,", "LDA n,SP"),
        ("5,Y", "LDA n,Y"),
        ("A,", "LDA A,X"),
        (",X", "LDA ,X+"),
        (",-", "LDA ,-X"),
    ],
)
def test_the_form_that_is_written_is_active(operand, active, editor):
    text = f"\tLDA\t{operand}"
    editor.open(text)
    help_ = editor.at("signatureHelp", 0, len(text))
    assert help_["signatures"][help_["activeSignature"]]["label"] == active


def test_a_directive_has_one_form(editor):
    editor.open("\tFCB\t")
    help_ = editor.at("signatureHelp", 0, 5)
    assert [each["label"] for each in help_["signatures"]] == ["[name] FCB value,value,..."]
    editor.open("\tNOSUCH\t")
    assert editor.at("signatureHelp", 0, 8) is None
