"""Every shell offers what the program takes at that place, and nothing else."""

import os
import re
import subprocess

import pytest
from program_words import all_options, compatibility_words
from shells import COMMANDS, offers

# One line of each kind; a shell is started once for all of them.
LINES = [
    "HXzirpa ",
    "HXzirpa -",
    "HXzirpa -S",
    "HXzirpa -C ",
    "HXzirpa -Cnop",
    "HXzirpa -D ",
    "HXzirpa -d ",
    "HXzirpa -d li",
    "HXzirpa -I ",
    "HXzirpa -Il",
    "HXzirpa -o ",
    "HXzirpa -L -D SHORT -",
    "HXzirpa -L -DSHORT ",
    "HXzirpa -D -L -",
    "HXzirpa library/",
    "HXzirpa main.szirpa -",
    "HXzirpa main.szirpa ",
]


@pytest.fixture(scope="module")
def usage(program):
    """The usage text."""
    return subprocess.run([program], stdout=subprocess.PIPE, text=True, timeout=60).stdout


def has_pseudo_terminal():
    try:
        for descriptor in os.openpty():
            os.close(descriptor)
    except OSError:
        return False
    return True


@pytest.fixture(scope="module", params=COMMANDS)
def offered(request, tmp_path_factory):
    """What a shell offers for each of the lines."""
    if request.param == "zsh" and not has_pseudo_terminal():
        pytest.skip("zsh offers nothing without a pseudo-terminal, and none can be opened here")
    directory = tmp_path_factory.mktemp("directory")
    (directory / "library").mkdir()
    for name in ("main.szirpa", "library/part.szirpa", "main.s19", "notes.txt"):
        (directory / name).touch()
    return offers(request.param, LINES, directory, tmp_path_factory.mktemp("home"))


def test_all_options_of_the_program_are_offered(offered):
    assert offered["HXzirpa -"] == all_options()


def test_all_options_of_the_usage_text_are_offered(offered, usage):
    shown, _, _ = usage.partition("options: ")[2].partition("compatibility options:")
    options = set(re.findall(r"^ *(-\w+) ", shown, re.MULTILINE))
    assert len(options) == 11
    assert options <= offered["HXzirpa -"]


def test_longer_options_are_offered(offered):
    assert offered["HXzirpa -S"] == {"-S", "-S1", "-S2", "-S3"}


def test_options_go_on_behind_a_value(offered):
    assert offered["HXzirpa -L -D SHORT -"] >= {"-A", "-D"}
    assert offered["HXzirpa -D -L -"] >= {"-A", "-D"}


def test_compatibility_words_of_the_program_are_offered(offered):
    assert offered["HXzirpa -C "] == compatibility_words()
    assert offered["HXzirpa -Cnop"] == {"nopure"}


def test_compatibility_words_of_the_usage_text_are_offered_where_they_are_taken(offered, usage):
    shown = usage.partition("compatibility options: -C option\n")[2]
    words = set(re.findall(r"^ *(\w+) - ", shown, re.MULTILINE))
    # Another one is taken and not in the text.
    assert words - offered["HXzirpa -C "] == {"notrad"}
    assert offered["HXzirpa -C "] - words == {"nonative"}


def test_directories_are_offered_for_directories(offered):
    for line in ("HXzirpa -d ", "HXzirpa -d li", "HXzirpa -I ", "HXzirpa -Il"):
        assert offered[line] == {"library"}, line


def test_any_file_is_offered_for_the_records(offered):
    assert offered["HXzirpa -o "] == {"library", "main.szirpa", "main.s19", "notes.txt"}


def test_no_file_is_offered_for_a_symbol(offered):
    assert offered["HXzirpa -D "] == set()


def test_sources_are_offered(offered):
    assert offered["HXzirpa "] == {"library", "main.szirpa"}
    assert offered["HXzirpa -L -DSHORT "] == {"library", "main.szirpa"}


def test_sources_in_directories_are_offered(offered):
    (source,) = offered["HXzirpa library/"]
    assert source.rpartition("/")[2] == "part.szirpa"


def test_nothing_is_offered_behind_the_source(offered):
    assert offered["HXzirpa main.szirpa -"] == set()
    assert offered["HXzirpa main.szirpa "] == set()
