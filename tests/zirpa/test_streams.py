"""Files and streams that can't be used: the reason is told, the status is 2, and nothing incomplete
stays."""

import os
import subprocess

import pytest
import running

CLEAN = b"\tORG\t0\n\tNOP\n"
FAULTY = b"\tORG\t0\n\tLDXA\n"
RECORDS = b"S104000000FB\nS9030000FC\n"


@pytest.fixture
def directory(tmp_path):
    (tmp_path / "clean.szirpa").write_bytes(CLEAN)
    (tmp_path / "faulty.szirpa").write_bytes(FAULTY)
    return tmp_path


def names(directory):
    return {path.name for path in directory.iterdir()} - {"clean.szirpa", "faulty.szirpa"}


def run_closed(directory, redirections, *command):
    """Runs a command with standard streams closed by the shell."""
    script = f'exec "$0" "$@" {redirections}'
    return running.run(directory, "/bin/sh", "-c", script, *command)


def test_a_missing_source_is_told_with_the_reason(zirpa, directory):
    process = running.run(directory, zirpa, "build", "none.szirpa")
    assert process.returncode == 2
    assert b"none.szirpa: error: can't be read: No such file or directory [cannot-read]" in process.stderr


def test_a_directory_is_no_source(zirpa, directory):
    process = running.run(directory, zirpa, "check", ".")
    assert process.returncode == 2
    assert b"can't be read: Is a directory" in process.stderr


def test_one_file_that_cannot_be_read_does_not_keep_the_others_from_being_checked(zirpa, directory):
    process = running.run(directory, zirpa, "check", "none.szirpa", "faulty.szirpa")
    assert process.returncode == 2
    assert b"faulty.szirpa:2:2: error: unknown instruction" in process.stderr


@pytest.mark.parametrize(
    "name, reason",
    [
        ("clean.szirpa", b"it is the source"),
        ("clean.fmem", b"another output goes there"),
        ("none/x.s19", b"No such file or directory"),
    ],
)
def test_an_output_that_is_refused_is_told_with_the_reason(name, reason, zirpa, directory):
    process = running.run(directory, zirpa, "build", "-o", name, "clean.szirpa")
    assert process.returncode == 2
    assert b"can't be created: " + reason + b" [output-refused]" in process.stderr
    assert names(directory) == set()
    assert (directory / "clean.szirpa").read_bytes() == CLEAN


def test_an_output_that_cannot_be_created_takes_the_others_along(zirpa, directory):
    (directory / "clean.fmem").mkdir()
    process = running.run(directory, zirpa, "build", "clean.szirpa")
    assert process.returncode == 2
    assert b"clean.fmem: error: can't be created: Is a directory" in process.stderr
    assert names(directory) == {"clean.fmem"}


def test_a_full_disk_leaves_no_output(zirpa, directory):
    process = running.run(directory, zirpa, "build", "-o", "/dev/full", "clean.szirpa")
    assert process.returncode == 2
    assert b"/dev/full: error: can't be written: No space left on device [cannot-write]" in process.stderr
    assert names(directory) == set()


def test_a_depfile_that_cannot_be_written_is_told(zirpa, directory):
    process = running.run(directory, zirpa, "build", "--depfile", "/dev/full", "clean.szirpa")
    assert process.returncode == 2
    assert b"/dev/full: error: can't be written: No space left on device" in process.stderr


@pytest.mark.parametrize("command", ["build --depfile", "map --svg"])
def test_a_file_besides_the_outputs_overwrites_no_source(command, zirpa, directory):
    process = running.run(directory, zirpa, *command.split(), "./clean.szirpa", "clean.szirpa")
    assert process.returncode == 2
    assert b"./clean.szirpa: error: can't be created: the run needs what is there" in process.stderr
    assert (directory / "clean.szirpa").read_bytes() == CLEAN


def test_a_depfile_overwrites_no_output(zirpa, directory):
    process = running.run(directory, zirpa, "build", "--depfile", "clean.s19", "clean.szirpa")
    assert process.returncode == 2
    assert (directory / "clean.s19").read_bytes() == RECORDS


def test_a_picture_for_which_there_is_no_room_leaves_the_old_one(zirpa, directory):
    (directory / "map.svg").write_bytes(b"old\n")
    script = 'ulimit -f 1; exec "$0" map --svg map.svg clean.szirpa'
    process = running.run(directory, "/bin/sh", "-c", script, zirpa)
    assert process.returncode == 2
    assert b"map.svg: error: can't be written: File too large [cannot-write]" in process.stderr
    assert (directory / "map.svg").read_bytes() == b"old\n"
    assert names(directory) == {"map.svg"}


def test_standard_output_that_is_full_fails(zirpa, directory):
    with open("/dev/full", "wb") as full:
        for command in (
            ("build", "--stdout", "clean.szirpa"),
            ("check", "--format", "json", "clean.szirpa"),
            ("map", "clean.szirpa"),
            ("explain", "bad-label"),
            ("--version",),
            ("build", "--help"),
        ):
            process = running.run(directory, zirpa, *command, stdout=full)
            assert process.returncode == 2, command
            assert process.stderr.endswith(
                b"standard output: error: can't be written: No space left on device [cannot-write]\n"
            ), command


def test_standard_error_that_is_full_fails(zirpa, directory):
    with open("/dev/full", "wb") as full:
        process = running.run(directory, zirpa, "check", "faulty.szirpa", stderr=full)
    assert process.returncode == 2


def test_closed_streams_are_no_outputs(zirpa, directory):
    process = run_closed(directory, "<&- >&- 2>&-", zirpa, "build", "clean.szirpa")
    assert process.returncode == 0
    assert (directory / "clean.s19").read_bytes() == RECORDS
    process = run_closed(directory, ">&- 2>&-", zirpa, "check", "faulty.szirpa")
    assert process.returncode == 2


def test_a_closed_pipe_is_a_write_that_fails(zirpa, directory):
    read_end, write_end = os.pipe()
    os.close(read_end)
    with os.fdopen(write_end, "wb") as pipe:
        process = running.run(directory, zirpa, "explain", "all", stdout=pipe)
    assert process.returncode == 2


# ---- Standard input and output ----


def test_a_source_from_standard_input_has_its_name(zirpa, directory):
    process = running.run(
        directory, zirpa, "check", "--stdin-name", "edited.szirpa", "-", input=FAULTY
    )
    assert process.stderr.startswith(b"edited.szirpa:2:2: error: ")
    process = running.run(directory, zirpa, "build", "-", input=CLEAN)
    assert process.returncode == 0
    assert (directory / "stdin.s19").read_bytes() == RECORDS


def test_records_go_to_standard_output_alone(zirpa, directory):
    process = running.run(directory, zirpa, "build", "--stdout", "clean.szirpa")
    assert (process.returncode, process.stdout) == (0, RECORDS)
    assert names(directory) == set()
    process = running.run(directory, zirpa, "build", "--stdout", "faulty.szirpa")
    assert (process.returncode, process.stdout) == (1, b"")


def test_nothing_of_a_failure_can_be_taken_for_good(zirpa, directory):
    for suffix in (".s19", ".fmem", "_cout.c", ".lst"):
        (directory / ("faulty" + suffix)).write_bytes(b"old\n")
    process = running.run(directory, zirpa, "build", "-L", "-A", "faulty.szirpa")
    assert process.returncode == 1
    assert names(directory) == {"faulty.lst"}
    assert b"ERROR: Illegal mnemonic" in (directory / "faulty.lst").read_bytes()


def test_warnings_fail_a_strict_build(zirpa, directory):
    (directory / "warned.szirpa").write_bytes(b"\tNOP\n")
    assert running.run(directory, zirpa, "build", "warned.szirpa").returncode == 0
    assert (directory / "warned.s19").exists()
    assert running.run(directory, zirpa, "build", "--strict", "warned.szirpa").returncode == 1
    assert not (directory / "warned.s19").exists()


@pytest.mark.parametrize("count", [256, 65_536])
def test_no_number_of_errors_looks_like_none(count, zirpa, directory):
    (directory / "many.szirpa").write_bytes(b" FOO\n" * count)
    process = running.run(directory, zirpa, "build", "many.szirpa")
    assert process.returncode == 1
    assert process.stderr.endswith(b"%d errors\n" % count)
    assert not (directory / "many.s19").exists()


def test_colours_are_for_terminals_or_asked_for(zirpa, directory):
    def shown(*options, **environment):
        return running.run(
            directory, zirpa, "check", *options, "faulty.szirpa", env={**os.environ, **environment}
        ).stderr

    assert b"\x1b[" not in shown()
    assert b"\x1b[" in shown("--color", "always", NO_COLOR="1")
    assert b"\x1b[" not in shown("--color", "never")


def test_a_terminal_has_colours_unless_it_does_not_want_them(zirpa, directory):
    def shown(**environment):
        command = ["script", "-qec", f"{zirpa} check faulty.szirpa", "/dev/null"]
        result = subprocess.run(
            command, cwd=directory, env={**os.environ, "TERM": "xterm", **environment},
            stdin=subprocess.DEVNULL, capture_output=True, check=False,
        )  # fmt: skip
        return result.stdout

    assert b"\x1b[" in shown(NO_COLOR="")
    assert b"\x1b[" not in shown(NO_COLOR="1")
    assert b"\x1b[" not in shown(NO_COLOR="", TERM="dumb")
