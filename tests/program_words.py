"""The words of the language and of the command line, as the program's own tables have them.

tools/program_words.cpp prints them. Documents, completions and the editors' files are held against
these, so that nothing can be added to the program and left out there.
"""

import functools
import json
import subprocess

tool = None  # the built tool; set by conftest.py


@functools.cache
def words():
    assert tool and tool.is_file(), "build the target program_words and name it with --words"
    process = subprocess.run([tool], stdout=subprocess.PIPE, check=True, timeout=60)
    return json.loads(process.stdout)


def value_options():
    """The options that take a value."""
    return set(words()["value_options"])


def all_options():
    return {*words()["switches"], *words()["record_options"], *value_options()}


def compatibility_words():
    """What -C takes."""
    return set(words()["compatibility_words"])


def directives():
    return [word.upper() for word in words()["directives"]]


def conditionals():
    """The conditional words with their hash."""
    return ["#" + word for word in words()["conditionals"]]


def instructions():
    """A dictionary of the mnemonics: the sets of what they take, "" for no operand."""
    found = {}
    for row in words()["instructions"]:
        found.setdefault(row["mnemonic"], set()).add(row["form"])
    return found
