"""Builds of the program with other compilers and flags, and locales with other rules.

All of them are kept below build/determinism/.
"""

import pathlib
import platform
import shutil
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
CACHE = ROOT / "build" / "determinism"


class Unavailable(Exception):
    """What this machine lacks, in words."""


def call(*command):
    process = subprocess.run(command, capture_output=True, text=True, check=False)
    if process.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}\n{process.stdout}{process.stderr}")


def build(compiler, *flags):
    """The path of the program built by that compiler with those flags."""
    if shutil.which(compiler) is None:
        raise Unavailable(f"{compiler} is not installed")
    directory = CACHE / "_".join(part.strip("-") for part in (compiler, *flags))
    definitions = {"CXX_COMPILER": compiler, "CXX_FLAGS": " ".join(flags), "BUILD_TYPE": "None"}
    options = [f"-DCMAKE_{name}={value}" for name, value in definitions.items()]
    try:
        call("cmake", "-G", "Ninja", "-S", ROOT, "-B", directory, *options)
    except RuntimeError as error:
        # It tries the compiler, which may know a flag and have no library for it.
        raise Unavailable(
            f"{compiler} {' '.join(flags)} cannot build (for -m32 install the package g++-multilib)"
        ) from error
    call("cmake", "--build", directory, "--target", "HXzirpa")
    return directory / "HXzirpa"


SHORT = [("clang++-14", "-O0", "-funsigned-char")]
FULL = [
    (compiler, level, sign)
    for compiler in ("g++", "clang++-14")
    for level in ("-O0", "-O2")
    for sign in ("-funsigned-char", "-fsigned-char")
]
if platform.machine() == "x86_64":
    FULL += [("g++", "-O2", "-m32"), ("g++", "-O0", "-funsigned-char", "-m32")]


def locale_environment(name):
    """The environment that chooses a locale; one that the system lacks is made in the cache."""
    if name in ("C", "POSIX"):
        return {"LC_ALL": name}
    installed = subprocess.run(["locale", "-a"], capture_output=True, text=True, check=False)
    if name.replace("UTF-8", "utf8") in installed.stdout.split():
        return {"LC_ALL": name}
    made = CACHE / "locales" / name
    if not made.is_dir():
        if shutil.which("localedef") is None:
            raise Unavailable("localedef is not installed (package locales)")
        territory, charset = name.split(".")
        made.parent.mkdir(parents=True, exist_ok=True)
        try:
            call("localedef", "-i", territory, "-f", charset, str(made))
        except RuntimeError as error:
            shutil.rmtree(made, ignore_errors=True)
            raise Unavailable(f"locale {name} cannot be made (package locales)") from error
    return {"LC_ALL": name, "LOCPATH": str(made.parent)}
