"""Every message of the program has a row in the door's table, with an identifier of its own."""

import re

import program_messages

# What is printed without a format of a reporter, and has a row too.
OTHERS = {"(F1010) Symbol table overflow"}

ROW = re.compile(r"^    \{" + program_messages.LITERAL + r',\s*"([a-z-]+)",', re.MULTILINE)


def rows():
    table = (program_messages.ROOT / "door" / "messages.cpp").read_text()
    return [(program_messages.unescaped(text), name) for text, name in ROW.findall(table)]


def test_every_message_has_a_row_and_every_row_a_message():
    reported = (
        program_messages.errors() | program_messages.warnings() | program_messages.fatal_errors()
    )
    assert {text for text, _ in rows()} == reported | OTHERS


def test_no_message_and_no_identifier_stands_in_two_rows():
    texts, names = zip(*rows())
    assert len(set(texts)) == len(texts)
    assert len(set(names)) == len(names)
