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
import re
import subprocess

import running

SHOWN_DIRECTORY = "/home/me/zirpa"
ASSEMBLY_LANGUAGES = ("szirpa", "asm")
SOURCE_LANGUAGES = (*ASSEMBLY_LANGUAGES, "c", "cmake")

# Commands that cannot be carried out within a test, and why. No output may be shown for them.
NOT_RUN = {
    "./dev": "builds and tests the project itself",
    "sudo": "changes the system",
    "apt": "changes the system",
    "apt-get": "changes the system",
    "code": "needs an editor with a window",
    "git": "needs the network",
    "cmake": "builds the project itself; the tests of the CMake module and the package do that",
}

FENCE = re.compile(r"```(\w*)$")
FILE_NAME = re.compile(r"`([\w./-]*\w\.\w+)`")
SHOW_STATUS = "echo $?"


class Block:
    """A fenced block: its language, its text, the paragraph above it and the line it begins in."""

    def __init__(self, language, line, paragraph):
        self.language = language
        self.line = line
        self.paragraph = paragraph
        self.text = ""

    def named_file(self):
        name = FILE_NAME.search(self.paragraph)
        return name.group(1) if name else None


def read_blocks(text):
    """The blocks of a document; a paragraph is what stands between two empty lines or blocks."""
    blocks, paragraph, ended, block = [], "", False, None
    for number, line in enumerate(text.splitlines(keepends=True), start=1):
        fence = FENCE.match(line)
        if fence and block is None:
            block = Block(fence.group(1), number, paragraph)
        elif fence:
            blocks.append(block)
            block, paragraph = None, ""
        elif block is not None:
            block.text += line
        elif line.strip():
            paragraph = line if ended else paragraph + line
        ended = not line.strip()
    assert block is None, f"the block of line {block.line} is not closed"
    return blocks


class Step:
    """A command, the line it stands in, and what it prints."""

    def __init__(self, command, line):
        self.command = command
        self.line = line
        self.output = ""


def steps_of(block):
    """The commands of a block."""
    marked = block.text.startswith("$ ")
    steps = []
    for number, line in enumerate(block.text.splitlines(keepends=True), start=block.line + 1):
        if not marked:
            steps.append(Step(line.strip(), number))
        elif line.startswith("$ "):
            steps.append(Step(line[2:].strip(), number))
        else:
            steps[-1].output += line
    return steps


def is_run(command):
    return command.split()[0] not in NOT_RUN


class Reader:
    """Someone who does what a document shows, step by step, in a directory of their own."""

    def __init__(self, program, directory):
        directory.mkdir()
        self.directory = directory.resolve()
        self.status = 0
        binaries = self.directory.parent / (self.directory.name + ".bin")
        binaries.mkdir()
        (binaries / "HXzirpa").symlink_to(program)
        self.environment = {**os.environ, "PATH": f"{binaries}:{os.environ['PATH']}"}
        self.environment["LC_ALL"] = "C"

    def run(self, command):
        """Runs a command; `$?` in it is the status of the one before. Returns what it prints."""
        command = ["/bin/sh", "-c", f"(exit {self.status})\n{command}"]
        options = {"env": self.environment, "stderr": subprocess.STDOUT}
        process = running.run(self.directory, *command, **options)
        self.status = process.returncode
        return process.stdout.decode("latin-1").replace(str(self.directory), SHOWN_DIRECTORY)

    def has(self, name):
        return (self.directory / name).exists()

    def write(self, name, text):
        path = self.directory / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def read(self, name):
        assert self.has(name), f"there is no file {name}"
        text = (self.directory / name).read_bytes().decode("latin-1")
        return text if text.endswith("\n") else text + "\n"


def compare(place, shown, actual):
    difference = difflib.unified_diff(
        shown.splitlines(keepends=True), actual.splitlines(keepends=True), "shown", "actual"
    )
    assert shown == actual, f"{place}:\n" + "".join(difference)


def is_output(block, before):
    """True for a block that shows what the last command of the block before it prints."""
    return bool(before) and before.language == "sh" and not block.language and not block.paragraph


class Play:
    """A document, played through by a reader. Names are for its sources without one, in order."""

    def __init__(self, name, text, reader, names=()):
        self.name = name
        self.blocks = read_blocks(text)
        self.reader = reader
        self.names = list(names)

    def place(self, line):
        return f"{self.name}, line {line}"

    def play(self):
        before = None
        for block, after in zip(self.blocks, [*self.blocks[1:], None]):
            if block.language == "sh":
                self.commands(block, after)
            elif not is_output(block, before):
                self.file(block)
            before = block
        self.expect_success("the end")

    def commands(self, block, after):
        steps = steps_of(block)
        if after is not None and is_output(after, block):
            steps[-1].output = after.text
        for step in steps:
            self.carry_out(step, self.place(step.line))

    def carry_out(self, step, place):
        if not is_run(step.command):
            assert not step.output, f"{place}: no test can see to this output"
            return
        if step.command != SHOW_STATUS:
            self.expect_success(place)
        compare(place, step.output, self.reader.run(step.command))

    def expect_success(self, place):
        assert self.reader.status == 0, f"{place}: the status before is not 0 and not shown"

    def file(self, block):
        is_assembly = block.language in ASSEMBLY_LANGUAGES
        name = block.named_file()
        if name is None and is_assembly and self.names:
            name = self.names.pop(0)
        if name is None:
            assert is_assembly, f"{self.place(block.line)}: the text above names no file"
            self.assemble(block)
        elif block.language in SOURCE_LANGUAGES and not self.reader.has(name):
            self.reader.write(name, block.text)
        else:
            compare(self.place(block.line), block.text, self.reader.read(name))

    def assemble(self, block):
        self.reader.write("unnamed/fragment.szirpa", block.text)
        output = self.reader.run("HXzirpa -o unnamed/fragment.s19 unnamed/fragment.szirpa")
        compare(self.place(block.line), "-- No errors.\n", output)
