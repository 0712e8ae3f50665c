"""./dev: what it refuses, what it installs and where it works."""

import re

import pytest
from conftest import ROOT

USAGE = "usage: ./dev COMMAND\n"
INSTALL = "apt-get install -y -qq --no-install-recommends -o Dpkg::Options::=--force-unsafe-io"
COMMANDS = sorted(
    set(re.findall(r"^  ([a-z]+) ", (ROOT / "dev").read_text().partition("\nTEXT\n")[0], re.M))
)


def test_usage_names_the_commands():
    assert {"build", "test", "unit", "golden", "clean"} <= set(COMMANDS)


@pytest.mark.parametrize("words", [["--help"], ["-h"], ["help"], *([c, "--help"] for c in COMMANDS)])
def test_help_starts_nothing(world, words):
    process = world.dev(*words)
    assert process.returncode == 0, process.stderr
    # The tools that have options of their own show these.
    assert process.stdout.startswith(USAGE) or "--help" in process.stdout
    assert process.stderr == ""
    assert world.calls() == []


WRONG = [
    [],
    ["tset"],
    ["--all"],
    ["build", "all"],
    ["clean", "--all"],
    ["format", "dev"],
    ["test", "--al"],
    ["test", "unit", "golden"],
    ["test", "unit", "--all"],
    ["unit", "no_such_module"],
    ["golden", "no_such_topic"],
    ["fuzz", "expr"],
    ["fuzz", "nothing", "1"],
    ["fuzz", "expr", "long"],
    ["fuzz", "expr", "0"],
    ["minimise"],
    ["minimise", "nothing"],
    ["mutate", "--cuont", "3"],
    ["compare", "--cuont", "3"],
    ["bench", "--quik"],
    ["run"],
]


@pytest.mark.parametrize("words", WRONG, ids=" ".join)
def test_wrong_word_starts_nothing(world, words):
    process = world.dev(*words)
    assert process.returncode == 2
    assert process.stdout == ""
    assert process.stderr.startswith("dev: ")
    assert USAGE in process.stderr
    assert world.calls() == []


def test_nothing_is_installed_where_nothing_is_missing(world):
    assert world.dev("build").returncode == 0
    assert world.calls() == [
        f"{ROOT}: cmake --preset release",
        f"{ROOT}: cmake --build --preset release",
    ]


def test_root_installs_what_is_missing(world):
    world.remove("ninja", "g++")
    process = world.dev("build")
    assert process.stderr.startswith("dev: installing g++ ninja-build\n")
    assert world.calls()[:2] == [
        f"{ROOT}: apt-get update -qq",
        f"{ROOT}: env DEBIAN_FRONTEND=noninteractive {INSTALL} g++ ninja-build",
    ]


def test_others_install_by_sudo(world):
    world.remove("ninja")
    world.be(1000)
    world.dev("build")
    assert world.calls()[:2] == [
        f"{ROOT}: sudo apt-get update -qq",
        f"{ROOT}: sudo env DEBIAN_FRONTEND=noninteractive {INSTALL} ninja-build",
    ]


def test_without_sudo_the_line_for_root_is_shown(world):
    world.remove("ninja", "g++", "sudo")
    world.be(1000)
    process = world.dev("build")
    assert process.returncode == 1
    assert process.stdout == ""
    assert process.stderr == (
        "dev: missing: g++ ninja; run this as root, then try again:\n"
        "apt-get update && apt-get install -y --no-install-recommends g++ ninja-build\n"
    )
    assert world.calls() == []


def test_other_systems_are_told_what_is_missing(world):
    world.remove("ninja", "g++", "apt-get")
    process = world.dev("build")
    assert process.returncode == 1
    assert process.stdout == ""
    assert process.stderr == "dev: missing: g++ ninja (Debian's packages: g++ ninja-build)\n"
    assert world.calls() == []


def test_run_stops_where_something_is_missing(world):
    world.remove("ninja", "apt-get")
    assert world.dev("run", "prog.szirpa").returncode == 1
    assert world.calls() == []


def test_works_through_a_symbolic_link(world):
    (world.directory / "link").symlink_to(ROOT / "dev")
    (world.directory / "link to the link").symlink_to("link")
    process = world.dev("build", path=world.directory / "link to the link")
    assert process.returncode == 0, process.stderr
    assert f"{ROOT}: cmake --preset release" in world.calls()


def test_failed_build_is_shown(world):
    world.add("cmake", "#!/bin/sh\necho no such thing\nexit 1\n")
    process = world.dev("build")
    assert process.returncode == 1
    assert process.stderr == "dev: building the program\nno such thing\n"


@pytest.mark.parametrize("command", COMMANDS)
def test_commands_are_described(command):
    assert f"\n| `./dev {command}" in (ROOT / "CONTRIBUTING.md").read_text()
