"""./dev in a world of stand-ins: a PATH whose commands write down how they were called."""

import pathlib
import shutil
import subprocess

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
# These are harmless. rm is not: it only removes the temporary files that mktemp has made.
REAL = ("cat", "dirname", "grep", "ls", "mktemp", "readlink")
TOOLS = ("cmake", "ctest", "g++", "git", "ninja", "npm", "sudo", "apt-get", "env")
RM = '#!/bin/sh\ncase "$*" in "-f /tmp/tmp."*) exec /bin/rm "$@" ;; esac\necho rm "$*" >&2\nexit 1\n'
STAND_IN = '#!/bin/sh\necho "$PWD: ${{0##*/}} $*" >>{log}\n'


class World:
    def __init__(self, directory):
        self.directory = directory
        self.commands = directory / "bin"
        self.commands.mkdir()
        self.log = directory / "log"
        for name in REAL:
            (self.commands / name).symlink_to(shutil.which(name))
        for name in TOOLS:
            self.add(name)
        self.add("rm", RM)
        self.be(0)

    def add(self, name, text=None):
        path = self.commands / name
        path.write_text(text or STAND_IN.format(log=self.log))
        path.chmod(0o755)

    def remove(self, *names):
        for name in names:
            (self.commands / name).unlink()

    def be(self, user):
        self.add("id", f"#!/bin/sh\necho {user}\n")

    def dev(self, *words, path=ROOT / "dev"):
        return subprocess.run(
            [path, *words],
            cwd=self.directory,
            env={"PATH": str(self.commands)},
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            timeout=60,
            check=False,
        )

    def calls(self):
        """Where each command was called, and how."""
        return self.log.read_text().splitlines() if self.log.exists() else []


@pytest.fixture
def world(tmp_path):
    return World(tmp_path)
