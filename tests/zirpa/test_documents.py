"""What the page on zirpa shows is what happens, and every option is in all documents."""

import html
import pathlib
import re

import pytest
import running
import shown

ROOT = pathlib.Path(__file__).resolve().parents[2]
COMMANDS = ("build", "check", "map", "explain", "dis", "diff", "lsp")
# fish has a word of its own for long options.
DOCUMENTS = {
    "man/zirpa.1": r"Fl (?:\w , )?-%s\b",
    "completions/zirpa": r"--%s\b",
    "completions/_zirpa": r"--%s\b",
    "completions/zirpa.fish": r"-l %s\b",
}


@pytest.mark.parametrize("page", ["zirpa.md", "dis.md"])
def test_what_is_shown_is_what_happens(page, program, tmp_path):
    reader = shown.Reader(program, tmp_path / "zirpa")
    reader.play(ROOT / "docs" / page)


def test_the_picture_is_that_of_the_example(zirpa, program, tmp_path):
    """Graphviz draws it; what stands in the boxes is compared, and how many arrows there are."""
    example = ROOT / "examples" / "sort.szirpa"
    (tmp_path / "sort.sym").write_text(running.printed_by(program, "-S", example, cwd=tmp_path))
    words = ["--symbols", "sort.sym", "--graph", "sort.dot", "sort.s19"]
    running.printed_by(zirpa, "dis", *words, cwd=tmp_path)
    graph = (tmp_path / "sort.dot").read_text()
    labels = re.findall(r'label="(.*)\\l"', graph)
    picture = (ROOT / "docs" / "flow.svg").read_text().replace("&#160;", " ")
    texts = [html.unescape(text) for text in re.findall(r"<text [^>]*>([^<]*)</text>", picture)]
    lines = [line for label in labels for line in label.split("\\l")]
    assert sorted(texts) == sorted(lines), "run ./dev pages"
    assert picture.count('class="edge"') == graph.count(" -> ")


def options(zirpa):
    """The long options of all commands."""
    found = set()
    for command in COMMANDS:
        found |= set(re.findall(r"--([a-z-]+)", running.printed_by(zirpa, command, "--help")))
    return sorted(found - {"help", "version"})


@pytest.mark.parametrize("name", DOCUMENTS)
def test_every_option_is_there(name, zirpa):
    text = (ROOT / name).read_text().replace("\\-", "-")
    assert len(options(zirpa)) > 20
    missing = [option for option in options(zirpa) if not re.search(DOCUMENTS[name] % option, text)]
    assert missing == []
