"""What a build makes, when it does so again, and how it fails."""

import stat
import time

import pytest
from cmake_project import CLOCK_TICK_SECONDS
from expected import c_array, intel_hex, s_records, script_of_bytes
from running import BANNER

# Three bytes at 20, the second of which tells the variants apart.
VARIED = """\
#ifdef LONG
#define LIMIT 200
#else
#define LIMIT 3
#endif
      ORG   $20
      FCB   1,LIMIT,2
"""
SHORT = bytes([1, 3, 2])
LONG = bytes([1, 200, 2])

FAULTY = "      ORG   $20\n      FOO\n      FCB   1,2,3\n      LDA   #300\n"
FAULTY_LISTING = BANNER + b"""\


File: p.lst
20                      1.       ORG   $20
---- File: "p.szirpa"
"p.szirpa" line 2, ERROR: Illegal mnemonic
20                      2.       FOO
20 01 02 03             3.       FCB   1,2,3
"p.szirpa" line 4, ERROR: Value (0x12C) is truncated
23 F0 2C                4.       LDA   #300


****** Total Errors: 2
"""

EVERY_SUFFIX = [".s19", ".fmem", ".lst", "_cout.c", ".bin", ".hex"]
PROPERTIES = ["DIRECTORY", "SRECORD", "SCRIPT", "LISTING", "CARRAY", "BIN", "HEX"]
NOTHING_TO_DO = "ninja: no work to do."


def write_executable(path, text):
    path.write_text("#!/bin/sh\n" + text)
    path.chmod(path.stat().st_mode | stat.S_IXUSR)
    return path


def show_properties(target):
    """CMake text that writes the target's properties into a file."""
    return "".join(
        f"get_target_property(value {target} HXZIRPA_{name})\n"
        f'file(APPEND "${{CMAKE_BINARY_DIR}}/{target}.properties" "${{value}}\\n")\n'
        for name in PROPERTIES
    )


def shown_properties(project, target):
    lines = (project.binary / f"{target}.properties").read_text().splitlines()
    return dict(zip(PROPERTIES, lines, strict=True))


# ---- Outputs ------------------------------------------------------------------------------------


def test_every_output(project):
    project.describe_program(VARIED, "CARRAY BIN HEX")
    project.make()
    assert project.outputs("p") == {"p" + suffix for suffix in EVERY_SUFFIX}
    assert project.output("p", "p.s19") == s_records(0x20, SHORT)
    assert project.output("p", "p.fmem") == script_of_bytes("p.fmem", [(0x20, SHORT)])
    assert project.output("p", "p_cout.c") == c_array(SHORT)
    assert project.output("p", "p.bin") == SHORT
    assert project.output("p", "p.hex") == intel_hex(0x20, SHORT)
    assert b"\n20 01 03 02             7.       FCB   1,LIMIT,2\n" in project.output("p", "p.lst")


def test_properties_are_paths_of_what_was_asked_for(project):
    project.write("p.szirpa", VARIED)
    project.describe(
        "add_hxzirpa_program(every SOURCE p.szirpa CARRAY BIN HEX)\n"
        + "add_hxzirpa_program(least SOURCE p.szirpa)\n"
        + show_properties("every")
        + show_properties("least")
    )
    project.make()
    every = project.directory_of("every")
    paths = [every, *(every / ("p" + suffix) for suffix in EVERY_SUFFIX)]
    assert shown_properties(project, "every") == dict(zip(PROPERTIES, map(str, paths)))
    least = shown_properties(project, "least")
    given = {name: value for name, value in least.items() if not value.endswith("-NOTFOUND")}
    assert set(given) == {"DIRECTORY", "SRECORD", "SCRIPT"}
    assert project.outputs("least") == {"p.s19", "p.fmem"}


def test_editors_find_the_source_among_those_of_the_target(project):
    source = project.write("p.szirpa", VARIED)
    project.describe(
        "add_hxzirpa_program(p SOURCE p.szirpa)\n"
        "get_target_property(sources p SOURCES)\n"
        'file(WRITE "${CMAKE_BINARY_DIR}/sources" "${sources}")\n'
    )
    project.configure()
    assert (project.binary / "sources").read_text() == str(source)


def test_variables_of_the_project_are_not_mixed_in(project):
    names = ["assembled", "converted", "conversions", "properties", "options", "files", "kind"]
    names += ["arg_LISTING", "arg_DEFINES", "arg_UNPARSED_ARGUMENTS", "source", "PROGRAM", "FILES"]
    project.write("p.szirpa", VARIED)
    project.describe(
        "".join(f"set({name} LONG)\n" for name in names)
        + "add_hxzirpa_program(p SOURCE p.szirpa)\n"
    )
    project.make()
    assert project.outputs("p") == {"p.s19", "p.fmem"}
    assert project.output("p", "p.s19") == s_records(0x20, SHORT)


def test_symbols_and_debug_records(project):
    project.describe_program("      ORG   1\nhere  NOP\n", "LISTING SYMBOLS DEBUG")
    project.make()
    assert project.output("p", "p.lst").endswith(
        b"\n--\tSYMBOL TABLE:\n--\tVALUE\tSYMBOL \n\t0001\there\n"
    )
    records = s_records(1, b"\x00") + b"SX:C:s:start\nSY:C:X:p.szirpa:2:1::1\n"
    assert project.output("p", "p.s19") == records


def test_nocase_goes_for_defines_too(project):
    project.write("p.szirpa", VARIED.replace("LONG", "long"))
    project.describe(
        "add_hxzirpa_program(either SOURCE p.szirpa DEFINES LONG NOCASE)\n"
        "add_hxzirpa_program(exact SOURCE p.szirpa DEFINES LONG)\n"
    )
    project.make()
    assert project.output("either", "p.s19") == s_records(0x20, LONG)
    assert project.output("exact", "p.s19") == s_records(0x20, SHORT)


def test_every_character_of_symbols_in_defines(project):
    project.write("p.szirpa", VARIED.replace("LONG", "_a.B$9"))
    project.describe("add_hxzirpa_program(p SOURCE p.szirpa DEFINES _a.B$9)\n")
    project.make()
    assert project.output("p", "p.s19") == s_records(0x20, LONG)


def test_unusual_paths(project):
    name = "a b/with 'quotes' & $x.v1.szirpa"
    project.write(name, VARIED)
    project.describe(f"add_hxzirpa_program(p SOURCE [[{name}]] BIN)\n")
    project.make()
    assert project.output("p", "with 'quotes' & $x.v1.bin") == SHORT


def test_source_that_the_build_makes(project):
    project.write("p.in", VARIED)
    project.describe(
        "set(made ${CMAKE_CURRENT_BINARY_DIR}/made.szirpa)\n"
        "add_custom_command(OUTPUT ${made} DEPENDS p.in\n"
        "  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_CURRENT_SOURCE_DIR}/p.in ${made})\n"
        "add_hxzirpa_program(p SOURCE ${made})\n"
    )
    project.make()
    assert project.output("p", "made.s19") == s_records(0x20, SHORT)


def test_arrays_of_two_programs_in_a_c_program_of_another_directory(project):
    project.write("zirpa/p.szirpa", VARIED)
    project.write(
        "zirpa/CMakeLists.txt",
        "add_hxzirpa_program(short SOURCE p.szirpa CARRAY)\n"
        "add_hxzirpa_program(long SOURCE p.szirpa DEFINES LONG CARRAY)\n",
    )
    project.write(
        "both.c",
        "#include <stdio.h>\n"
        "extern const unsigned char short_code[], long_code[];\n"
        'int main(void) { printf("%d %d", short_code[1], long_code[1]); return 0; }\n',
    )
    project.describe(
        "add_subdirectory(zirpa)\n"
        "add_executable(both both.c)\n"
        "foreach(program IN ITEMS short long)\n"
        "  get_target_property(array ${program} HXZIRPA_CARRAY)\n"
        "  target_sources(both PRIVATE ${array})\n"
        "  set_source_files_properties(${array} PROPERTIES\n"
        "    COMPILE_DEFINITIONS algo=${program}_code)\n"
        "  add_dependencies(both ${program})\n"
        "endforeach()\n",
        languages="C",
    )
    project.make()
    assert project.run(project.binary / "both").stdout == "3 200"


def test_many_targets_at_the_same_time(project):
    count = 38
    text = "add_hxzirpa_program(short SOURCE p.szirpa)\n"
    text += "add_hxzirpa_program(long SOURCE p.szirpa DEFINES LONG)\n"
    project.write("p.szirpa", VARIED)
    for i in range(count):
        # All of one name, so that nothing but the directories keeps their outputs apart.
        project.write(f"{i}/same.szirpa", f"      ORG   {i}\n      FCB   {i},{i + 1}\n")
        text += f"add_hxzirpa_program(t{i} SOURCE {i}/same.szirpa LISTING BIN)\n"
    project.describe(text)
    configured = project.configure()
    assert configured.returncode == 0, configured.stdout
    process = project.build("-j", "4")
    assert process.returncode == 0, process.stdout
    assert process.stdout.count("No errors.\n") == count + 2
    assert project.output("short", "p.s19") == s_records(0x20, SHORT)
    assert project.output("long", "p.s19") == s_records(0x20, LONG)
    for i in range(count):
        assert project.output(f"t{i}", "same.s19") == s_records(i, bytes([i, i + 1]))
        assert project.output(f"t{i}", "same.bin") == bytes([i, i + 1])


# ---- Building again -----------------------------------------------------------------------------


def test_only_what_has_changed_is_assembled_again(project):
    project.write("p.szirpa", VARIED)
    project.write("q.szirpa", VARIED)
    project.describe(
        "add_hxzirpa_program(p SOURCE p.szirpa CARRAY BIN HEX)\n"
        "add_hxzirpa_program(q SOURCE q.szirpa)\n"
    )
    project.make()
    assert NOTHING_TO_DO in project.build().stdout

    project.change("p.szirpa", VARIED.replace("3", "4"))
    process = project.build()
    assert "Assembling p" in process.stdout
    assert "Assembling q" not in process.stdout
    assert project.output("p", "p.bin") == bytes([1, 4, 2])
    assert project.output("p", "p_cout.c") == c_array(bytes([1, 4, 2]))


def test_other_defines_assemble_again(project):
    project.write("p.szirpa", VARIED)
    lists = project.describe("add_hxzirpa_program(p SOURCE p.szirpa BIN)\n")
    project.make()
    assert project.output("p", "p.bin") == SHORT
    project.change("CMakeLists.txt", lists.read_text().replace("BIN", "BIN DEFINES LONG"))
    process = project.build()
    assert process.returncode == 0, process.stdout
    assert project.output("p", "p.bin") == LONG


def test_another_assembler_assembles_again(project, tmp_path):
    own = write_executable(tmp_path / "own", f'exec {project.program} "$@"\n')
    project.describe_program(VARIED)
    project.program = own
    project.make()
    assert NOTHING_TO_DO in project.build().stdout
    time.sleep(CLOCK_TICK_SECONDS)
    own.touch()
    assert "Assembling p" in project.build().stdout


@pytest.mark.parametrize("suffix", EVERY_SUFFIX)
def test_lost_output_is_made_again(project, suffix):
    project.describe_program(VARIED, "CARRAY BIN HEX")
    project.make()
    before = project.output("p", "p" + suffix)
    (project.directory_of("p") / ("p" + suffix)).unlink()
    project.build()
    assert project.output("p", "p" + suffix) == before


# ---- Messages and failures ----------------------------------------------------------------------


def test_warnings_are_shown_and_do_no_harm(project):
    source = project.describe_program("#define N 1\n#define N 1\n      ORG   1\n      FCB   N\n")
    process = project.make()
    assert process.stdout == (
        "[1/1] Assembling p\n"
        f"{source} (2) Warning: symbol 'N' previously defined at line 1\n"
        "-- No errors.\n"
        "1 warning(s).\n"
    )
    assert project.output("p", "p.s19") == s_records(1, b"\x01")


def test_errors_fail_the_build_and_leave_the_listing_alone(project):
    source = project.describe_program(VARIED, "CARRAY BIN HEX")
    project.make()
    project.change("p.szirpa", FAULTY)
    for _ in range(2):
        process = project.build_in_vain()
        assert (
            f"\n{source} (2) Error: Illegal mnemonic\n"
            f"{source} (4) Error: Value (0x12C) is truncated\n"
            "-- 2 error(s).\n"
        ) in process.stdout
        assert "HXzirpa ended with status 2 and left no p.s19." in process.stdout
        assert project.outputs("p") == {"p.lst"}
        assert project.output("p", "p.lst") == FAULTY_LISTING

    project.change("p.szirpa", VARIED)
    assert project.build().returncode == 0
    assert project.outputs("p") == {"p" + suffix for suffix in EVERY_SUFFIX}


def test_errors_of_one_target_leave_the_others_alone(project):
    project.write("p.szirpa", FAULTY)
    project.write("q.szirpa", VARIED)
    project.describe(
        "add_hxzirpa_program(p SOURCE p.szirpa)\nadd_hxzirpa_program(q SOURCE q.szirpa)\n"
    )
    project.configure()
    assert project.build("--", "-k", "0").returncode != 0
    assert project.outputs("p") == set()
    assert project.output("q", "q.s19") == s_records(0x20, SHORT)


def test_status_0_after_256_errors_fails_the_build(project):
    project.describe_program(VARIED, "BIN")
    project.make()
    project.change("p.szirpa", "      FOO\n" * 256)
    process = project.build_in_vain()
    assert "\n-- 256 error(s).\n" in process.stdout
    assert "HXzirpa ended with status 0 and left no p.s19." in process.stdout
    assert project.outputs("p") == set()


def test_old_outputs_do_not_hide_that_nothing_was_written(project, tmp_path):
    """A program that ends well without a file, where an earlier run has left all of them."""
    idle = write_executable(tmp_path / "idle", "exit 0\n")
    project.describe_program(VARIED, "LISTING")
    project.make()
    project.configure(program=idle)
    process = project.build_in_vain()
    assert "HXzirpa ended with status 0 and left no p.s19, p.fmem, p.lst." in process.stdout
    assert project.outputs("p") == set()


def test_listing_that_is_not_written_fails_the_build(project):
    project.describe_program(VARIED, "LISTING")
    project.configure()
    # The program takes no notice when something is in the way of its listing.
    (project.directory_of("p") / "p.lst").mkdir()
    process = project.build_in_vain()
    assert "HXzirpa ended with status 0 and left no p.lst." in process.stdout


def test_status_fails_the_build_whatever_was_written(project, tmp_path):
    failing = write_executable(tmp_path / "failing", f'{project.program} "$@"\nexit 3\n')
    project.describe_program(VARIED)
    project.configure(program=failing)
    process = project.build_in_vain()
    assert "HXzirpa ended with status 3." in process.stdout
    assert project.outputs("p") == set()


def test_program_that_is_killed_fails_the_build(project, tmp_path):
    killed = write_executable(tmp_path / "killed", "kill -KILL $$\n")
    project.describe_program(VARIED)
    project.configure(program=killed)
    process = project.build_in_vain()
    assert "and left no p.s19, p.fmem." in process.stdout


def test_program_without_bytes_has_nothing_to_convert(project):
    project.describe_program("; nothing\n", "BIN")
    project.configure()
    process = project.build_in_vain()
    assert "has no sections" in process.stdout
    assert project.output("p", "p.s19") == s_records(0, b"")
