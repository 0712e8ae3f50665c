"""On a terminal control bytes are shown by their number; files and pipes get the exact bytes."""

import os
import pty
import re
import subprocess
import tty
from concurrent.futures import ThreadPoolExecutor

import pytest
from stream_runs import SUMMARY, environment_when_traced, traced


def open_terminal():
    try:
        ours, theirs = pty.openpty()
    except OSError:
        pytest.skip("there is no pseudo-terminal")
    # Line feeds arrive as they were written.
    tty.setraw(theirs)
    return ours, theirs


END = b"<what was shown ends here>"


def everything_from(ours):
    """What arrives before END."""
    shown = b""
    while not shown.endswith(END):
        shown += os.read(ours, 65536)
    return shown.removesuffix(END)


@pytest.fixture(name="on_terminal")
def runner_on_a_terminal(place):
    """Runs the program with a terminal as standard output; gives its status and what was shown."""

    def run(*arguments, **options):
        ours, theirs = open_terminal()
        try:
            with ThreadPoolExecutor() as pool, place.start(
                *arguments, stdout=theirs, **options
            ) as process:
                shown = pool.submit(everything_from, ours)
                process.wait()
                # A terminal whose last writer has gone may drop what is still on its way, so this
                # side stays open and writes last.
                os.write(theirs, END)
                return process.returncode, shown.result()
        finally:
            os.close(ours)
            os.close(theirs)

    return run


# Bytes that belong to no character are decoded to U+DC80 and above.
NUMBERED = re.compile("[\x00-\x08\x0b-\x1f\x7f-\x9f\udc80-\udcff]")


def as_shown(text):
    """The rule: what a terminal gets of `text`."""

    def numbers(match):
        piece = match[0].encode("utf-8", "surrogateescape")
        return "".join(f"\\x{byte:02X}" for byte in piece)

    return NUMBERED.sub(numbers, text.decode("utf-8", "surrogateescape")).encode()


def unknown(texts):
    """Options that only draw a message, and the exact messages."""
    messages = [b"HXzirpa: Unknown option '" + text + b"' is ignored.\n" for text in texts]
    return [b"-" + text for text in texts], b"".join(messages)


BYTES = [b"q" + bytes([byte]) + b"r" for byte in range(1, 256)]
CHARACTERS = {
    "two bytes": ["\u0080", "\u0085", "\u009b", "\u009f", "\u00a0", "\u00e9", "\u07ff"],
    "three bytes": ["\u0800", "\u20ac", "\ud7ff", "\ue000", "\ufeff", "\uffff"],
    "four bytes": ["\U00010000", "\U0001f600", "\U000fffff", "\U0010ffff"],
}
NOT_UTF_8 = [
    b"\xc0\x80",  # overlong
    b"\xc1\xbf",
    b"\xe0\x80\x80",
    b"\xe0\x9f\xbf",
    b"\xf0\x80\x80\x80",
    b"\xf0\x8f\xbf\xbf",
    b"\xed\xa0\x80",  # surrogates
    b"\xed\xbf\xbf",
    b"\xf4\x90\x80\x80",  # above the last character
    b"\xf5\x80\x80\x80",
    b"\xf8\x88\x80\x80\x80",
    b"\xfc\x84\x80\x80\x80\x80",
    b"\xfe",
    b"\xff",
    b"\x80\x80\x80",  # no beginning
    b"\xc3",  # no end
    b"\xe2\x82",
    b"\xf0\x9f\x98",
    b"\xe2\x82\xe2\x82\xac",
    b"\xf0\x9f\x98\xc3\xa9",
    b"\xc3\xc3\xa9\xa9",
    b"\xe0\x80\xc3\xa9",
    b"\xe2\x1b\x82\xac",
]


# ---- The rule itself, on bytes that need no thinking ----


@pytest.mark.parametrize(
    "text, shown",
    [
        (b"a\tb\n", b"a\tb\n"),
        (b"\x1b[2J\r\x07\x7f", b"\\x1B[2J\\x0D\\x07\\x7F"),
        ("é€😀".encode(), "é€😀".encode()),
        (b"\xc2\x9b1m", b"\\xC2\\x9B1m"),
        (b"\xe9t\xe9", b"\\xE9t\\xE9"),
        (b"\xed\xa0\x80", b"\\xED\\xA0\\x80"),
        (b"\xe2\x82'", b"\\xE2\\x82'"),
        (b"\\x1B", b"\\x1B"),
    ],
)
def test_bytes_are_shown_by_the_rule(on_terminal, text, shown):
    assert as_shown(text) == shown
    option, _ = unknown([text])
    expected = b"HXzirpa: Unknown option '" + shown + b"' is ignored.\n"
    assert on_terminal(*option, "-L") == (0, expected)


# ---- Every byte and character ----


def assert_shown_and_kept(place, on_terminal, texts):
    options, messages = unknown(texts)
    assert on_terminal(*options, "-L") == (0, as_shown(messages))
    assert place.run(*options, "-L").stdout == messages


def test_every_byte_is_shown_by_the_rule_and_kept_in_a_pipe(place, on_terminal):
    assert_shown_and_kept(place, on_terminal, BYTES)


@pytest.mark.parametrize("texts", CHARACTERS.values(), ids=CHARACTERS)
def test_characters_are_shown_but_for_controls(place, on_terminal, texts):
    assert_shown_and_kept(place, on_terminal, [text.encode() for text in texts])


def test_every_beginning_with_every_second_byte(place, on_terminal):
    second = [0x01, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xE2, 0xFF]
    texts = [
        bytes([first, byte]) + rest
        for first in range(0xC0, 0x100)
        for byte in second
        for rest in (b"", b"\x80", b"\x80\x80")
    ]
    assert_shown_and_kept(place, on_terminal, texts)


@pytest.mark.parametrize("text", NOT_UTF_8, ids=bytes.hex)
def test_bytes_that_are_no_character_are_shown_one_by_one(place, on_terminal, text):
    around = [b"", b"x", "é".encode(), b"\x1b"]
    texts = [before + text + after for before in around for after in around]
    assert_shown_and_kept(place, on_terminal, texts)


def test_backslashes_and_numbers_that_are_text_stay(on_terminal):
    options, messages = unknown([b"\\x1B \\ \\\\ x1B"])
    assert on_terminal(*options, "-L") == (0, messages)


# ---- Every place where bytes of others are echoed ----


def test_compatibility_word_is_shown_by_the_rule(on_terminal):
    expected = b"HXzirpa: Unknown compatibility option -C 'a\\x1Bb' is ignored.\n"
    assert on_terminal("-C", b"a\x1bb", "-L") == (0, expected)


def test_name_of_a_missing_source_is_shown_by_the_rule(on_terminal):
    status, shown = on_terminal("no\x1b\udce9é.szirpa")
    assert (status, shown) == (1, "HXzirpa: Can't open 'no\\x1B\\xE9é.szirpa'\n".encode())


def test_path_of_a_source_is_shown_by_the_rule(place, on_terminal):
    name = "a\x1b[31m\udcff\u00e9.szirpa"
    (place.path / name).write_bytes(b" BAD\n")
    status, shown = on_terminal(name)
    line = b" (1) Error: Illegal mnemonic\n-- 1 error(s).\n"
    assert (status, shown) == (1, as_shown(os.fsencode(place.path / name)) + line)
    assert b"\\x1B[31m\\xFF\xc3\xa9.szirpa" in shown


def test_name_of_a_refused_output_is_shown_by_the_rule(place, on_terminal):
    name = "no\x7fwhere/out"
    assert on_terminal("-o", name, "prog.szirpa") == (1, as_shown(place.refusal(name)))


def test_name_of_an_output_that_cannot_be_written_is_shown_by_the_rule(place, on_terminal):
    place.put_link("f\x7full", "/dev/full")
    expected = b"HXzirpa: Can't write 'f\\x7Full'\n"
    assert on_terminal("-o", "f\x7full", "prog.szirpa") == (1, expected)


def test_working_directory_in_a_message_is_shown_by_the_rule(place, on_terminal):
    directory = place.path / "d\x1b"
    directory.mkdir()
    (directory / "prog.szirpa").write_bytes(b" BAD\n")
    before = ["sh", "-c", 'cd "$0" && exec "$@"', directory]
    _, shown = on_terminal("prog.szirpa", before=before)
    assert shown.startswith(as_shown(os.fsencode(directory / "prog.szirpa")) + b" (1) Error: ")


def test_text_of_the_source_is_shown_by_the_rule(place, on_terminal):
    place.write_source(b".stab func f:1:2:3:LO\x1bST\xff:A:B\n.stab sym \xc3\xa9\n")
    path = os.fsencode(place.path / "prog.szirpa")
    expected = (
        path
        + b" (1) Warning: Debug label 'LO\\x1BST\\xFF' is missing\n"
        + path
        # The kind is one byte: half a character.
        + b" (2) Error: Unidentified symbol type '\\xC3'\n-- 1 error(s).\n1 warning(s).\n"
    )
    assert on_terminal("-w", "-g", "prog.szirpa") == (1, expected)


def test_listing_keeps_the_exact_bytes(place, on_terminal):
    place.write_source(b" LDA #5 \x1b\xe9\n")
    assert on_terminal("-L", "prog.szirpa") == (0, SUMMARY)
    assert b" LDA #5 \x1b\xe9\n" in place.read("prog.lst")


# ---- Lengths ----


@pytest.mark.parametrize("shift", range(4))
@pytest.mark.parametrize("unit", [b"\x1b", "é".encode(), "€".encode(), "😀".encode(), b"\xff"])
def test_no_size_of_a_buffer_shows_in_long_messages(place, on_terminal, unit, shift):
    # Every position that could be the end of a buffer falls at every place within a character.
    texts = [b"a" * shift + unit * (100_000 // len(unit))]
    assert_shown_and_kept(place, on_terminal, texts)


def test_no_size_of_a_buffer_shows_in_many_messages(place, on_terminal):
    texts = [b"a" * length + "\x1bé€😀".encode() + b"\xf0\x9f" for length in range(1500)]
    assert_shown_and_kept(place, on_terminal, texts)


# ---- Other streams ----


def test_file_keeps_the_exact_bytes(place):
    options, messages = unknown(BYTES)
    with open(place.path / "messages", "wb") as opened:
        place.run(*options, "-L", stdout=opened)
    assert place.read("messages") == messages


def test_pipe_keeps_the_exact_bytes_when_the_other_streams_are_a_terminal(place):
    options, messages = unknown(BYTES)
    ours, theirs = open_terminal()
    process = place.run(*options, "-L", stdin=theirs, stderr=theirs)
    os.close(theirs)
    os.close(ours)
    assert process.stdout == messages


def test_terminal_shows_when_the_other_streams_are_closed(on_terminal):
    options, messages = unknown(BYTES)
    assert on_terminal(*options, "-L", closed=[0, 2]) == (0, as_shown(messages))


def test_null_device_is_no_terminal(place):
    options, _ = unknown(BYTES)
    assert place.run(*options, "-L", stdout=subprocess.DEVNULL).returncode == 0


# ---- The question whether it is one ----

QUESTION = re.compile(r"ioctl\(1, (TCGETS|TIOCGWINSZ|TIOCGPGRP)")


def questions(place, start, *arguments):
    """How often a run asks for the kind of its standard output."""
    log = place.path / "calls"
    start(*arguments, before=traced("-o", str(log)), env=environment_when_traced())
    return len(QUESTION.findall(log.read_text(errors="replace")))


@pytest.mark.parametrize(
    "arguments", [[], ["-x", "-L"], ["-Ö", "-L"], ["-w", "-S", "prog.szirpa"]]
)
def test_nobody_asks_for_a_terminal_when_all_bytes_are_harmless(place, on_terminal, arguments):
    place.write_source(b"LABEL LDA #5\n BAD\n")
    assert questions(place, on_terminal, *arguments) == 0
    assert questions(place, place.run, *arguments) == 0


def test_the_question_is_asked_once_when_a_control_byte_is_written(place, on_terminal):
    assert questions(place, on_terminal, b"-\x1b", b"-\xff", "-L") == 1
    assert questions(place, place.run, b"-\x1b", b"-\xff", "-L") == 1
