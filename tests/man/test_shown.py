"""What the man pages show is what the program does.

A display that holds a line of a listing is a whole listing: its lines are the source's, and one
that is missing there, because it is skipped, may be any.
"""

import re

import pytest
import running
from man_page import page

SOURCE_NAME = "prog.szirpa"
HOME = "/home/me"
ANY_LINE = "        NOP"
DISPLAY = re.compile(r"^\.Bd -literal.*?\n(.*?)^\.Ed$", re.DOTALL | re.MULTILINE)
LISTED = re.compile(r"[ 0-9A-F]{20}([ \d]{5})\. (.*)")
FILE_LINE = f'---- File: "{SOURCE_NAME}"\n'
FAULTY = "\n" * 11 + " LOAD\n\n FCS \"\xe9\"\n"
ROMAN = {"\\(aq": "'", "\\(ha": "^", "\\-": "-", "\\&": ""}

RECORD_ITEM = re.compile(r'^\.It Li "(\.stab [^"]*)"\n((?!\.It).*\n)?', re.MULTILINE)
# What the words in capitals mean in a source whose labels are all at $1F, and in its records.
WRITTEN = {"NAME": "main", "LABEL": "main", "LINE": "7", "COUNT": "3", "TEXT": "x:y"}
ADDRESSES = {"ADDRESS": "1F", "VALUE": "0000001F", "BELOW": "0000001E"}
RECORDED = {**WRITTEN, **ADDRESSES, "FILE": SOURCE_NAME}


def plain(text):
    for written, shown in ROMAN.items():
        text = text.replace(written, shown)
    return text


def displays(section):
    return [plain(text) for text in DISPLAY.findall(page(section).read_text())]


def listings():
    return [text for section in (1, 5) for text in displays(section) if LISTED.search(text)]


def source_of(listing):
    lines = {int(number): text for number, text in LISTED.findall(listing)}
    return "".join(lines.get(number, ANY_LINE) + "\n" for number in range(1, max(lines) + 1))


@pytest.fixture
def run(program, tmp_path):
    """Runs a command as the pages write it; returns its status and what it prints."""
    (tmp_path / "bin").mkdir()
    (tmp_path / "bin" / "HXzirpa").symlink_to(program)
    directory = tmp_path / "me"
    directory.mkdir()

    def run_it(command, source, name=SOURCE_NAME):
        (directory / name).write_bytes(source.encode("latin-1"))
        command = f"PATH={tmp_path / 'bin'}:$PATH; {command}"
        process = running.run(directory, "/bin/sh", "-c", command, stderr=None)
        return process.returncode, process.stdout.decode().replace(str(directory), HOME)

    run_it.directory = directory
    return run_it


def test_listings_are_found():
    assert len(listings()) >= 6


@pytest.mark.parametrize("listing", listings(), ids=range(len(listings())))
def test_listing_is_what_its_lines_make(run, listing):
    run(f"HXzirpa -L {SOURCE_NAME}", source_of(listing))
    text = (run.directory / "prog.lst").read_text("latin-1")
    body = text.partition("File: prog.lst\n")[2].replace(FILE_LINE, "")
    assert body.partition("\n\n\n******")[0].rstrip("\n") == listing.rstrip("\n")


def test_forms_of_messages_are_right(run):
    to_output, to_listing, fatal = displays(1)[:3]
    _, output = run(f"HXzirpa -L -w {SOURCE_NAME}", FAULTY)
    assert output.partition("--")[0] == to_output
    listing = (run.directory / "prog.lst").read_text("latin-1")
    assert "".join(line + "\n" for line in listing.splitlines() if line[:1] == '"') == to_listing
    (run.directory / "prog.s19").symlink_to(SOURCE_NAME)
    assert run(f"HXzirpa {SOURCE_NAME}", FAULTY) == (1, fatal)


def examples():
    text = page(1).read_text().partition(".Sh EXAMPLES\n")[2].partition(".Sh ")[0]
    return [plain(line) for line in re.findall(r"^\.Dl (.*)$", text, re.MULTILINE)]


def test_examples_succeed(run):
    assert len(examples()) >= 4
    for command in examples():
        name = re.search(r"[\w.]+\.szirpa|$", command)[0] or SOURCE_NAME
        assert run(command, " ORG 0\n NOP\n", name)[0] == 0, command


def test_example_for_makefiles_fails_on_256_errors_and_without_a_source(run):
    command = next(command for command in examples() if "test -f" in command)
    (run.directory / "prog.s19").write_text("old")
    assert run(command, " OOPS\n" * 256)[0] != 0
    (run.directory / "prog.s19").write_text("old")
    assert run(command.replace(SOURCE_NAME, "missing.szirpa"), "")[0] != 0


def debug_rows():
    """The debug lines of the page and their records, None for those that make none."""
    rows, waiting = [], []
    for line, record in RECORD_ITEM.findall(page(5).read_text()):
        waiting.append(line)
        if record:
            found = re.fullmatch(r"\.Li (\S+)\n", record)
            assert found or record == "no record\n"
            rows += [(line, found and found[1]) for line in waiting]
            waiting = []
    assert not waiting
    return rows


def filled(form, words):
    return re.sub(r"\b[A-Z]{4,}\b", lambda match: words[match[0]], form)


def test_debug_records_have_the_forms_shown(run):
    rows = debug_rows()
    assert len(rows) == 13
    # I, J and K are numbers.
    lines = [filled(line, WRITTEN).replace("I:J:K", "1:2:3") for line, _ in rows]
    records = [filled(record, RECORDED).replace("I:J:K", "1:2:3") for _, record in rows if record]
    text = "\n".join([" ORG $1F", "main", *lines, " NOP", ""])
    assert run(f"HXzirpa -g -w {SOURCE_NAME}", text) == (0, "No errors.\n")
    written = (run.directory / "prog.s19").read_text().partition("S903001FDD\n")[2].splitlines()
    shown = re.search(r"^\.Dl (SY:.*)$", page(5).read_text(), re.MULTILINE)[1]
    instruction = filled(shown, {**RECORDED, "LINE": str(len(lines) + 3)})
    assert written == ["SX:C:s:start", *records, instruction]
