"""Devices, pipes and sockets are written in place; neither they nor links to them are deleted."""

import os
import socket
import stat
import subprocess

import pytest
from stream_runs import (
    ARRAY, BAD, ERRORS, EVERY_OUTPUT, FORMS, GOOD, LISTING, OLD, OUTPUTS, RECORDS, REPLACING,
    SCRIPT, STREAMS, SUMMARY, WHOLE, drain, expected_outputs, fifo_with_room, own_mounts, own_name,
)

# ---- Names below /dev ----


@pytest.fixture(name="private_dev")
def command_with_a_private_dev(place):
    """The command after which /dev is the directory dev of the place, in which a run by root can
    do no harm to others."""
    command = own_mounts()
    dev = place.path / "dev"
    dev.mkdir()
    devices = ["null", "full"]
    for name in devices:
        (dev / name).touch()
    (dev / "fd").symlink_to("/proc/self/fd")
    for number, name in enumerate(["stdin", "stdout", "stderr"]):
        (dev / name).symlink_to(f"/proc/self/fd/{number}")
    before = links(dev)
    mounts = [f"mount --bind /dev/{name} dev/{name}" for name in devices]
    script = " && ".join([*mounts, "mount --rbind dev /dev", 'exec "$@"'])
    yield [*command, "sh", "-c", script, "sh"]
    assert links(dev) == before


def links(directory):
    return {path.name: path.is_symlink() and os.readlink(path) for path in directory.iterdir()}


THROUGH = pytest.mark.parametrize("through", [None, "out.s19"])


@FORMS
@STREAMS
@THROUGH
@ERRORS
def test_output_onto_a_stream_that_is_a_pipe(place, private_dev, form, stream, through, errors):
    name = own_name(stream, form)
    if through:
        place.put_link(through, name)
    process = place.assemble(errors, "-o", through or name, before=private_dev)
    records = expected_outputs(errors).get(RECORDS, b"")
    messages = place.messages(errors)
    if stream == "stdout":
        assert (process.stdout, process.stderr) == (records + messages, b"")
    else:
        assert (process.stdout, process.stderr) == (messages, records)
    assert process.returncode == errors
    if through:
        assert os.readlink(place.path / through) == name
    assert place.read(SCRIPT) == WHOLE[SCRIPT]


@FORMS
@STREAMS
@THROUGH
@ERRORS
@pytest.mark.parametrize("device", ["null", "full"])
def test_output_onto_a_stream_that_is_a_device(
    place, private_dev, form, stream, through, errors, device
):
    name = own_name(stream, form)
    if through:
        place.put_link(through, name)
    with open(f"/dev/{device}", "wb", buffering=0) as opened:
        process = place.assemble(errors, "-o", through or name, before=private_dev, **{stream: opened}
        )
    # After errors there are no records that the device could refuse.
    refused = device == "full" and (stream == "stdout" or not errors)
    assert process.returncode == (1 if refused else errors)
    if stream == "stderr":
        complaint = b"HXzirpa: Can't write '%s'\n" % os.fsencode(through or name)
        assert process.stdout == (complaint if refused else place.messages(errors))
    if through:
        assert os.readlink(place.path / through) == name


@THROUGH
@pytest.mark.parametrize("form", ["/dev/fd/{}", "/proc/self/fd/{}"])
@ERRORS
def test_file_of_another_descriptor_is_written_in_place(place, private_dev, form, through, errors):
    place.put_old("file")
    inode = (place.path / "file").stat().st_ino
    with open(place.path / "file", "r+b") as opened:
        name = form.format(opened.fileno())
        if through:
            place.put_link(through, name)
        process = place.assemble(errors, "-o", through or name, before=private_dev, pass_fds=[opened.fileno()]
        )
    assert (process.returncode, process.stdout) == (errors, place.messages(errors))
    assert place.read("file") == expected_outputs(errors).get(RECORDS, b"")
    assert (place.path / "file").stat().st_ino == inode
    if through:
        assert os.readlink(place.path / through) == name


# What records are made of. Pieces of records and messages may alternate within a line.
RECORD_BYTES = b"S0123456789ABCDEF\n"


@ERRORS
def test_many_records_and_messages_share_a_pipe_without_loss(place, private_dev, errors):
    count = 3000 if errors else 0
    place.write_source(b" FCB 1,2,3,4,5,6,7\n" * 5000 + b" BAD\n" * count)
    process = place.run("-o", "/dev/stdout", "prog.szirpa", before=private_dev)
    summary = b"-- %d error(s).\n" % count if errors else SUMMARY
    assert process.stdout.endswith(summary)
    path = os.fsencode(place.path / "prog.szirpa")
    messages = b"%s (1) Error: Illegal mnemonic\n" % path * count + summary
    assert process.stdout.translate(None, RECORD_BYTES) == messages.translate(None, RECORD_BYTES)
    if not errors:
        *records, end = process.stdout.removesuffix(summary).splitlines()
        assert end.startswith(b"S903")
        # All addresses have 16 bits, so there are ten digits around the bytes of each line.
        assert sum(len(line) - 10 for line in records) == 2 * 5000 * 7


# ---- FIFOs ----


@pytest.mark.parametrize("name", OUTPUTS)
@pytest.mark.parametrize("linked", [False, True])
@ERRORS
def test_fifo_is_written_and_stays(place, name, linked, errors):
    fifo = "fifo" if linked else name
    with fifo_with_room(place.path / fifo) as reading:
        if linked:
            place.put_link(name, fifo)
        process = place.assemble(errors, *EVERY_OUTPUT)
        written = drain(reading)
    assert (process.returncode, process.stdout) == (errors, place.messages(errors))
    assert written == expected_outputs(errors).get(name, b"")
    assert (place.path / fifo).is_fifo()
    assert (place.path / name).is_symlink() == linked
    place.assert_outputs(expected_outputs(errors, but=[name]))


@ERRORS
def test_fifo_named_by_the_option_stays(place, errors):
    with fifo_with_room(place.path / "fifo") as reading:
        process = place.assemble(errors, "-o", "fifo")
        assert drain(reading) == expected_outputs(errors).get(RECORDS, b"")
    assert process.returncode == errors
    assert (place.path / "fifo").is_fifo()


# ---- Devices ----


@pytest.mark.parametrize("name", OUTPUTS)
@ERRORS
def test_link_to_the_null_device_stays(place, private_dev, name, errors):
    place.put_link(name, "/dev/null")
    process = place.assemble(errors, *EVERY_OUTPUT, before=private_dev)
    assert (process.returncode, process.stdout) == (errors, place.messages(errors))
    assert os.readlink(place.path / name) == "/dev/null"
    place.assert_outputs(expected_outputs(errors, but=[name]))


@pytest.mark.parametrize("name", OUTPUTS)
def test_link_to_the_full_device_stays_and_the_failure_is_reported(place, private_dev, name):
    place.put_link(name, "/dev/full")
    process = place.assemble(0, *EVERY_OUTPUT, before=private_dev)
    assert process.stdout == b"HXzirpa: Can't write '%s'\n" % os.fsencode(name)
    assert process.returncode == 1
    assert os.readlink(place.path / name) == "/dev/full"
    if name != RECORDS:
        assert RECORDS not in place.names()


@pytest.mark.parametrize("name", OUTPUTS)
@ERRORS
def test_mounted_device_stays(place, name, errors):
    (place.path / name).touch()
    mount = [*own_mounts(), "sh", "-c", 'mount --bind /dev/null "$0" && exec "$@"', name]
    process = place.assemble(errors, *EVERY_OUTPUT, before=mount)
    assert (process.returncode, process.stdout) == (errors, place.messages(errors))
    assert place.read(name) == b""


def test_every_output_may_go_to_the_null_device(place, private_dev):
    for name in OUTPUTS:
        place.put_link(name, "/dev/null")
    process = place.assemble(0, *EVERY_OUTPUT, before=private_dev)
    assert (process.returncode, process.stdout) == (0, SUMMARY)
    assert {os.readlink(place.path / name) for name in OUTPUTS} == {"/dev/null"}
    assert stat.S_ISCHR(os.stat("/dev/null").st_mode)


# ---- Sockets: they cannot be opened ----


@pytest.fixture(name="make_socket")
def maker_of_sockets(place):
    sockets = []

    def make(name):
        here = os.getcwd()
        sockets.append(socket.socket(socket.AF_UNIX))
        # A socket's name is short, the directory's need not be.
        os.chdir(place.path)
        try:
            sockets[-1].bind(name)
        finally:
            os.chdir(here)

    yield make
    for made in sockets:
        made.close()


@pytest.mark.parametrize("linked", [False, True])
@ERRORS
def test_socket_as_s_record_file_is_refused_and_stays(place, make_socket, linked, errors):
    make_socket("socket" if linked else RECORDS)
    if linked:
        place.put_link(RECORDS, "socket")
    process = place.assemble(errors, *EVERY_OUTPUT)
    assert (process.returncode, process.stdout) == (1, place.refusal(RECORDS))
    assert (place.path / RECORDS).is_socket()
    assert (place.path / RECORDS).is_symlink() == linked


@pytest.mark.parametrize("name", REPLACING)
@pytest.mark.parametrize("linked", [False, True])
@ERRORS
def test_socket_as_another_output_is_left_out_and_stays(place, make_socket, name, linked, errors):
    make_socket("socket" if linked else name)
    if linked:
        place.put_link(name, "socket")
    process = place.assemble(errors, *EVERY_OUTPUT)
    assert (process.returncode, process.stdout) == (errors, place.messages(errors))
    assert (place.path / name).is_socket()
    assert (place.path / name).is_symlink() == linked
    # Without a listing there is no array either, only its empty file.
    without_listing = {ARRAY: b""} if name == LISTING else {}
    place.assert_outputs({**expected_outputs(errors, but=[name]), **without_listing})


def test_standard_output_that_is_a_socket_gets_the_messages(place):
    ours, theirs = socket.socketpair()
    with ours, theirs:
        process = place.assemble(0, *EVERY_OUTPUT, stdout=theirs)
        assert (process.returncode, ours.recv(1000)) == (0, SUMMARY)
        refused = place.assemble(0, "-o", "/proc/self/fd/1", stdout=theirs)
        assert refused.returncode == 1
        assert ours.recv(1000) == place.refusal("/proc/self/fd/1")


# ---- What was written is what may be deleted ----


@pytest.mark.parametrize("text", [BAD, GOOD])
def test_messages_after_a_refusal_are_whole(place, text):
    place.write_source(text * 3000)
    with open(place.path / "messages", "wb") as opened:
        process = place.run(
            "-o", "/proc/self/fd/1", "prog.szirpa", stdout=opened, stderr=subprocess.STDOUT
        )
    assert process.returncode == 1
    assert place.read("messages") == place.refusal("/proc/self/fd/1")


def test_old_file_of_a_failed_run_is_deleted_only_by_its_own_name(place):
    place.put_old("other", RECORDS)
    place.assemble(2)
    assert place.read("other") == OLD
    assert RECORDS not in place.names()
