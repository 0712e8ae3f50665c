"""The options that the program takes, found out by asking it."""

import re
import string
import subprocess
import tempfile

# The name of a file that is not there, so that nothing is assembled.
MISSING = "missing-file"


def run(program, *arguments):
    with tempfile.TemporaryDirectory() as directory:
        process = subprocess.run(
            [program, *arguments], cwd=directory, capture_output=True, text=True, timeout=60
        )
    return process.stdout


def is_accepted(program, option):
    return "Unknown option" not in run(program, option, MISSING)


def takes_value(program, option):
    """True when the next argument is the option's value, and so not the source."""
    opens = f"Can't open '{MISSING}'" in run(program, option, MISSING)
    return is_accepted(program, option) and not opens


def accepted_options(program):
    """All options of a letter or digit, and of a letter and a digit."""
    characters = string.ascii_letters + string.digits
    short = [f"-{ch}" for ch in characters if is_accepted(program, f"-{ch}")]
    switches = [option for option in short if not takes_value(program, option)]
    numbered = [option + digit for option in switches for digit in string.digits]
    return {*short, *(option for option in numbered if is_accepted(program, option))}


def is_accepted_word(program, word):
    """Whether the word is a compatibility option."""
    return "Unknown compatibility option" not in run(program, "-C", word, MISSING)


def usage_options(program):
    """The options of the usage text."""
    options, _, _ = run(program).partition("options: ")[2].partition("compatibility options:")
    return set(re.findall(r"^ *(-\w+) ", options, re.MULTILINE))


def usage_words(program):
    """The compatibility options of the usage text."""
    text = run(program).partition("compatibility options: -C option\n")[2]
    return set(re.findall(r"^ *(\w+) - ", text, re.MULTILINE))
