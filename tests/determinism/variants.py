"""Builds of the program with other compilers and flags, and locales with other rules.

All of them are made once and kept below build/determinism/; a build is made again when a source or
its command has changed.
"""

import concurrent.futures
import hashlib
import os
import pathlib
import platform
import shutil
import subprocess
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
CACHE = ROOT / "build" / "determinism"
SOURCE_DIRECTORIES = ("as", "expr", "symtab", "target", "util")
LANGUAGE = ("-std=c++20", f"-I{ROOT}")


class Unavailable(Exception):
    """What this machine lacks, in words."""


def sources():
    return [path for name in SOURCE_DIRECTORIES for path in sorted((ROOT / name).glob("*.cpp"))]


def fingerprint(command):
    """The same as long as no source, no header and no flag changes."""
    digest = hashlib.sha256("\0".join(command).encode())
    for name in SOURCE_DIRECTORIES:
        for path in sorted((ROOT / name).glob("*.[ch]*")):
            digest.update(str(path.relative_to(ROOT)).encode() + b"\0" + path.read_bytes() + b"\0")
    return digest.hexdigest()


def call(command):
    process = subprocess.run(command, capture_output=True, text=True, check=False)
    if process.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}\n{process.stderr}")


def check_compiler(command):
    """A compiler may be missing, or know the flag and have no library for it."""
    if shutil.which(command[0]) is None:
        raise Unavailable(f"{command[0]} is not installed")
    with tempfile.TemporaryDirectory() as directory:
        probe = pathlib.Path(directory) / "probe.cpp"
        probe.write_text("#include <string>\nint main() { return std::string().size(); }\n")
        try:
            call([*command, "-o", f"{directory}/probe", str(probe)])
        except RuntimeError as error:
            raise Unavailable(
                f"{' '.join(command)} cannot build (for -m32 install the package g++-multilib)"
            ) from error


def build(compiler, *flags):
    """The path of the program built by that compiler with those flags."""
    command = [compiler, *flags]
    directory = CACHE / "_".join(part.strip("-") for part in command)
    program, stamp = directory / "HXzirpa", directory / "fingerprint"
    wanted = fingerprint(command)
    if program.is_file() and stamp.is_file() and stamp.read_text() == wanted:
        return program
    check_compiler(command)
    shutil.rmtree(directory, ignore_errors=True)
    directory.mkdir(parents=True)

    def compile_one(source):
        target = directory / f"{source.parent.name}_{source.stem}.o"
        call([*command, *LANGUAGE, "-c", "-o", str(target), str(source)])
        return str(target)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        objects = list(pool.map(compile_one, sources()))
    call([*command, "-o", str(program), *objects])
    for path in objects:
        os.unlink(path)
    stamp.write_text(wanted)
    return program


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
            call(["localedef", "-i", territory, "-f", charset, str(made)])
        except RuntimeError as error:
            shutil.rmtree(made, ignore_errors=True)
            raise Unavailable(f"locale {name} cannot be made (package locales)") from error
    return {"LC_ALL": name, "LOCPATH": str(made.parent)}
