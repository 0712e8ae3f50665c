"""Readers of the outputs, each on its own; what they find must agree.

They share nothing with the expectations of the golden cases but the command lines and the sources.
"""

import re

from running import BANNER

RECORD = re.compile(rb"S([0-9])((?:[0-9A-F]{2})+)")
ADDRESS_WIDTHS = {1: 2, 2: 3, 3: 4, 7: 4, 8: 3, 9: 2}
SCRIPT = re.compile(
    re.escape(BANNER) + rb"File: (?P<name>.*)\n"
    rb"\n # ClearAllMemory\n # ClearAllRegisters"
    rb"(?P<lines>(?:\n #setMemory  [0-9A-F]{2}=[0-9A-F]{2})*)"
)
ARRAY = re.compile(rb"const unsigned char algo\[\] = \{\n(?P<rows>(?:0x[0-9A-F]{2},?\n?)*)\};\n")
LISTED_LINE = re.compile(rb"(  |[0-9A-F]{2})((?: [0-9A-F]{2}|   ){6}) +([0-9]+)\. ")
LISTED_ROW = re.compile(rb"    ((?: [0-9A-F]{2}|   ){6})\n")
MESSAGE = re.compile(rb'"[^"\n]*" LINE: [0-9]+,WARNING: [^\n]*\n|---- File: "[^\n]*"\n')
LISTED_BYTES = 120
LINE_BUFFER = 4095


# ---- Command lines ------------------------------------------------------------------------------

PLAIN_OPTIONS = (b"-L", b"-S", b"-g", b"-A", b"-w")
WITH_ARGUMENT = (b"-d", b"-o", b"-D", b"-I", b"-C")


def split_command(arguments):
    """The options but those that only ask for outputs, and the source."""
    kept = []
    arguments = list(arguments)
    while arguments and arguments[0].startswith(b"-"):
        option = arguments.pop(0)
        if option in WITH_ARGUMENT and arguments:
            kept += [option, arguments.pop(0)]
        elif option not in PLAIN_OPTIONS:
            kept.append(option)
    return kept, arguments[0]


class Outputs:
    """The outputs of a run by what they are, None for those that are not there or no regular file.

    All but the S-record file have endings of their own; that one takes its name from -o.
    """

    def __init__(self, files):
        known = {"script": ".fmem", "listing": ".lst", "array": "_cout.c"}
        self.names = {
            kind: next((name for name in files if name.endswith(ending)), None)
            for kind, ending in known.items()
        }
        others = files.keys() - self.names.values()
        assert len(others) <= 1, others
        self.records = files[others.pop()] if others else None
        self.script, self.listing, self.array = (files.get(self.names[kind]) for kind in known)


# ---- S-records ----------------------------------------------------------------------------------


def split_debug(text):
    """The S-records, and the debug records behind them."""
    lines = text.splitlines(keepends=True)
    count = next((i for i, line in enumerate(lines) if line[:2] in (b"SX", b"SY")), len(lines))
    return b"".join(lines[:count]), b"".join(lines[count:])


def read_records(text):
    """[(type, address, data)]; every checksum and length is verified."""
    found = []
    assert text.endswith(b"\n")
    for line in text.splitlines():
        match = RECORD.fullmatch(line)
        assert match, f"no S-record: {line!r}"
        kind, content = int(match[1]), bytes.fromhex(match[2].decode())
        assert kind in ADDRESS_WIDTHS, f"type of {line!r}"
        assert content[0] == len(content) - 1, f"length of {line!r}"
        assert sum(content) % 256 == 0xFF, f"checksum of {line!r}"
        width = ADDRESS_WIDTHS[kind]
        address = int.from_bytes(content[1 : 1 + width], "big")
        assert width == 2 or address >> 8 * (width - 1), f"{line!r} is wider than its address"
        data = content[1 + width : -1]
        assert width + len(data) <= 32, f"{line!r} is too long"
        found.append((kind, address, data))
    assert [kind > 3 for kind, _, _ in found] == [False] * (len(found) - 1) + [True]
    assert all(data for _, _, data in found[:-1]), "a data record without data"
    assert found[-1][2] == b"", "an end record with data"
    return found


def bytes_of_records(found):
    return b"".join(data for _, _, data in found)


# ---- The other outputs --------------------------------------------------------------------------


def read_script(text):
    """The name in the head, and [(address, byte)]."""
    match = SCRIPT.fullmatch(text)
    assert match, "no script"
    pairs = [line[-5:].split(b"=") for line in match["lines"].split(b"\n")[1:]]
    return match["name"], [(int(address, 16), int(byte, 16)) for address, byte in pairs]


def script_of_records(found):
    """What the script sets: it takes every address for one of two bytes."""
    pairs = []
    for kind, address, data in found:
        content = address.to_bytes(ADDRESS_WIDTHS[kind], "big") + data
        pairs += [((content[1] + i) % 256, byte) for i, byte in enumerate(content[2:])]
    return pairs


def read_array(text):
    match = ARRAY.fullmatch(text)
    assert match, "no C array"
    rows = match["rows"].splitlines()
    values = [row.rstrip(b",").split(b",") for row in rows]
    assert all(len(row) == 16 for row in values[:-1]), "a short row"
    assert all(row.endswith(b",") for row in rows[:-1])
    return bytes(int(value, 16) for row in values for value in row)


def lines_as_read(source):
    """What the line reader makes of a source: pieces, line feeds alone, nothing behind a NUL."""
    lines = []
    for line in re.findall(rb"[^\n]*\n|[^\n]+", source):
        for start in range(0, len(line), LINE_BUFFER):
            piece = line[start : start + LINE_BUFFER].partition(b"\0")[0]
            if len(piece) >= 2 and piece[-2:-1] == b"\r":
                piece = piece[:-2] + b"\n"
            lines.append(piece)
    return lines


def read_listing(text, source):
    """[(text, address or None, listed bytes)] of the lines that are listed."""
    lines, found, position = lines_as_read(source), [], text.index(b"\nFile: ") + 1
    position = text.index(b"\n", position) + 1
    while position < len(text) and not text.startswith(b"\n--\tSYMBOL TABLE:\n", position):
        message = MESSAGE.match(text, position)
        if message:
            position = message.end()
            continue
        match = LISTED_LINE.match(text, position)
        assert match, f"no listing line: {text[position : position + 60]!r}"
        line = lines[int(match[3]) - 1]
        assert text.startswith(line, match.end()), f"the text of line {int(match[3])} differs"
        position = match.end() + len(line)
        data = bytes.fromhex(match[2].decode())
        row = LISTED_ROW.match(text, position)
        while row:
            data += bytes.fromhex(row[1].decode())
            position = row.end()
            row = LISTED_ROW.match(text, position)
        found.append((line, None if match[1] == b"  " else int(match[1], 16), data))
    return found


def pattern_of_listing(found):
    """A pattern of the program's bytes: RMB lists one of its zeros, and 120 bytes may be cut."""
    parts = []
    for line, _, data in found:
        parts.append(re.escape(data))
        if len(data) == LISTED_BYTES:
            parts.append(rb"[\x00-\xff]*")
        elif data == b"\0" and re.search(rb"(?i)\brmb\b", line):
            parts.append(rb"\x00*")
    return re.compile(b"".join(parts))
