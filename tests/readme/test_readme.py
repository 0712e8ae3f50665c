"""What the README shows is what the program does: its sources give its outputs and its files."""

import pathlib
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]


def blocks_of(section):
    """The fenced blocks below a heading, without their fences."""
    text = (ROOT / "README.md").read_text().partition(f"\n## {section}\n")[2]
    text = text.partition("\n## ")[0]
    return re.findall(r"^```\w*\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)


def run_shown(request, directory, command):
    """Runs a command as it is shown, with the program under test; returns its standard output."""
    arguments = command.split()
    arguments[0] = request.config.getoption("--program")
    process = subprocess.run(
        arguments, cwd=directory, capture_output=True, text=True, timeout=60, check=True
    )
    return process.stdout


def test_ten_lines_of_source(request, tmp_path):
    source, command, output, records, listing = blocks_of("Ten lines of source")
    (tmp_path / "sum.szirpa").write_text(source)
    assert run_shown(request, tmp_path, command) == output
    assert (tmp_path / "sum.s19").read_text() == records
    assert (tmp_path / "sum.lst").read_text() == listing


def test_every_output_at_once(request, tmp_path):
    command, output, listing, records, array, script = blocks_of("Every output at once")
    source = (ROOT / "examples" / "report.szirpa").read_text()
    (tmp_path / "report.szirpa").write_text(source)
    assert run_shown(request, tmp_path, command) == output
    assert (tmp_path / "report.lst").read_text() == listing
    assert (tmp_path / "report.s19").read_text() == records
    assert (tmp_path / "report_cout.c").read_text() == array
    assert (tmp_path / "report.fmem").read_text() + "\n" == script
