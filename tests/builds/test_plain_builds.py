"""`cmake -B build && cmake --build build`, with no further word, works with each compiler and library."""

import os
import pathlib

import pytest
from running import need, printed_by

ROOT = pathlib.Path(__file__).resolve().parents[2]
COMPILERS = {
    "g++": ("g++", ""),
    "clang++": ("clang++-14", "-stdlib=libstdc++"),
    "clang++ with libc++": ("clang++-14", "-stdlib=libc++"),
}
# Options, and what is built: sanitized the assembler alone, as zirpa takes a minute for each.
BUILDS = {"plain": ([], "all"), "sanitized": (["-DHXZIRPA_SANITIZE=ON"], "HXzirpa")}
SOURCE = " ORG $10\n FCB 1,2,3\n"
# Three bytes at $10, which is the start address too. The checksums are $FF less the sum of the rest:
# $06 + $10 + $01 + $02 + $03, and $03 + $10.
RECORDS = "S1060010010203E3\nS9030010EC\n"


@pytest.mark.parametrize("options, target", BUILDS.values(), ids=BUILDS.keys())
@pytest.mark.parametrize("compiler, flags", COMPILERS.values(), ids=COMPILERS.keys())
def test_plain_build(compiler, flags, options, target, tmp_path):
    need(compiler, compiler)
    environment = {**os.environ, "CXX": compiler, "CXXFLAGS": flags}
    build = tmp_path / "build"
    printed_by("cmake", "-S", ROOT, "-B", build, *options, env=environment)
    build_command = ["cmake", "--build", build, "--target", target, "--parallel",
                     str(os.cpu_count())]
    output = printed_by(*build_command, env=environment)
    assert "warning:" not in output
    (tmp_path / "short.szirpa").write_text(SOURCE)
    printed_by(build / "HXzirpa", "short.szirpa", cwd=tmp_path)
    assert (tmp_path / "short.s19").read_text() == RECORDS
