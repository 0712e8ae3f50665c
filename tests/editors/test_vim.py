"""The Vim files: filetype, options, syntax groups, and what `:make` makes of messages."""

import json
import os
import pathlib

import running
from diagnostics import expected_lines
from reading import is_plain, read_source
from sources import EDITORS, ROOT, all_sources, lines_of

REPORT = ROOT / "tests" / "editors" / "report.vim"
VIM_FILES = EDITORS / "vim"

GROUPS = {
    "comment.line.semicolon": "szirpaComment",
    "comment.line.ignored": "szirpaIgnored",
    "entity.name.constant": "szirpaConstant",
    "entity.name.label": "szirpaLabel",
    "invalid.illegal.conditional": "szirpaIllegalIf",
    "invalid.illegal.label": "szirpaIllegal",
    "invalid.illegal.mnemonic": "szirpaIllegal",
    "keyword.control.conditional": "szirpaHash",
    "keyword.directive": "szirpaDirective",
    "keyword.mnemonic": "szirpaMnemonic",
    "keyword.mnemonic.branch": "szirpaBranch",
    "meta.debugger": "szirpaDebugger",
}

# Lines, and what stands under each of their characters: a letter for a group.
LETTERS = {
    "C": "szirpaConditional",
    "D": "szirpaDefinedName",
    "E": "szirpaEscape",
    "K": "szirpaCharacter",
    "M": "szirpaMessage",
    "N": "szirpaName",
    "O": "szirpaOperator",
    "R": "szirpaRegister",
    "S": "szirpaString",
    "T": "szirpaTestedName",
    "i": "szirpaIgnored",
    "p": "szirpaStep",
    "9": "szirpaNumber",
    ";": "szirpaComment",
}
FIELDS = [
    (" LDA #$1F   rest", "     O999   iiii"),
    (" LDA N+2,SP ; c ", "     NO9 RR ;;; "),
    (" LDA A,X        ", "     R R        "),
    (" LDA ,X+        ", "      Rp        "),
    (" LDA ,-Y        ", "      pR        "),
    (" FCB %11,7%2    ", "     999 9O9    "),
    (" FCB ' ',';' c  ", "     KKK KKK i  "),
    (" FCB (a_b.c$*2)^3", "     ONNNNNNO9OO9"),
    (' FCS "A;\\n\\q" c ', "     SSSEESSS i "),
    (' FCS """ c      ', "     SSS i      "),
    ("##if N==1 + 2   ", " CCC NOO9 iii   "),
    ("#ifdef N+1 rest ", " CCCCC TTT iiii "),
    ("#define N 5*2 c ", " CCCCCC D 9O9 i "),
    ("#else rest      ", " CCCC iiii      "),
    ("#error a; b     ", " CCCCC MMMM     "),
]

# Messages that belong to no line of a source.
PLACELESS = {"HXzirpa: Can't ": "E", "HXzirpa: Unknown ": "W", "Fatal error: ": "E"}
TYPES = {"error": "E", "warning": "W", "fatal": "E"}


def ask_vim(directory, questions, **environment):
    """The answers of an editor without any other settings."""
    running.need("vim", "vim")
    (directory / "questions.json").write_text(json.dumps(questions))
    command = ["vim", "-N", "-u", "NONE", "-i", "NONE", "-n", "-es", "-S", REPORT]
    home = {"VIM_FILES": str(VIM_FILES), "HOME": str(directory)}
    running.run(directory, *command, env={**os.environ, **home, **environment}, timeout=120)
    answers = directory / "answers.json"
    assert answers.exists(), "vim has stopped early"
    return json.loads(answers.read_text("latin-1"))


def test_source_gets_its_filetype_and_options(tmp_path):
    (tmp_path / "a.szirpa").write_text(" NOP\n")
    names = ["filetype", "comments", "commentstring", "iskeyword"]
    question = {"ask": "options", "file": "a.szirpa", "names": names}
    assert ask_vim(tmp_path, [question]) == [["szirpa", ":;", "; %s", "@,48-57,_,36,46"]]


def test_fields_have_their_groups(tmp_path):
    (tmp_path / "a.szirpa").write_text("".join(f"{text}\n" for text, _ in FIELDS))
    places = [
        (number, column)
        for number, (_, letters) in enumerate(FIELDS, 1)
        for column, letter in enumerate(letters)
        if letter != " "
    ]
    (groups,) = ask_vim(tmp_path, [{"ask": "groups", "file": "a.szirpa", "places": places}])
    for (number, column), group in zip(places, groups):
        text, letters = FIELDS[number - 1]
        assert group == LETTERS[letters[column]], f"{text!r}, column {column + 1}"


def expected_groups(path):
    """Places and groups of a source's first tokens."""
    lines = lines_of(path)
    for number, tokens in enumerate(read_source(lines), 1):
        for column, kind in tokens or []:
            yield (number, column), GROUPS[kind], lines[number - 1]


def test_first_tokens_of_every_line_are_those_of_a_plain_reading(tmp_path):
    paths = [path for path in all_sources() if path.stat().st_size < 100_000]
    expected = {path: list(expected_groups(path)) for path in paths}
    questions = [
        {"ask": "groups", "file": str(path), "places": [place for place, _, _ in expected[path]]}
        for path in paths
    ]
    wrong = [
        f"{path.name}:{place}: {group}, not {found}: {text}"
        for path, groups in zip(paths, ask_vim(tmp_path, questions))
        for (place, group, text), found in zip(expected[path], groups)
        if group != found
    ]
    assert not wrong, "\n".join(wrong)


def test_matchit_goes_from_one_conditional_word_to_the_next(tmp_path):
    lines = ["#ifdef A", " # #IF B", " NOP", " # endif", "#elif C", "#else", "#endif"]
    (tmp_path / "a.szirpa").write_text("".join(f"{line}\n" for line in lines))
    outer = {"ask": "jumps", "file": "a.szirpa", "line": 1, "count": 4}
    inner = {"ask": "jumps", "file": "a.szirpa", "line": 2, "count": 2}
    assert ask_vim(tmp_path, [outer, inner]) == [[5, 6, 7, 1], [4, 2]]


def wanted_entry(text, diagnostic):
    """What a line becomes in the list of errors; None if it is left out."""
    if diagnostic is not None:
        kind = TYPES[diagnostic.severity]
        return entry(diagnostic.file, diagnostic.line, kind, diagnostic.message)
    for start, kind in PLACELESS.items():
        if text.startswith(start):
            return entry("", 0, kind, text)
    return None


def entry(file, line, kind, message):
    return {"file": file, "line": line, "type": kind, "message": message, "valid": 1}


def test_every_line_of_the_expected_outputs_becomes_its_entry(tmp_path):
    lines = [line for line in expected_lines() if is_plain(line[0])]
    (tmp_path / "messages").write_text("".join(f"{text}\n" for text, _, _ in lines))
    wanted = [wanted_entry(text, diagnostic) for text, _, diagnostic in lines]
    wanted = [found for found in wanted if found is not None]
    assert len(wanted) > 1000
    (found,) = ask_vim(tmp_path, [{"ask": "errors", "file": "messages"}])
    for left, right in zip(found, wanted):
        assert left == right
    assert len(found) == len(wanted)


def test_make_puts_the_messages_of_the_program_in_the_list(tmp_path, program):
    (tmp_path / "a b.szirpa").write_bytes(b' NOP\n LDA #300\n FCS "A\xe9"\n FOO\n')
    directory = pathlib.Path(program).parent
    question = {"ask": "made", "file": "a b.szirpa", "arguments": "-L"}
    path = f"{directory}{os.pathsep}{os.environ['PATH']}"
    (found,) = ask_vim(tmp_path, [question], PATH=path)
    assert found == [
        entry("a b.szirpa", 2, "E", "Value (0x12C) is truncated"),
        entry("a b.szirpa", 3, "W", "Illegal ASCII character"),
        entry("a b.szirpa", 4, "E", "Illegal mnemonic"),
    ]
    assert (tmp_path / "a b.lst").exists()
