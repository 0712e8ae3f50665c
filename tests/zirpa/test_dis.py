"""zirpa dis: sources that give the bytes back, and what is said of faulty files."""

import pathlib
import re

import pytest
import running

ROOT = pathlib.Path(__file__).resolve().parents[2]
GOLDEN = ROOT / "tests" / "golden"
ADDRESS_BYTES = {"1": 2, "2": 3, "3": 4, "7": 4, "8": 3, "9": 2}
HIGHEST = 0xFFFF


class Unusable(Exception):
    """No source can say what such records say; the identifier of what is wrong with them."""


def read_records(text):
    """The bytes by address, and the start."""
    image, start = {}, None
    for line in text.splitlines():
        if not re.fullmatch(r"S[0-9][0-9A-F]+", line):
            continue
        width = ADDRESS_BYTES[line[1]]
        content = bytes.fromhex(line[4:-2])
        address = int.from_bytes(content[:width], "big")
        if address + max(len(content) - width - 1, 0) > HIGHEST:
            raise Unusable("address-beyond-ffff")
        if line[1] in "789":
            start = address
            continue
        for offset, byte in enumerate(content[width:]):
            if address + offset in image:
                raise Unusable("set-twice")
            image[address + offset] = byte
    return image, start


def read_script(text):
    image = {}
    for address, byte in re.findall(r"^ #setMemory  (..)=(..)$", text, re.MULTILINE):
        if int(address, 16) in image:
            raise Unusable("set-twice")
        image[int(address, 16)] = int(byte, 16)
    return image


def read_array(text):
    return [int(byte, 16) for byte in re.findall(r"0x(..)", text)]


def dis(zirpa, directory, *words, **options):
    return running.run(directory, zirpa, "dis", *map(str, words), **options)


def made_again(zirpa, program, directory, *words):
    """The source that dis makes, and the records that the assembler makes of it."""
    process = dis(zirpa, directory, "--verify", "-o", "again.szirpa", *words)
    assert (process.returncode, process.stdout) == (0, b""), process.stderr.decode()
    assembled = running.run(directory, program, "again.szirpa")
    assert assembled.returncode == 0, assembled.stdout.decode()
    return (directory / "again.szirpa").read_bytes(), (directory / "again.s19").read_text()


def refused_as(zirpa, directory, identifier, *words):
    process = dis(zirpa, directory, "-o", "refused.szirpa", *words)
    assert process.returncode == 2
    assert f"[{identifier}]" in process.stderr.decode(), process.stderr
    assert not (directory / "refused.szirpa").exists()


# ---- Every case and example gives its bytes back ----


def outputs(pattern, sign):
    """The expected outputs of that kind of all golden cases. Some cases have sources under the names
    of outputs, or end before there is one: those lack the sign."""
    found = sorted(path for path in GOLDEN.rglob(pattern) if path.is_file())
    return [path for path in found if re.search(sign, path.read_bytes(), re.MULTILINE)]


RECORDS = outputs("*.s19", rb"^S[789]")
SCRIPTS = outputs("*.fmem", rb"^ # ClearAllMemory$")
ARRAYS = outputs("*_cout.c", rb"^};$")


def test_there_are_outputs_of_all_kinds():
    assert (len(RECORDS) > 300, len(SCRIPTS) > 30, len(ARRAYS) > 10) == (True, True, True)


@pytest.mark.parametrize("path", RECORDS, ids=lambda path: path.stem)
def test_sources_of_golden_records_give_the_bytes_back(path, zirpa, program, tmp_path):
    text = path.read_text()
    try:
        expected = read_records(text)
    except Unusable as unusable:
        refused_as(zirpa, tmp_path, unusable, path)
        return
    source, records = made_again(zirpa, program, tmp_path, path)
    assert read_records(records) == expected
    if "\nSX:" not in text:  # debug records bring lines, which are not in the new ones
        assert dis(zirpa, tmp_path, "again.s19").stdout == source


@pytest.mark.parametrize("path", SCRIPTS, ids=lambda path: path.stem)
def test_sources_of_golden_scripts_give_the_bytes_back(path, zirpa, program, tmp_path):
    try:
        expected = read_script(path.read_text())
    except Unusable as unusable:
        refused_as(zirpa, tmp_path, unusable, path)
        return
    source, records = made_again(zirpa, program, tmp_path, path)
    assert read_records(records)[0] == expected
    assert dis(zirpa, tmp_path, "again.fmem").stdout == source


@pytest.mark.parametrize("path", ARRAYS, ids=lambda path: path.stem)
def test_sources_of_golden_arrays_give_the_bytes_back(path, zirpa, program, tmp_path):
    values = read_array(path.read_text())
    _, records = made_again(zirpa, program, tmp_path, path, "--base", "0x20")
    assert read_records(records)[0] == dict(enumerate(values, 0x20))


@pytest.mark.parametrize("path", sorted((ROOT / "examples").glob("*.szirpa")), ids=lambda p: p.stem)
def test_sources_of_examples_give_the_same_files(path, zirpa, program, tmp_path):
    assert running.run(tmp_path, program, "-L", "-A", "-S", "-g", path).returncode == 0
    name = path.stem
    image, start = read_records((tmp_path / (name + ".s19")).read_text())
    lowest = min(image)
    (tmp_path / "plain.bin").write_bytes(bytes(image.get(a, 0) for a in range(lowest, max(image) + 1)))
    for words in ([name + ".s19"], [name + ".s19", "--symbols", name + ".lst"], [name + ".fmem"]):
        assert read_records(made_again(zirpa, program, tmp_path, *words)[1])[0] == image
    assert read_records(made_again(zirpa, program, tmp_path, name + ".s19")[1])[1] == start
    # In a plain image the gaps are zeros, and an array has none.
    _, records = made_again(zirpa, program, tmp_path, "plain.bin", "--base", f"0x{lowest:X}")
    filled = dict.fromkeys(range(lowest, max(image) + 1), 0) | image
    assert read_records(records)[0] == filled


def test_hints_that_are_saved_bring_the_source_back(zirpa, program, tmp_path):
    running.run(tmp_path, program, "-L", "-S", ROOT / "examples" / "report.szirpa")
    words = ["report.s19", "--symbols", "report.lst"]
    first = dis(zirpa, tmp_path, *words, "--save-hints", "report.hints").stdout
    assert b"\nreadings  FCB   $11,$2A,$08,$63,$17\n" in first
    assert dis(zirpa, tmp_path, "report.s19", "--hints", "report.hints").stdout == first


def test_debug_records_of_another_file_bring_lines(zirpa, program, tmp_path):
    running.run(tmp_path, program, "-g", ROOT / "examples" / "report.szirpa")
    process = dis(zirpa, tmp_path, "report.fmem", "--debug", "report.s19")
    assert b"LDX   #L23                ; report.szirpa:8\n" in process.stdout


def test_standard_input_is_read(zirpa, tmp_path):
    process = dis(zirpa, tmp_path, "-", input=b"S1050010F005F5\nS9030010EC\n")
    assert process.stdout == b"          ORG   $10\n          LDA   #5\n          END\n"


# ---- Faulty input ----

FAULTY = {
    "record-checksum": "S1050010F005F4\nS9030010EC\n",
    "record-length": "S1060010F005F5\nS9030010EC\n",
    "record-count": "S104001001EA\nS5030002FA\nS9030010EC\n",
    "record-order": "S9030010EC\nS104001001EA\n",
    "bad-record": "S104001001EA\nS10\x80\nS9030010EC\n",
    "cut-file": "S104001001EA\n",
    "set-twice": "S104001001EA\nS104001001EA\nS9030010EC\n",
    "address-beyond-ffff": "S2050123450190\nS9030000FC\n",
    "bad-command": " # ClearAllMemory\n #setMemory  10\n",
    "bad-array": "char a[] = {\n 1, 300\n};\n",
    "unknown-format": "\x00\x01rubbish\xff",
}


@pytest.mark.parametrize("identifier", FAULTY)
def test_faulty_input_is_refused_and_nothing_is_written(identifier, zirpa, tmp_path):
    name = tmp_path / "program"
    name.write_bytes(FAULTY[identifier].encode("latin-1"))
    outputs = ["-o", "out", "--graph", "graph", "--save-hints", "hints"]
    process = dis(zirpa, tmp_path, "program", *outputs)
    assert (process.returncode, process.stdout) == (2, b"")
    place = "program:" if identifier == "unknown-format" else r"program:\d+:\d+:"
    assert re.match(rf"{place} error: .* \[{identifier}\]\n", process.stderr.decode())
    assert list(tmp_path.iterdir()) == [name]


def test_a_fault_is_shown_with_its_line(zirpa, tmp_path):
    process = dis(zirpa, tmp_path, "-", input=b"S1050010F005F4\nS9030010EC\n")
    assert process.stderr.decode() == (
        "stdin:1:13: error: the checksum is F4, but F5 by the bytes [record-checksum]\n"
        "    1 | S1050010F005F4\n"
        "      |             ^~\n"
        "1 error\n"
    )


def test_a_fault_far_along_a_line_is_told_by_its_column(zirpa, tmp_path):
    line = "char a[] = { " + "1, " * 200 + "300 };"
    process = dis(zirpa, tmp_path, "-", input=line.encode())
    assert process.returncode == 2
    assert f"stdin:1: error: column {line.index('300') + 1}: " in process.stderr.decode()


@pytest.mark.parametrize("record", ["SY:C:X:", "SY:C:X:1", "SY:C:f:", "SY:C:S:v:x", "SY:C:X:a:b:c:d:zz"])
def test_debug_records_without_their_fields_say_nothing(record, zirpa, tmp_path):
    program = f"S1050010F005F5\nS9030010EC\n{record}\n"
    process = dis(zirpa, tmp_path, "-", input=program.encode())
    assert process.stdout == b"          ORG   $10\n          LDA   #5\n          END\n"


def test_a_picture_quotes_texts_and_leads_out_of_the_program(zirpa, program, tmp_path):
    (tmp_path / "p.szirpa").write_text(" ORG $10\n LDA #'\"'\n BRA $40\n")
    assert running.run(tmp_path, program, "p.szirpa").returncode == 0
    assert dis(zirpa, tmp_path, "p.s19", "--graph", "p.dot").returncode == 0
    picture = (tmp_path / "p.dot").read_text()
    assert "LDA   #'\\\"'" in picture
    assert re.search(r'-> "[^"]*40" \[style=dotted\];', picture)


def test_faulty_hints_and_symbols_are_refused(zirpa, tmp_path):
    (tmp_path / "p.s19").write_text("S104001043A8\nS9030010EC\n")
    (tmp_path / "hints").write_text("code $10\ncoda $10\n")
    refused_as(zirpa, tmp_path, "bad-hint", "p.s19", "--hints", "hints")
    refused_as(zirpa, tmp_path, "bad-symbols", "p.s19", "--symbols", "hints")
    refused_as(zirpa, tmp_path, "cannot-read", "p.s19", "--hints", "none")
    refused_as(zirpa, tmp_path, "cannot-read", "none.s19")
    refused_as(zirpa, tmp_path, "cannot-read", ".")


@pytest.mark.parametrize(
    ("words", "hint"),
    [
        (["--code", "$10000"], "$10000: an address up to $FFFF is expected"),
        (["--data", "$20-$10"], "the range ends before it begins"),
        (["--label", "X=$10"], "is no register"),
        (["--base", "ten"], "ten: an address up to $FFFF is expected"),
        (["--from", "hex"], "hex is none of array, image, records, script"),
        (["--bites"], "did you mean --bytes?"),
    ],
)
def test_wrong_words_are_refused(words, hint, zirpa, tmp_path):
    process = dis(zirpa, tmp_path, *words, "p.s19")
    assert process.returncode == 2
    assert hint in process.stderr.decode()
    assert b"See zirpa dis --help.\n" in process.stderr


@pytest.mark.parametrize("option", ["-o", "--graph", "--save-hints"])
def test_no_file_that_is_read_is_overwritten(option, zirpa, tmp_path):
    records = "S104001043A8\nS9030010EC\n"
    (tmp_path / "p.s19").write_text(records)
    (tmp_path / "link").symlink_to("p.s19")
    process = dis(zirpa, tmp_path, option, "link", "p.s19")
    assert process.returncode == 2
    assert b"link: error: is not written: another file of this run has that name" in process.stderr
    assert (tmp_path / "p.s19").read_text() == records


def test_a_file_that_cannot_be_written_is_reported(zirpa, tmp_path):
    (tmp_path / "p.s19").write_text("S104001043A8\nS9030010EC\n")
    process = dis(zirpa, tmp_path, "-o", "none/out", "p.s19")
    assert process.returncode == 2
    assert b"none/out: error: can't be written: No such file or directory" in process.stderr


# ---- Programs compared ----


def diff(zirpa, directory, *words):
    process = running.run(directory, zirpa, "diff", *words)
    return process.returncode, process.stdout.decode()


def test_a_changed_example_differs_where_it_was_changed(zirpa, program, tmp_path):
    source = (ROOT / "examples" / "report.szirpa").read_text()
    (tmp_path / "a.szirpa").write_text(source)
    (tmp_path / "b.szirpa").write_text(source.replace("99", "98"))
    for name in ("a", "b"):
        assert running.run(tmp_path, program, name + ".szirpa").returncode == 0
    assert diff(zirpa, tmp_path, "a.s19", "a.s19")[0] == 0
    status, text = diff(zirpa, tmp_path, "a.s19", "b.s19")
    assert status == 1
    assert text.splitlines()[0] == "~ 26  FCB   $63".ljust(40) + "26  FCB   $62"
    assert text.splitlines()[1].startswith("1 changed, ")


def test_a_rebuilt_source_can_be_changed(zirpa, program, tmp_path):
    """As somebody does who has lost the source: rebuild it, put an instruction in, compare."""
    running.run(tmp_path, program, ROOT / "examples" / "report.szirpa")
    source = dis(zirpa, tmp_path, "report.s19").stdout.decode()
    changed = source.replace("L19       LEAX", "L19       NOP\n          LEAX")
    assert changed != source
    (tmp_path / "new.szirpa").write_text(changed)
    assert running.run(tmp_path, program, "new.szirpa").returncode == 0
    status, text = diff(zirpa, tmp_path, "report.s19", "new.s19")
    assert status == 1
    assert text.splitlines()[:2] == ["> " + " " * 38 + "19  NOP", "@ 19-2F to 1A-30"]


def test_what_cannot_be_read_is_not_compared(zirpa, tmp_path):
    (tmp_path / "p.s19").write_text("S104001043A8\nS9030010EC\n")
    assert diff(zirpa, tmp_path, "p.s19", "none.s19") == (2, "")


def test_a_comparison_that_cannot_be_printed_is_a_failure(zirpa, tmp_path):
    (tmp_path / "p.s19").write_text("S104001043A8\nS9030010EC\n")
    with open("/dev/full", "wb") as full:
        assert running.run(tmp_path, zirpa, "diff", "p.s19", "p.s19", stdout=full).returncode == 2
