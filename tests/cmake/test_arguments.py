"""Arguments that make no sense are refused, in words that help, when the project is configured."""

import os

import pytest

PROGRAM = "      ORG   1\n      NOP\n"

REFUSED = {
    "no_source": ("p", "SOURCE and the name of a file are missing"),
    "source_without_file": ("p SOURCE", "SOURCE and the name of a file are missing"),
    "source_does_not_exist": ("p SOURCE none.szirpa", "SOURCE 'none.szirpa': there is no file"),
    "source_is_a_directory": ("p SOURCE .", "SOURCE '.': there is no file"),
    "two_sources": ("p SOURCE p.szirpa q.szirpa", "unknown argument 'q.szirpa'"),
    "unknown_keyword": ("p SOURCE p.szirpa LIST", "unknown argument 'LIST'"),
    "name_forgotten": ("SOURCE p.szirpa", "(SOURCE): the name of the target comes first"),
    "switch_for_a_name": ("LISTING SOURCE p.szirpa", "the name of the target comes first"),
    "empty_name": ('"" SOURCE p.szirpa', "a target's name is made of"),
    "name_with_a_slash": ("a/b SOURCE p.szirpa", "a target's name is made of"),
    "define_with_a_value": (
        "p SOURCE p.szirpa DEFINES LIMIT=5",
        "DEFINES 'LIMIT=5': a symbol cannot be given a value here",
    ),
    "define_with_a_blank": ('p SOURCE p.szirpa DEFINES "A B"', "DEFINES 'A B': this is no symbol"),
    "define_with_a_digit_first": ("p SOURCE p.szirpa DEFINES 1A", "'1A': this is no symbol"),
    "define_that_is_an_option": ("p SOURCE p.szirpa DEFINES -DA", "'-DA': this is no symbol"),
    "source_with_a_backslash": (r'p SOURCE "a\\p.szirpa"', "the path can hold neither ';' nor"),
    "source_with_a_semicolon": ('p SOURCE "a;p.szirpa"', "the path can hold neither ';' nor"),
    "source_among_the_outputs": (
        "p SOURCE ${CMAKE_CURRENT_BINARY_DIR}/p.hxzirpa/p.fmem",
        "the source is among the outputs",
    ),
}


def words_of(process):
    """The output in one line, since CMake breaks messages into lines of its own."""
    return " ".join(process.stdout.split())


@pytest.mark.parametrize("case", REFUSED)
def test_refused(project, case):
    arguments, message = REFUSED[case]
    project.write("p.szirpa", PROGRAM)
    # What is refused for its name does exist.
    for path in (
        project.source / r"a\p.szirpa",
        project.source / "a;p.szirpa",
        project.binary / "p.hxzirpa" / "p.fmem",
    ):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(PROGRAM)
    project.describe(f"add_hxzirpa_program({arguments})\n")
    process = project.configure()
    assert process.returncode == 1
    assert "CMakeLists.txt:4 (add_hxzirpa_program)" in process.stdout
    assert message in words_of(process)


def test_name_is_taken(project):
    project.write("p.szirpa", PROGRAM)
    project.describe("add_custom_target(p)\nadd_hxzirpa_program(p SOURCE p.szirpa)\n")
    process = project.configure()
    assert process.returncode == 1
    assert "(p): there is a target of this name already" in words_of(process)


def test_empty_list_of_defines_is_accepted(project):
    project.write("p.szirpa", PROGRAM)
    project.describe("set(none)\nadd_hxzirpa_program(p SOURCE p.szirpa DEFINES ${none})\n")
    project.make()


# ---- Tools --------------------------------------------------------------------------------------


def test_program_on_the_path(project, tmp_path):
    (tmp_path / "bin").mkdir()
    (tmp_path / "bin" / "HXzirpa").symlink_to(project.program)
    project.environment["PATH"] = f"{tmp_path / 'bin'}{os.pathsep}{os.environ['PATH']}"
    project.describe_program(PROGRAM)
    project.make("-UHXZIRPA_EXECUTABLE")
    assert f"HXZIRPA_EXECUTABLE:FILEPATH={tmp_path / 'bin' / 'HXzirpa'}\n" in (
        project.binary / "CMakeCache.txt"
    ).read_text()


@pytest.mark.parametrize(
    ("program", "message"),
    [
        (
            "HXZIRPA_EXECUTABLE-NOTFOUND",
            "the program HXzirpa was not found; install it, or set HXZIRPA_EXECUTABLE to its path",
        ),
        ("/nonexistent/HXzirpa", "HXZIRPA_EXECUTABLE names no file /nonexistent/HXzirpa"),
        ("/", "HXZIRPA_EXECUTABLE names no file /"),
    ],
)
def test_program_missing(project, program, message):
    project.write("p.szirpa", PROGRAM)
    # Nothing is found anywhere, whatever is installed.
    project.describe(
        "set(CMAKE_FIND_USE_CMAKE_SYSTEM_PATH NO)\n"
        "set(CMAKE_FIND_USE_SYSTEM_ENVIRONMENT_PATH NO)\n"
        "add_hxzirpa_program(p SOURCE p.szirpa)\n"
    )
    process = project.configure(program=program)
    assert process.returncode == 1
    assert message in words_of(process)


def test_objcopy_that_reads_no_s_records_is_passed_over(project, tmp_path):
    other = tmp_path / "other-objcopy"
    other.write_text("#!/bin/sh\necho 'unknown argument' >&2\nexit 1\n")
    other.chmod(0o755)
    project.describe_program(PROGRAM, "BIN")
    project.make(f"-DCMAKE_OBJCOPY={other}")
    assert project.output("p", "p.bin") == b"\x00"
