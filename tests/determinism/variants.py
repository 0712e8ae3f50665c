"""Builds of the program with other compilers and flags, and locales with other rules.

All of them are kept below build/determinism/.
"""

import pathlib
import platform
import shutil

import pytest
import running

ROOT = pathlib.Path(__file__).resolve().parents[2]
CACHE = ROOT / "build" / "determinism"


def unavailable(lack):
    pytest.skip(f"not possible on this machine: {lack}")


def build(compiler, *flags):
    """The path of the program built by that compiler with those flags."""
    if shutil.which(compiler) is None:
        unavailable(f"{compiler} is not installed")
    directory = CACHE / "_".join(part.strip("-") for part in (compiler, *flags))
    definitions = {"CXX_COMPILER": compiler, "CXX_FLAGS": " ".join(flags), "BUILD_TYPE": "None"}
    options = [f"-DCMAKE_{name}={value}" for name, value in definitions.items()]
    command = ["cmake", "-G", "Ninja", "-S", ROOT, "-B", directory, *options]
    if running.run(None, *command, timeout=600).returncode != 0:
        # It tries the compiler, which may know a flag and have no library for it.
        words = " ".join([compiler, *flags])
        unavailable(f"{words} cannot build (for -m32 install the package g++-multilib)")
    running.printed_by("cmake", "--build", directory, "--target", "HXzirpa")
    return directory / "HXzirpa"


SHORT = [("clang++-14", "-O0", "-funsigned-char")]
FULL = [
    (compiler, level, sign)
    for compiler in ("g++", "clang++-14")
    for level in ("-O0", "-O3")
    for sign in ("-funsigned-char", "-fsigned-char")
]
if platform.machine() == "x86_64":
    FULL += [("g++", "-O3", "-m32"), ("g++", "-O0", "-funsigned-char", "-m32")]


def locale_environment(name):
    """The environment that chooses a locale; one that the system lacks is made in the cache."""
    if name in ("C", "POSIX"):
        return {"LC_ALL": name}
    if name.replace("UTF-8", "utf8") in running.printed_by("locale", "-a").split():
        return {"LC_ALL": name}
    made = CACHE / "locales" / name
    if not made.is_dir():
        territory, charset = name.split(".")
        made.parent.mkdir(parents=True, exist_ok=True)
        command = ["localedef", "-i", territory, "-f", charset, str(made)]
        if shutil.which("localedef") is None or running.run(None, *command).returncode != 0:
            shutil.rmtree(made, ignore_errors=True)
            unavailable(f"locale {name} cannot be made (package locales)")
    return {"LC_ALL": name, "LOCPATH": str(made.parent)}
