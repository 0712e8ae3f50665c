"""Options in any order, long and short; what is wrong is refused, with what was meant."""

import pytest
import running

SOURCE = "\tORG\t0\n#ifdef given\n\tNOP\n#endif\n"
USAGE = 2

REFUSED = {
    (): "a command is needed: build, check, map or explain",
    ("p.szirpa",): "unknown command p.szirpa: did you mean build p.szirpa?",
    ("bild", "p.szirpa"): "unknown command bild: did you mean build?",
    ("build",): "FILE is required",
    ("check",): "FILE is required",
    ("build", "p.szirpa", "q.szirpa"): "one argument too many: q.szirpa",
    ("build", "--lisitng", "p.szirpa"): "unknown option --lisitng: did you mean --listing?",
    ("build", "-x", "p.szirpa"): "unknown option -x",
    ("build", "p.szirpa", "-o"): "--output needs a value",
    ("build", "-S4", "p.szirpa"): "--address-width: 4 is none of 1, 2, 3",
    ("build", "-C", "nocas", "p.szirpa"): "nocas is none of nocase, nopure, nonative",
    ("check", "--format", "xml", "p.szirpa"): "--format: xml is none of json, sarif, text",
    ("check", "--color", "blue", "p.szirpa"): "--color: blue is none of always, auto, never",
    ("check", "--allow", "unlike", "p.szirpa"): "no diagnostic is called unlike: did you mean unlike-c?",
    ("build", "--stdout", "-L", "p.szirpa"): "--listing excludes --stdout",
    ("explain", "bad-lable"): "no diagnostic is called bad-lable: did you mean bad-label?",
}


@pytest.fixture
def directory(tmp_path):
    (tmp_path / "p.szirpa").write_text(SOURCE)
    return tmp_path


def names(directory):
    return {path.name for path in directory.iterdir()}


@pytest.mark.parametrize("words", REFUSED, ids=" ".join)
def test_what_is_wrong_is_refused(words, zirpa, directory):
    process = running.run(directory, zirpa, *words)
    assert process.returncode == USAGE
    assert process.stdout == b""
    first = process.stderr.decode().splitlines()[0]
    assert first.startswith("zirpa: ") and REFUSED[words] in first
    assert names(directory) == {"p.szirpa"}


@pytest.mark.parametrize(
    "words",
    [
        ("-L", "-D", "given", "-o", "x.s19", "p.szirpa"),
        ("p.szirpa", "--output", "x.s19", "--define", "given", "--listing"),
        ("--define=given", "p.szirpa", "-Lox.s19"),
    ],
    ids=" ".join,
)
def test_options_come_in_any_order_and_by_long_names(words, zirpa, directory):
    process = running.run(directory, zirpa, "build", *words)
    assert (process.returncode, process.stderr) == (0, b"")
    assert names(directory) == {"p.szirpa", "x.s19", "x.lst", "p.fmem"}
    assert (directory / "x.s19").read_bytes() == b"S104000000FB\nS9030000FC\n"


def test_a_source_with_the_name_of_an_option_is_a_file(zirpa, directory):
    (directory / "-L.szirpa").write_text(SOURCE)
    process = running.run(directory, zirpa, "check", "--", "-L.szirpa")
    assert (process.returncode, process.stderr) == (0, b"")


def test_version_and_help_are_printed(zirpa, directory):
    version = running.printed_by(zirpa, "--version")
    assert version == f"zirpa {running.VERSION}\n"
    for words in (["--help"], ["build", "--help"], ["check", "-h"]):
        assert "Usage: zirpa" in running.printed_by(zirpa, *words)


def test_the_symbol_table_is_printed(zirpa, directory):
    process = running.run(directory, zirpa, "build", "-S", "-D", "given", "p.szirpa")
    assert process.stdout == b"\n--\tSYMBOL TABLE:\n--\tVALUE   \tSYMBOL \n\t0000\tgiven\n"


def test_warnings_are_allowed_denied_and_asked_for(zirpa, directory):
    (directory / "w.szirpa").write_text("\tORG\t0\nx1\tLDA\t#1+7%4\n")

    def drawn(*options):
        process = running.run(directory, zirpa, "check", *options, "w.szirpa")
        text = process.stderr.decode()
        return process.returncode, [name for name in ("unlike-c", "unused-label") if name in text]

    assert drawn() == (0, ["unlike-c"])
    assert drawn("--allow", "unlike-c") == (0, [])
    assert drawn("--deny", "unlike-c") == (1, ["unlike-c"])
    assert drawn("--deny", "all") == (1, ["unlike-c"])
    assert drawn("--strict") == (1, ["unlike-c"])
    assert drawn("--warn", "unused-label") == (0, ["unlike-c", "unused-label"])
    assert drawn("--deny", "unused-label", "--allow", "unlike-c") == (1, ["unused-label"])
    assert drawn("--quiet") == (0, [])


def test_options_without_effect_are_warned_of(zirpa, directory):
    process = running.run(directory, zirpa, "build", "-A", "-S2", "-I", "x", "-d", "y", "p.szirpa")
    assert process.returncode == 0
    lines = process.stderr.decode().splitlines()
    assert lines == [
        "p.szirpa: warning: --array without --listing writes an empty C array [array-without-listing]",
        "p.szirpa: warning: --include has no effect [idle-option]",
        "p.szirpa: warning: --debug-directory has no effect [idle-option]",
        "p.szirpa: warning: --address-width has no effect [idle-option]",
        "4 warnings",
    ]
