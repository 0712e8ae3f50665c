"""The manual: what it shows is what the program does, and it leaves nothing out."""

import pathlib
import re

import pytest

import program_messages
import program_words
import shown
import write_instructions

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCS = ROOT / "docs"
MANUAL = DOCS / "manual.md"
PAGES = DOCS / "instructions.md"

CODE_SPAN = re.compile(r"`([^`\n]+)`")
HEADING = re.compile(r"^#+ (.*)$", re.MULTILINE)
LINK = re.compile(r"\]\(([^)\s]*)\)")
FENCED = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)


def section(text, title):
    """What stands below a heading, up to the next of the same level."""
    return text.partition(f"\n## {title}\n")[2].partition("\n## ")[0]


def prose(path):
    return FENCED.sub("", path.read_text())


def code_spans(text):
    # A bar within a table is written with a backslash, which is no part of the code.
    return {span.replace("\\|", "|") for span in CODE_SPAN.findall(text)}


MESSAGES = code_spans(section(prose(MANUAL), "Messages"))


# ---- What is shown ----


def test_what_is_shown_is_what_happens(program, tmp_path):
    shown.Reader(program, tmp_path / "zirpa").play(MANUAL)


# ---- Nothing is left out ----


@pytest.mark.parametrize("message", program_messages.messages())
def test_message_is_explained(message):
    pattern = re.compile(program_messages.pattern_of(message))
    assert any(pattern.fullmatch(span) for span in MESSAGES), message


def test_every_message_explained_is_one_of_the_program():
    patterns = [re.compile(program_messages.pattern_of(text)) for text in program_messages.messages()]
    rows = re.findall(r"^\| `([^`]+)`", section(prose(MANUAL), "Messages"), re.MULTILINE)
    assert len(rows) > 50
    for row in rows:
        assert any(pattern.fullmatch(row) for pattern in patterns), row


def option_words():
    """All options, as `-L`, or `-C nocase` for those that are words."""
    with_words = {f"-C {word}" for word in program_words.compatibility_words()}
    return sorted((program_words.all_options() - {"-C"}) | with_words)


@pytest.mark.parametrize("option", option_words())
def test_option_is_explained(option):
    cells = re.findall(r"^\| (`-.*?) \|", section(prose(MANUAL), "Options"), re.MULTILINE)
    words = [span for cell in cells for span in CODE_SPAN.findall(cell)]
    assert any(word == option or word.startswith(option + " ") for word in words)


@pytest.mark.parametrize("word", program_words.directives() + program_words.conditionals())
def test_directive_is_explained(word):
    rows = re.findall(r"^\| `([^`]+)` \|", section(prose(MANUAL), "The language"), re.MULTILINE)
    assert any(word in row.split() for row in rows), word


# ---- The instruction pages ----


def test_instruction_pages_are_those_of_the_program():
    words = program_words.words()
    instructions = write_instructions.instructions_of(words)
    assert PAGES.read_text() == write_instructions.page(instructions, words["opcodes"]), (
        "write them anew: program_words | tools/write_instructions.py >docs/instructions.md"
    )


def cells_of(line):
    return [cell.strip().strip("`") for cell in line.strip().strip("|").split("|")]


def pairs_in_pages():
    """Every mnemonic with its bytes, read back from the tables with a row for each mnemonic."""
    text = PAGES.read_text().partition("\n## With an operand\n")[2].partition("\n## Two names")[0]
    pairs = set()
    for line in text.splitlines():
        name, *shown_bytes = cells_of(line) if line.startswith("| `") else [""]
        pairs |= {(name.split()[0], cell) for cell in shown_bytes if cell and name}
    return pairs


def test_instruction_pages_leave_nothing_out():
    lengths = {1: "", 2: " n"}
    rows = program_words.words()["instructions"]
    expected = {(row["mnemonic"], row["opcode"] + lengths[row["length"]]) for row in rows}
    assert len(expected) > 240
    assert pairs_in_pages() == expected


# ---- Links ----


def anchors(path):
    titles = HEADING.findall(prose(path))
    return {re.sub(r"[^\w -]", "", title.lower()).replace(" ", "-") for title in titles}


@pytest.mark.parametrize("path", [ROOT / "README.md", MANUAL, PAGES], ids=lambda path: path.name)
def test_links_lead_somewhere(path):
    for link in LINK.findall(prose(path)):
        name, _, anchor = link.partition("#")
        if "://" in link:
            continue
        target = path.parent / name if name else path
        assert target.exists(), link
        assert not anchor or anchor in anchors(target), link


def test_contents_name_every_chapter():
    contents = prose(MANUAL).partition("\n## ")[0]
    titles = re.findall(r"^#{2,3} (.*)$", prose(MANUAL), re.MULTILINE)
    assert [title for title in titles if f"- [{title}](#" not in contents] == []
