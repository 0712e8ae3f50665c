"""What each shell offers for the beginning of a command line."""

import os
import pathlib
import shutil

import running

HERE = pathlib.Path(__file__).resolve().parent
COMPLETIONS = HERE.parents[1] / "completions"
# The shells show a joined value with the option ahead of it or without.
JOINED_OPTIONS = ("-D", "-I", "-C")



def command_of(shell, program):
    """The command that prints what a shell offers for lines of a program."""
    return {
        "bash": ["bash", "--norc", HERE / "capture.bash", COMPLETIONS / program],
        "zsh": ["zsh", "-f", HERE / "capture.zsh", COMPLETIONS],
        "fish": ["fish", "--no-config", HERE / "capture.fish", COMPLETIONS / f"{program}.fish"],
    }[shell]


COMMANDS = ("bash", "zsh", "fish")
# Debian's packages, and a file of each.
NEEDED = {
    "bash": ("bash-completion", "/usr/share/bash-completion/bash_completion"),
    "zsh": ("zsh", shutil.which("zsh") or "/usr/bin/zsh"),
    "fish": ("fish", shutil.which("fish") or "/usr/bin/fish"),
}


def plain(offer, line):
    """An offer without what the shells show differently: the option ahead of it, a final slash."""
    word = line.rpartition(" ")[2]
    if word.startswith(JOINED_OPTIONS) and len(word) > 2:
        offer = offer.removeprefix(word[:2])
    return offer.rstrip("/")


def offers(shell, lines, directory, home, path=()):
    """A dictionary of the lines: the set of the words that the shell offers for each.

    The shell works in the directory, with a home directory of its own that holds no settings, and
    looks for programs in the directories of path first.
    """
    package, file = NEEDED[shell]
    assert os.path.exists(file), f"the Debian package {package} is needed"
    environment = {
        "PATH": os.pathsep.join([*path, os.environ["PATH"]]),
        "HOME": str(home),
        "TERM": "dumb",
        "LC_ALL": "C.UTF-8",
        "CAPTURED": str(home / "captured"),
    }
    command = command_of(shell, lines[0].split()[0])
    process = running.run(directory, *command, *lines, env=environment, text=True)
    assert process.returncode == 0, process.stderr
    assert process.stderr == ""
    *blocks, rest = process.stdout.split("end of offers\n")
    assert rest == ""
    assert len(blocks) == len(lines), process.stdout
    return {
        line: {plain(offer, line) for offer in block.splitlines()}
        for line, block in zip(lines, blocks)
    }
