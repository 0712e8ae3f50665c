"""Carries out what a document shows: its commands, what they print, its sources and their outputs.

The convention, which a reader can see:

- A block in the language `sh` holds commands. A line that begins with "$ " is a command, and the
  lines below it are what it prints. A block without such a line is a command a line; what they
  print stands in a block of its own right below, or they print nothing.
- A block of any other language, or of none, holds the file that the paragraph above it names: the
  first word in backquotes that looks like a file name. A source that is not there yet is written;
  any other file must be there, with exactly that text but for a line feed at its end.
- An assembly source without a name must assemble without an error.

Blocks take effect in their order, in one directory, which documents call SHOWN_DIRECTORY. A status
other than 0 must be shown, by the command `echo $?` right below.
"""

import difflib
import os
import pathlib
import re
import subprocess

import running

SHOWN_DIRECTORY = "/home/me/zirpa"
ASSEMBLY_LANGUAGES = ("szirpa", "asm")
SOURCE_LANGUAGES = (*ASSEMBLY_LANGUAGES, "c", "cmake", "js", "json", "make")

# Commands that cannot be carried out within a test, and why. No output may be shown for them.
NOT_RUN = {
    "./dev": "builds and tests the project itself",
    "sudo": "changes the system",
    "apt": "changes the system",
    "apt-get": "changes the system",
    "code": "needs an editor with a window",
    "git": "needs the network",
    "npm": "needs the network",
    "cmake": "builds the project itself; the tests of the CMake module and the package do that",
}

# The paragraph above a block, the language and the text of the block.
BLOCK = re.compile(r"((?:^(?!```).+\n)*)\n*^```(\w*)\n((?:(?!```).*\n)*)```$", re.MULTILINE)
COMMAND = re.compile(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", re.MULTILINE)
FILE_NAME = re.compile(r"`([\w./-]*\w\.\w+)`")
SHOW_STATUS = "echo $?"


def commands_of(text, printed_below):
    """The commands of a block, each with what it prints."""
    if text.startswith("$ "):
        return COMMAND.findall(text)
    *earlier, last = text.splitlines()
    return [*((command, "") for command in earlier), (last, printed_below)]


def compare(place, shown, actual):
    difference = difflib.unified_diff(
        shown.splitlines(keepends=True), actual.splitlines(keepends=True), "shown", "actual"
    )
    assert shown == actual, f"{place}:\n" + "".join(difference)


class Reader:
    """Someone who does what a document shows, step by step, in a directory of their own."""

    def __init__(self, program, directory):
        directory.mkdir()
        self.directory = directory.resolve()
        self.status = 0
        binaries = self.directory.parent / (self.directory.name + ".bin")
        binaries.mkdir()
        for name in ("HXzirpa", "zirpa"):
            (binaries / name).symlink_to(pathlib.Path(program).with_name(name))
        self.environment = {**os.environ, "PATH": f"{binaries}:{os.environ['PATH']}", "LC_ALL": "C"}

    def play(self, document):
        text = document.read_text()
        blocks = list(BLOCK.finditer(text))
        assert 2 * len(blocks) == len(re.findall("^```", text, re.MULTILINE)), "an open block"
        printed = False
        for block, below in zip(blocks, [*blocks[1:], None]):
            paragraph, language, content = block.groups()
            place = f"{document.name}, line {text.count(chr(10), 0, block.start(3)) + 1}"
            if language == "sh":
                printed = below is not None and below[1] == below[2] == ""
                for command, output in commands_of(content, below[3] if printed else ""):
                    self.carry_out(command.strip(), output, f"{place}: {command}")
            elif not printed:
                self.file(FILE_NAME.search(paragraph), language, content, place)
            else:
                printed = False
        self.expect_success("the end")

    # ---- Commands ----

    def run(self, command):
        """Runs a command; `$?` in it is the status of the one before. Returns what it prints."""
        command = ["/bin/sh", "-c", f"(exit {self.status})\n{command}"]
        options = {"env": self.environment, "stderr": subprocess.STDOUT}
        process = running.run(self.directory, *command, **options)
        self.status = process.returncode
        return process.stdout.decode("latin-1").replace(str(self.directory), SHOWN_DIRECTORY)

    def carry_out(self, command, output, place):
        if command.split()[0] in NOT_RUN:
            assert not output, f"{place}: no test can see to this output"
            return
        if command != SHOW_STATUS:
            self.expect_success(place)
        compare(place, output, self.run(command))

    def expect_success(self, place):
        assert self.status == 0, f"{place}: the status before is not 0 and not shown"

    # ---- Files ----

    def file(self, name, language, content, place):
        if name is None:
            assert language in ASSEMBLY_LANGUAGES, f"{place}: the text above names no file"
            self.assemble(content, place)
            return
        path = self.directory / name[1]
        if language in SOURCE_LANGUAGES and not path.exists():
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(content)
            return
        assert path.exists(), f"{place}: there is no file {name[1]}"
        actual = path.read_text("latin-1")
        compare(place, content, actual if actual.endswith("\n") else actual + "\n")

    def assemble(self, content, place):
        directory = self.directory / "unnamed"
        directory.mkdir(exist_ok=True)
        (directory / "fragment.szirpa").write_text(content)
        output = self.run("HXzirpa -o unnamed/fragment.s19 unnamed/fragment.szirpa")
        compare(place, "-- No errors.\n", output)
