"""A man page as it is read: rendered by mandoc, in wide lines so that nothing is broken."""

import pathlib
import re

import running

MAN = pathlib.Path(__file__).resolve().parents[2] / "man"
WIDE = 500


def mandoc(*arguments):
    running.need("mandoc", "mandoc")
    return running.run(None, "mandoc", *arguments, text=True)


def page(section):
    return MAN / f"HXzirpa.{section}"


def rendered(section):
    process = mandoc("-T", "utf8", "-O", f"width={WIDE}", str(page(section)))
    assert process.returncode == 0, process.stderr
    # Bold and underlined characters are struck over each other.
    return re.sub(".\b", "", process.stdout)


def part(section, heading):
    """The lines below a heading, up to the next one."""
    _, _, text = rendered(section).partition(f"\n{heading}\n")
    assert text, f"no {heading} in section {section}"
    return re.split(r"^\S", text, maxsplit=1, flags=re.MULTILINE)[0].splitlines()


def items(lines, indent):
    """The first words of the lines of that indent, up to two blanks."""
    starts = (re.match(rf" {{{indent}}}(\S.*)", line) for line in lines)
    return [re.split(r"\s{2,}", start[1])[0] for start in starts if start]
