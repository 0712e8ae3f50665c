"""A file that standard output or error was redirected to is no output of the run."""

import os

import pytest
from stream_runs import (
    EVERY_OUTPUT, FORMS, OLD, OUTPUTS, RECORDS, SCRIPT, STREAMS, SUMMARY, WHOLE, own_name,
)


def hard_link(place, name, file):
    os.link(place.path / file, place.path / name)


def symbolic_link(place, name, file):
    place.put_link(name, file)


def link_to_a_link(place, name, file):
    place.put_link("between", place.path / file)
    place.put_link(name, "between")


def others(place, file):
    """All but `file`, and what they hold or lead to."""
    paths = (path for path in place.path.iterdir() if path.name != file)
    return {
        path.name: os.readlink(path) if path.is_symlink() else path.read_bytes()
        for path in paths
        if not path.is_file() or not path.samefile(place.path / file)
    }


def assert_refused(place, stream, file, arguments, name):
    """Refused with the messages in `file` or on the other stream, and nothing else touched."""
    kept = others(place, file)
    before = place.read(file)
    with open(place.path / file, "ab") as opened:
        process = place.run(*arguments, "prog.szirpa", **{stream: opened})
    assert process.returncode == 1
    written = place.read(file).removeprefix(before)
    if stream == "stdout":
        assert (written, process.stderr) == (place.refusal(name), b"")
    else:
        assert (process.stdout, written) == (place.refusal(name), b"")
    assert others(place, file) == kept


@STREAMS
@pytest.mark.parametrize("name", OUTPUTS)
@pytest.mark.parametrize("others", [[], OUTPUTS])
def test_output_that_a_stream_is_redirected_to_is_refused(place, stream, name, others):
    place.put_old(name, *others)
    assert_refused(place, stream, name, EVERY_OUTPUT, name)


@STREAMS
@pytest.mark.parametrize("name", OUTPUTS)
@pytest.mark.parametrize("link", [hard_link, symbolic_link, link_to_a_link])
def test_output_that_leads_to_the_file_of_a_stream_is_refused(place, stream, name, link):
    place.put_old("messages")
    link(place, name, "messages")
    assert_refused(place, stream, "messages", EVERY_OUTPUT, name)


@STREAMS
@FORMS
def test_output_that_is_the_stream_itself_is_refused(place, stream, form):
    name = own_name(stream, form)
    place.put_old("messages")
    assert_refused(place, stream, "messages", ["-o", name], name)


@STREAMS
@FORMS
def test_output_through_a_link_to_the_stream_is_refused(place, stream, form):
    place.put_old("messages")
    place.put_link("out.s19", own_name(stream, form))
    assert_refused(place, stream, "messages", ["-o", "out.s19"], "out.s19")


@pytest.mark.parametrize("mode", ["wb", "ab", "r+b", "w+b"])
def test_refusal_does_not_depend_on_how_the_stream_was_opened(place, mode):
    place.put_old(RECORDS)
    with open(place.path / RECORDS, mode) as opened:
        process = place.run("prog.szirpa", stdout=opened)
    assert process.returncode == 1
    refusal = place.refusal(RECORDS)
    expected = {
        "wb": refusal,
        "w+b": refusal,
        "ab": OLD + refusal,
        "r+b": refusal + OLD[len(refusal) :],
    }
    assert place.read(RECORDS) == expected[mode]
    assert place.names() == [RECORDS, "prog.szirpa"]


def test_array_that_stays_empty_without_a_listing_is_refused_too(place):
    place.put_old("prog_cout.c")
    assert_refused(place, "stdout", "prog_cout.c", ["-A"], "prog_cout.c")


@pytest.mark.parametrize("name", ["prog.lst", "prog_cout.c"])
def test_output_that_is_not_asked_for_may_be_standard_output(place, name):
    with open(place.path / name, "wb") as opened:
        process = place.run("prog.szirpa", stdout=opened)
    assert process.returncode == 0
    assert place.read(name) == SUMMARY
    assert place.names() == sorted([RECORDS, SCRIPT, "prog.szirpa", name])


@pytest.mark.parametrize("name", OUTPUTS)
def test_standard_input_may_be_an_old_output(place, name):
    place.put_old()
    with open(place.path / name, "rb") as opened:
        process = place.run(*EVERY_OUTPUT, "prog.szirpa", stdin=opened)
    assert (process.returncode, process.stdout) == (0, SUMMARY)
    place.assert_outputs(WHOLE)


def test_both_streams_on_one_file_that_is_no_output_are_as_good_as_one(place):
    with open(place.path / "messages", "wb") as opened:
        process = place.run(*EVERY_OUTPUT, "prog.szirpa", stdout=opened, stderr=opened)
    assert process.returncode == 0
    assert place.read("messages") == SUMMARY
    place.assert_outputs(WHOLE)
