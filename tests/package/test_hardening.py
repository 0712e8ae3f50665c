"""The shipped program is hard to exploit: what its headers, segments and code say of it."""

import platform
import re

import pytest
from building import run
from running import need

# What an indirect jump may lead to, and how a processor's code marks it.
LANDING_MARKS = {"x86_64": "endbr64", "aarch64": "bti|paciasp"}
EXECUTE, WRITE = "E", "W"


@pytest.fixture(scope="module", name="program")
def shipped_program(request):
    need("readelf", "binutils")
    return request.config.getoption("--program")


def segments(program):
    """Type, first address, address behind the last, and flags of each segment."""
    rows = re.findall(
        r"^  ([A-Z_]+) +0x\w+ 0x(\w+) 0x\w+ 0x\w+ 0x(\w+) ([R ][W ][E ]) ",
        run("readelf", "--program-headers", "--wide", program),
        re.MULTILINE,
    )
    assert any(row[0] == "LOAD" for row in rows)
    return [
        (kind, int(start, 16), int(start, 16) + int(size, 16), flags)
        for kind, start, size, flags in rows
    ]


def flags_of(program, wanted):
    return [flags for kind, _, _, flags in segments(program) if kind == wanted]


def section(program, name):
    """First address and address behind the last."""
    table = run("readelf", "--section-headers", "--wide", program)
    found = re.search(rf"\] {re.escape(name)} +[A-Z]+ +(\w+) \w+ (\w+) ", table)
    assert found, f"no {name}"
    return int(found[1], 16), int(found[1], 16) + int(found[2], 16)


def code_of_main(program):
    return run("objdump", "--disassemble=main", "--no-show-raw-insn", program)


def test_it_is_placed_anywhere_and_loads_nothing(program):
    assert "DYN (Position-Independent Executable file)" in run("readelf", "--file-header", program)
    dynamic = run("readelf", "--dynamic", "--wide", program)
    assert re.search(r"FLAGS_1\).*\bPIE\b", dynamic)
    assert "(NEEDED)" not in dynamic
    assert flags_of(program, "INTERP") == []


def test_nothing_is_both_written_and_executed(program):
    for kind, start, _, flags in segments(program):
        assert not (WRITE in flags and EXECUTE in flags), f"{kind} at {start:x}"


def test_the_stack_is_not_executed(program):
    (flags,) = flags_of(program, "GNU_STACK")
    assert EXECUTE not in flags


@pytest.mark.parametrize("name", [".rodata", ".eh_frame", ".data.rel.ro"])
def test_tables_are_not_executed(program, name):
    first, end = section(program, name)
    for kind, start, stop, flags in segments(program):
        if kind == "LOAD" and EXECUTE in flags:
            assert stop <= first or end <= start, f"{name} lies in executable memory"


def test_what_the_start_relocates_is_read_only_afterwards(program):
    (start, stop), = [row[1:3] for row in segments(program) if row[0] == "GNU_RELRO"]
    for name in (".data.rel.ro", ".got"):
        first, end = section(program, name)
        assert start <= first and end <= stop, name
    assert "BIND_NOW" in run("readelf", "--dynamic", "--wide", program)


def test_return_addresses_are_guarded(program):
    # The C library has the guard in any case, so a function of the program's own has to call it.
    assert re.search(r"call|bl", code_of_main(program))
    assert "<__stack_chk_fail>" in code_of_main(program)


def test_targets_of_indirect_jumps_are_marked(program):
    mark = LANDING_MARKS.get(platform.machine())
    if mark is None:
        pytest.skip("no such mark is known for this processor")
    first = re.search(r"<main>:\n +\w+:\t(\w+)", code_of_main(program))
    assert re.fullmatch(mark, first[1])


def test_calls_of_the_library_and_containers_are_checked(program):
    names = run("nm", "--demangle", program)
    assert "__vsnprintf_chk" in names
    assert "std::__glibcxx_assert_fail(" in names
