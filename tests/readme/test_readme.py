"""What the README shows is what the program does: its source gives its output and its files."""

import pathlib
import re
import subprocess

README = pathlib.Path(__file__).resolve().parents[2] / "README.md"


def blocks_of(section):
    """The fenced blocks below a heading, without their fences."""
    text = README.read_text().partition(f"\n## {section}\n")[2].partition("\n## ")[0]
    return re.findall(r"^```\w*\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)


def test_ten_lines_of_source(request, tmp_path):
    source, command, output, records, listing = blocks_of("Ten lines of source")
    (tmp_path / "sum.szirpa").write_text(source)
    arguments = command.split()
    arguments[0] = request.config.getoption("--program")
    process = subprocess.run(
        arguments, cwd=tmp_path, capture_output=True, text=True, timeout=60, check=True
    )
    assert process.stdout == output
    assert (tmp_path / "sum.s19").read_text() == records
    assert (tmp_path / "sum.lst").read_text() == listing
