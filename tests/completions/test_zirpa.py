"""Every shell offers the commands of zirpa, their options, and identifiers."""

import pathlib
import re

import pytest
import running
from shells import COMMANDS, offers
from test_completions import has_pseudo_terminal

LINES = [
    "zirpa ",
    "zirpa build --",
    "zirpa check --",
    "zirpa map --",
    "zirpa lsp --",
    "zirpa build ",
    "zirpa explain bad-l",
    "zirpa check --format ",
    "zirpa build --deny unli",
    "zirpa build --color ",
    "zirpa build -C ",
]


@pytest.fixture(scope="module")
def zirpa(program):
    return pathlib.Path(program).with_name("zirpa")


@pytest.fixture(scope="module", params=COMMANDS)
def offered(request, zirpa, tmp_path_factory):
    if request.param == "zsh" and not has_pseudo_terminal():
        pytest.skip("zsh offers nothing without a pseudo-terminal, and none can be opened here")
    directory = tmp_path_factory.mktemp("directory")
    for name in ("main.szirpa", "main.s19", "notes.txt"):
        (directory / name).touch()
    home = tmp_path_factory.mktemp("home")
    return offers(request.param, LINES, directory, home, [str(zirpa.parent)])


def long_options(zirpa, command):
    shown = running.printed_by(str(zirpa), command, "--help").partition("\nExit status")[0]
    return {word for word in re.findall(r"(?:^  |,)(--[a-z-]+)", shown, re.MULTILINE)}


def test_commands_are_offered(offered):
    assert {"build", "check", "map", "explain", "lsp"} <= offered["zirpa "]


@pytest.mark.parametrize("command", ["build", "check", "map"])
def test_all_options_of_a_command_are_offered(command, offered, zirpa):
    assert len(long_options(zirpa, command)) > 10
    assert offered[f"zirpa {command} --"] == long_options(zirpa, command)


def test_a_server_has_few_options(offered):
    assert offered["zirpa lsp --"] == {"--stdio", "--help"}


def test_sources_are_offered(offered):
    assert offered["zirpa build "] == {"main.szirpa"}


def test_identifiers_are_offered(offered):
    assert offered["zirpa explain bad-l"] == {"bad-label"}
    assert offered["zirpa build --deny unli"] == {"unlike-c"}


def test_words_of_options_are_offered(offered):
    assert offered["zirpa check --format "] == {"text", "json", "sarif"}
    assert offered["zirpa build --color "] == {"auto", "always", "never"}
    assert offered["zirpa build -C "] == {"nocase", "nopure", "nonative"}
