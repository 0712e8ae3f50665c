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
OPTIONS = {"plain": [], "sanitized": ["-DHXZIRPA_SANITIZE=ON"]}
# The assembler, and with the library that nothing else uses what other programs are made of, too;
# zirpa takes minutes, and other tests and checks build it.
TARGETS = {("clang++ with libc++", "plain"): ["HXzirpa", "disassembler"]}
SOURCE = " ORG $10\n FCB 1,2,3\n"
# Three bytes at $10, which is the start address too. The checksums are $FF less the sum of the rest:
# $06 + $10 + $01 + $02 + $03, and $03 + $10.
RECORDS = "S1060010010203E3\nS9030010EC\n"


# Built elsewhere in the same way: for the tests, and for the checks of the sources.
ELSEWHERE = {("g++", "sanitized"), ("clang++", "plain")}
BUILDS = [(name, kind) for name in COMPILERS for kind in OPTIONS if (name, kind) not in ELSEWHERE]


@pytest.mark.parametrize("name, kind", BUILDS)
def test_plain_build(name, kind, tmp_path):
    compiler, flags = COMPILERS[name]
    targets = TARGETS.get((name, kind), ["HXzirpa"])
    need(compiler, compiler)
    environment = {**os.environ, "CXX": compiler, "CXXFLAGS": flags}
    build = tmp_path / "build"
    printed_by("cmake", "-S", ROOT, "-B", build, *OPTIONS[kind], env=environment)
    build_command = ["cmake", "--build", build, "--target", *targets, "--parallel",
                     str(os.cpu_count())]
    output = printed_by(*build_command, env=environment)
    assert "warning:" not in output
    (tmp_path / "short.szirpa").write_text(SOURCE)
    printed_by(build / "HXzirpa", "short.szirpa", cwd=tmp_path)
    assert (tmp_path / "short.s19").read_text() == RECORDS
