"""Rare ways: odd names of files, standard input that can't be read, texts of all sizes."""

import json
import os

import running

ODD_NAME = "a &<b>'\"%.szirpa"


def check(zirpa, directory, source, *options):
    (directory / "p.szirpa").write_text(source, encoding="utf-8")
    return running.run(directory, zirpa, "check", *options, "p.szirpa").stderr.decode()


def test_standard_input_that_cannot_be_read_is_told(zirpa, tmp_path):
    descriptor = os.open(tmp_path, os.O_RDONLY)
    process = running.run(tmp_path, zirpa, "check", "-", stdin=descriptor)
    os.close(descriptor)
    assert process.returncode == 2
    assert process.stderr.startswith(b"stdin.szirpa: error: can't be read: Is a directory [cannot-read]")


def test_odd_names_are_escaped_in_pictures_and_formats(zirpa, tmp_path):
    (tmp_path / ODD_NAME).write_text("\tLDXA\n")
    running.run(tmp_path, zirpa, "map", "--svg", "map.svg", ODD_NAME)
    drawn = (tmp_path / "map.svg").read_text()
    assert "a &amp;&lt;b&gt;'&quot;%.szirpa</title>" in drawn
    process = running.run(tmp_path, zirpa, "check", "--format", "sarif", ODD_NAME, "none.szirpa")
    results = json.loads(process.stdout)["runs"][0]["results"]
    places = [each["locations"][0]["physicalLocation"] for each in results]
    assert places[0]["artifactLocation"]["uri"] == "a%20%26%3Cb%3E%27%22%25.szirpa"
    assert places[-1] == {"artifactLocation": {"uri": "none.szirpa"}}
    process = running.run(tmp_path, zirpa, "check", "--format", "json", "none.szirpa")
    (diagnostic,) = json.loads(process.stdout)["files"][0]["diagnostics"]
    assert diagnostic["id"] == "cannot-read" and "line" not in diagnostic


def test_absolute_names_are_uris_of_files(zirpa, tmp_path):
    source = tmp_path / "p.szirpa"
    source.write_text("\tLDXA\n")
    process = running.run(tmp_path, zirpa, "check", "--format", "sarif", str(source))
    place = json.loads(process.stdout)["runs"][0]["results"][0]["locations"][0]
    assert place["physicalLocation"]["artifactLocation"]["uri"] == f"file://{source}"


def test_characters_of_every_size_keep_carets_in_place(zirpa, tmp_path):
    # A picture is two columns wide, a letter one.
    shown = check(zirpa, tmp_path, "\tORG\t0\n\tFCS\t\"\U0001f600é\"x\n")
    assert "p.szirpa:2:10: warning: this is not read: FCS takes one text [dropped-text]\n" in shown
    assert "      | \t   \t     ^\n" in shown


def test_a_name_of_the_command_line_that_gets_a_value_is_told(zirpa, tmp_path):
    shown = check(zirpa, tmp_path, "\tORG\t0\nfive\tEQU\t5\n", "-D", "five")
    assert "p.szirpa:2:1: error: 'five' has another value already [changed-value]" in shown
    assert "note" not in shown
    assert "^~~~ it is defined by an option\n" in shown


def test_many_unknown_names_have_no_hints(zirpa, tmp_path):
    lines = "".join(f"name{i}\tEQU\t{i}\n\tLDA\t#nome{i}\n" for i in range(1100))
    shown = check(zirpa, tmp_path, "\tORG\t0\n" + lines)
    assert "'nome1' is not defined" in shown
    assert "did you mean" not in shown


def test_a_step_behind_a_blank_is_no_comment(zirpa, tmp_path):
    shown = check(zirpa, tmp_path, "\tORG\t0\n\tLDA\t0 ,X+\n")
    assert "p.szirpa:2:8: warning: a blank ends the operand" in shown


def test_a_symbol_table_that_cannot_be_printed_fails(zirpa, tmp_path):
    (tmp_path / "p.szirpa").write_text("five\tEQU\t5\n")
    with open("/dev/full", "wb") as full:
        process = running.run(tmp_path, zirpa, "build", "-S", "p.szirpa", stdout=full)
    assert process.returncode == 2
    assert b"standard output: error: can't be written: No space left on device" in process.stderr


def test_deep_expressions_are_no_trouble(zirpa, tmp_path):
    shown = check(zirpa, tmp_path, "\tORG\t0\nn\tEQU\t" + "(" * 1500 + "1" + ")" * 1500 + "\n")
    assert shown == ""
    assert check(zirpa, tmp_path, "\tORG\t0\nn\tEQU\t" + "-" * 3000 + "1\n") == ""
