"""Files: what a run may never overwrite, what it reads only once, and what it cannot write."""

import os
import resource
import stat

import pytest
from stream_runs import EVERY_OUTPUT, GOOD, OLD, RECORDS, SUMMARY, WHOLE, Place


@pytest.fixture(name="place")
def place_of_the_test(program, tmp_path):
    return Place(tmp_path, program)


def assert_refused(place, arguments, name, left=None):
    process = place.run(*arguments, "prog.szirpa")
    assert (process.returncode, process.stdout) == (1, place.refusal(name))
    assert place.read("prog.szirpa") == GOOD
    assert left is None or place.names() == left


# ---- Collisions ----


@pytest.mark.parametrize("name", ["prog.szirpa", "./prog.szirpa", "sub/../prog.szirpa"])
def test_output_that_is_the_source_is_refused(place, name):
    (place.path / "sub").mkdir()
    assert_refused(place, ["-o", name], name, left=["prog.szirpa", "sub"])


def test_output_through_a_symbolic_link_to_the_source_is_refused(place):
    place.put_link("out.s19", "prog.szirpa")
    assert_refused(place, ["-o", "out.s19"], "out.s19", left=["out.s19", "prog.szirpa"])


def test_listing_that_is_a_hard_link_to_the_source_is_refused(place):
    os.link(place.path / "prog.szirpa", place.path / "prog.lst")
    assert_refused(place, ["-L"], "prog.lst", left=["prog.lst", "prog.szirpa"])


def test_script_that_is_a_link_to_the_source_is_refused(place):
    place.put_link("prog.fmem", "prog.szirpa")
    assert_refused(place, [], "prog.fmem")


def test_array_that_is_a_link_to_the_source_is_refused(place):
    place.put_link("prog_cout.c", "prog.szirpa")
    assert_refused(place, EVERY_OUTPUT, "prog_cout.c")


def test_two_new_outputs_of_one_name_are_refused(place):
    assert_refused(place, ["-L", "-o", "./x.lst"], "x.lst", left=["prog.szirpa"])


def test_two_outputs_that_meet_through_a_dangling_link_are_refused(place):
    place.put_link("x.s19", "x.lst")
    assert_refused(place, ["-L", "-o", "x.s19"], "x.lst", left=["prog.szirpa", "x.s19"])


def test_dangling_link_with_a_rooted_target_is_followed(place):
    place.put_link("x.s19", place.path / "x.lst")
    assert_refused(place, ["-L", "-o", "x.s19"], "x.lst")


def test_old_outputs_that_are_links_to_one_file_are_refused(place):
    place.put_old("prog.s19")
    os.link(place.path / "prog.s19", place.path / "prog.fmem")
    assert_refused(place, [], "prog.fmem")
    assert place.read("prog.s19") == OLD


def test_source_named_like_an_output_is_refused(place):
    (place.path / "prog.s19").write_bytes(GOOD)
    process = place.run("prog.s19")
    assert process.returncode == 1
    assert b"Cannot create output fil 'prog.s19'" in process.stdout
    assert place.read("prog.s19") == GOOD


# ---- Sources ----


def test_source_from_a_pipe_is_read_once_for_all_passes(place):
    process = place.run("/dev/stdin", input=GOOD)
    assert process.stdout == SUMMARY
    assert place.read("stdin.s19") == WHOLE[RECORDS]


def test_source_from_a_pipe_may_be_long(place):
    process = place.run("/dev/stdin", input=b"; comment\n" * 50000 + GOOD)
    assert process.stdout == SUMMARY
    assert place.read("stdin.s19") == WHOLE[RECORDS]


def test_directory_as_source_cannot_be_opened(place):
    (place.path / "dir.szirpa").mkdir()
    process = place.run("dir.szirpa")
    assert process.stdout == b"HXzirpa: Can't open 'dir.szirpa'\n"
    assert process.returncode == 1


# ---- Writing ----


def test_full_disk_is_told_and_ends_with_status_1(place):
    process = place.run("-o", "/dev/full", "prog.szirpa")
    assert process.stdout == b"HXzirpa: Can't write '/dev/full'\n"
    assert process.returncode == 1
    assert stat.S_ISCHR(os.stat("/dev/full").st_mode)


@pytest.mark.parametrize(
    "name, arguments",
    [("prog.lst", ["-L"]), ("prog_cout.c", ["-L", "-A"]), ("prog.fmem", [])],
)
def test_every_output_that_cannot_be_written_is_told(place, name, arguments):
    # Outputs of these names are deleted and created anew, so the limit on a file's size stands in
    # for the full disk: no S-record file reaches it here, the others do.
    limit = 60
    source = b";" + b"x" * 500 + b"\n FCB 1\n" if name == "prog.lst" else b" FCB 1,2,3,4,5,6,7\n"
    place.write_source(source)
    process = place.run(*arguments, "prog.szirpa", prepare=lambda: limit_file_size(limit))
    assert f"HXzirpa: Can't write '{name}'\n".encode() in process.stdout
    assert process.returncode == 1
    assert not (place.path / "prog.s19").exists()


def limit_file_size(size):
    resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


def test_device_as_output_is_never_deleted(place):
    place.write_source(b" LDA #300\n")
    process = place.run("-o", "/dev/null", "prog.szirpa")
    assert process.returncode == 1
    assert stat.S_ISCHR(os.stat("/dev/null").st_mode)


def test_standard_output_that_cannot_be_written_ends_with_status_1(place):
    with open("/dev/full", "wb") as full:
        process = place.run("prog.szirpa", stdout=full)
    assert process.returncode == 1


def test_closed_pipe_is_a_failed_write_not_a_signal(place):
    reading, writing = os.pipe()
    os.close(reading)
    process = place.run("prog.szirpa", stdout=writing)
    os.close(writing)
    assert process.returncode == 1


def test_old_outputs_are_replaced(place):
    place.put_old()
    place.run(*EVERY_OUTPUT, "prog.szirpa")
    place.assert_outputs(WHOLE)
