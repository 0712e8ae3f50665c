"""Files: what a run may never overwrite, what it reads only once, and what it cannot write."""

import os
import pathlib
import resource
import stat

import pytest
import running

SOURCE = b" ORG $10\n LDA #5\n"
RECORDS = b"S1050010F005F5\nS9030010EC\n"


@pytest.fixture(name="assemble")
def assemble_in_tmp_path(program, tmp_path):
    """Runs the program in tmp_path, where prog.szirpa stands."""
    (tmp_path / "prog.szirpa").write_bytes(SOURCE)

    def run(*arguments, **options):
        return running.run(tmp_path, program, *arguments, **options)

    return run


def names(tmp_path):
    return sorted(path.name for path in tmp_path.iterdir())


def refusal(tmp_path, name):
    path = tmp_path.resolve() / "prog.szirpa"
    return f"{path} (0)Fatal error: Cannot create output fil '{name}'\n".encode()


def assert_refused(process, tmp_path, name):
    assert process.stdout == refusal(tmp_path, name)
    assert process.returncode == 1
    assert (tmp_path / "prog.szirpa").read_bytes() == SOURCE


# ---- Collisions ----


@pytest.mark.parametrize("name", ["prog.szirpa", "./prog.szirpa", "sub/../prog.szirpa"])
def test_output_that_is_the_source_is_refused(assemble, tmp_path, name):
    (tmp_path / "sub").mkdir()
    assert_refused(assemble("-o", name, "prog.szirpa"), tmp_path, name)
    assert names(tmp_path) == ["prog.szirpa", "sub"]


def test_output_through_a_symbolic_link_to_the_source_is_refused(assemble, tmp_path):
    (tmp_path / "out.s19").symlink_to("prog.szirpa")
    assert_refused(assemble("-o", "out.s19", "prog.szirpa"), tmp_path, "out.s19")
    assert names(tmp_path) == ["out.s19", "prog.szirpa"]


def test_listing_that_is_a_hard_link_to_the_source_is_refused(assemble, tmp_path):
    os.link(tmp_path / "prog.szirpa", tmp_path / "prog.lst")
    assert_refused(assemble("-L", "prog.szirpa"), tmp_path, "prog.lst")
    assert names(tmp_path) == ["prog.lst", "prog.szirpa"]


def test_script_that_is_a_link_to_the_source_is_refused(assemble, tmp_path):
    (tmp_path / "prog.fmem").symlink_to("prog.szirpa")
    assert_refused(assemble("prog.szirpa"), tmp_path, "prog.fmem")


def test_array_that_is_a_link_to_the_source_is_refused(assemble, tmp_path):
    (tmp_path / "prog_cout.c").symlink_to("prog.szirpa")
    assert_refused(assemble("-L", "-A", "prog.szirpa"), tmp_path, "prog_cout.c")


def test_two_new_outputs_of_one_name_are_refused(assemble, tmp_path):
    assert_refused(assemble("-L", "-o", "./x.lst", "prog.szirpa"), tmp_path, "x.lst")
    assert names(tmp_path) == ["prog.szirpa"]


def test_two_outputs_that_meet_through_a_dangling_link_are_refused(assemble, tmp_path):
    (tmp_path / "x.s19").symlink_to("x.lst")
    assert_refused(assemble("-L", "-o", "x.s19", "prog.szirpa"), tmp_path, "x.lst")
    assert names(tmp_path) == ["prog.szirpa", "x.s19"]


def test_dangling_link_with_a_rooted_target_is_followed(assemble, tmp_path):
    (tmp_path / "x.s19").symlink_to(tmp_path.resolve() / "x.lst")
    assert_refused(assemble("-L", "-o", "x.s19", "prog.szirpa"), tmp_path, "x.lst")


def test_old_outputs_that_are_links_to_one_file_are_refused(assemble, tmp_path):
    (tmp_path / "prog.s19").write_bytes(b"old")
    os.link(tmp_path / "prog.s19", tmp_path / "prog.fmem")
    assert_refused(assemble("prog.szirpa"), tmp_path, "prog.fmem")
    assert (tmp_path / "prog.s19").read_bytes() == b"old"


def test_source_named_like_an_output_is_refused(assemble, tmp_path):
    (tmp_path / "prog.s19").write_bytes(SOURCE)
    process = assemble("prog.s19")
    assert process.returncode == 1
    assert b"Cannot create output fil 'prog.s19'" in process.stdout
    assert (tmp_path / "prog.s19").read_bytes() == SOURCE


# ---- Sources ----


def test_source_from_a_pipe_is_read_once_for_all_passes(assemble, tmp_path):
    process = assemble("/dev/stdin", input=SOURCE)
    assert process.stdout == b"-- No errors.\n"
    assert (tmp_path / "stdin.s19").read_bytes() == RECORDS


def test_source_from_a_pipe_may_be_long(assemble, tmp_path):
    process = assemble("/dev/stdin", input=b"; comment\n" * 50000 + SOURCE)
    assert process.stdout == b"-- No errors.\n"
    assert (tmp_path / "stdin.s19").read_bytes() == RECORDS


def test_directory_as_source_cannot_be_opened(assemble, tmp_path):
    (tmp_path / "dir.szirpa").mkdir()
    process = assemble("dir.szirpa")
    assert process.stdout == b"HXzirpa: Can't open 'dir.szirpa'\n"
    assert process.returncode == 1


# ---- Writing ----


def test_full_disk_is_told_and_ends_with_status_1(assemble, tmp_path):
    process = assemble("-o", "/dev/full", "prog.szirpa")
    assert process.stdout == b"HXzirpa: Can't write '/dev/full'\n"
    assert process.returncode == 1
    assert stat.S_ISCHR(os.stat("/dev/full").st_mode)


@pytest.mark.parametrize(
    "name, arguments",
    [("prog.lst", ["-L"]), ("prog_cout.c", ["-L", "-A"]), ("prog.fmem", [])],
)
def test_every_output_that_cannot_be_written_is_told(assemble, tmp_path, name, arguments):
    # Outputs of these names are deleted and created anew, so the limit on a file's size stands in
    # for the full disk: no S-record file reaches it here, the others do.
    limit = 60
    source = b";" + b"x" * 500 + b"\n FCB 1\n" if name == "prog.lst" else b" FCB 1,2,3,4,5,6,7\n"
    (tmp_path / "prog.szirpa").write_bytes(source)
    process = assemble(*arguments, "prog.szirpa", preexec_fn=lambda: limit_file_size(limit))
    assert f"HXzirpa: Can't write '{name}'\n".encode() in process.stdout
    assert process.returncode == 1
    assert not (tmp_path / "prog.s19").exists()


def limit_file_size(size):
    resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


def test_device_as_output_is_never_deleted(assemble, tmp_path):
    (tmp_path / "prog.szirpa").write_bytes(b" LDA #300\n")
    process = assemble("-o", "/dev/null", "prog.szirpa")
    assert process.returncode == 1
    assert stat.S_ISCHR(os.stat("/dev/null").st_mode)


def test_standard_output_that_cannot_be_written_ends_with_status_1(assemble, tmp_path):
    with open("/dev/full", "wb") as full:
        process = assemble("prog.szirpa", stdout=full)
    assert process.returncode == 1


def test_closed_pipe_is_a_failed_write_not_a_signal(assemble, tmp_path):
    reading, writing = os.pipe()
    os.close(reading)
    process = assemble("prog.szirpa", stdout=writing)
    os.close(writing)
    assert process.returncode == 1


def test_old_outputs_are_replaced(assemble, tmp_path):
    for suffix in (".s19", ".lst", ".fmem", "_cout.c"):
        (tmp_path / f"prog{suffix}").write_bytes(b"old " * 1000)
    assemble("-L", "-A", "prog.szirpa")
    for suffix in (".s19", ".lst", ".fmem", "_cout.c"):
        assert b"old" not in pathlib.Path(tmp_path / f"prog{suffix}").read_bytes()
    assert (tmp_path / "prog.s19").read_bytes() == RECORDS
