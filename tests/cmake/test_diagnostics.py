"""DIAGNOSTICS assembles by zirpa, which fails whenever something is wrong."""

import pytest
from expected import s_records, script_of_bytes

ERRORS = "".join("  FOO\n" for _ in range(65_536))


def test_the_outputs_are_the_same(project):
    project.describe_program("      ORG   $20\n      FCB   1,2,3\n", "DIAGNOSTICS")
    project.make()
    assert project.output("p", "p.s19") == s_records(0x20, bytes([1, 2, 3]))
    assert project.output("p", "p.fmem") == script_of_bytes("p.fmem", [(0x20, bytes([1, 2, 3]))])


def test_messages_point_at_what_is_wrong(project):
    project.describe_program("  ORG 0\n  LDXA #5\n", "DIAGNOSTICS")
    assert project.configure().returncode == 0
    printed = project.build_in_vain().stdout
    assert "p.szirpa:2:3: error: unknown instruction 'LDXA' [unknown-instruction]\n" in printed
    assert "zirpa ended with status 1 and left no p.s19, p.fmem" in printed
    assert not project.outputs("p")


@pytest.mark.parametrize("options", ["DIAGNOSTICS", "DIAGNOSTICS LISTING CARRAY"])
def test_a_number_of_errors_that_looks_like_none_fails(project, options):
    project.describe_program(ERRORS, options)
    assert project.configure().returncode == 0
    project.build_in_vain()
    assert project.outputs("p") <= {"p.lst"}


def test_without_zirpa_the_assembler_is_taken(project):
    project.describe_program("  ORG 0\n  FCB 1\n", "DIAGNOSTICS")
    process = project.configure("-DHXZIRPA_COMPANION=HXZIRPA_COMPANION-NOTFOUND", "-DCMAKE_FIND_USE_CMAKE_PATH=OFF")
    assert process.returncode == 0
    assert project.build().returncode == 0
    assert project.output("p", "p.s19") == s_records(0, bytes([1]))
