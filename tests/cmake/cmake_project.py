"""A CMake project in a directory of its own, configured for Ninja and built."""

import os
import pathlib
import shutil
import subprocess
import time

import running

TOP = pathlib.Path(__file__).resolve().parents[2]
MODULE = TOP / "cmake" / "HXzirpaProgram.cmake"
SAMPLES = TOP / "examples" / "cmake"
# Times of files are no finer than this.
CLOCK_TICK_SECONDS = 0.02

PREAMBLE = f"""\
cmake_minimum_required(VERSION 3.25)
project(tried LANGUAGES {{languages}})
include("{MODULE}")
"""


def plain_environment():
    """The environment without what would change how CMake and Ninja work or what they print."""
    return {
        name: value
        for name, value in os.environ.items()
        if not name.startswith(("CMAKE_", "NINJA_", "HXZIRPA_")) and name not in ("CC", "CFLAGS")
    }


class CMakeProject:
    """A source directory and a build directory."""

    def __init__(self, directory, program):
        self.source = directory / "project"
        self.binary = directory / "build"
        self.program = program
        self.environment = plain_environment()
        self.source.mkdir()

    def run(self, *command):
        words = [str(word) for word in command]
        options = {"env": self.environment, "stderr": subprocess.STDOUT, "encoding": "utf-8"}
        return running.run(self.source.parent, *words, **options)

    # ---- Contents ----

    def write(self, name, text):
        path = self.source / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return path

    def change(self, name, text):
        """Writes a file again, later than everything that has been built."""
        time.sleep(CLOCK_TICK_SECONDS)
        return self.write(name, text)

    def describe(self, text, languages="NONE"):
        """Writes the CMakeLists.txt: the module is included ahead of the text."""
        return self.write("CMakeLists.txt", PREAMBLE.format(languages=languages) + text)

    def describe_program(self, source, options=""):
        """Makes this a project of one program, p, and writes its source."""
        self.describe(f"add_hxzirpa_program(p SOURCE p.szirpa {options})\n")
        return self.write("p.szirpa", source)

    def copy_sample(self, name):
        """Makes this the sample project; the package that it finds is the module alone."""
        shutil.copytree(SAMPLES / name, self.source, dirs_exist_ok=True)
        package = self.source.parent / "package"
        package.mkdir()
        (package / "HXzirpaConfig.cmake").write_text(f'include("{MODULE}")\n')
        return f"-DHXzirpa_DIR={package}"

    # ---- Steps ----

    def configure(self, *arguments, program=None):
        return self.run(
            "cmake", "-G", "Ninja", "-S", self.source, "-B", self.binary,
            f"-DHXZIRPA_EXECUTABLE={program or self.program}", *arguments,
        )  # fmt: skip

    def build(self, *arguments):
        return self.run("cmake", "--build", self.binary, *arguments)

    def build_in_vain(self):
        process = self.build()
        assert process.returncode != 0
        return process

    def make(self, *arguments):
        """Configures and builds; both must succeed."""
        for process in (self.configure(*arguments), self.build()):
            assert process.returncode == 0, process.stdout
        return process

    # ---- Results ----

    def directory_of(self, target):
        return self.binary / f"{target}.hxzirpa"

    def output(self, target, name):
        return (self.directory_of(target) / name).read_bytes()

    def outputs(self, target):
        """The names of the files in the target's directory."""
        return {path.name for path in self.directory_of(target).iterdir()}
