"""What a program of given bytes must look like in each output, worked out by short rules."""

from golden_case import pairs_of_records, script_from_pairs
from running import BANNER

LISTING_HEADER = BANNER + b"\n\nFile: %s\n"
RECORD_BYTES = 32
LISTED_BYTES = 120
LISTED_A_ROW = 6
ARRAY_ROW = 16


def address_width(address):
    """Bytes of the narrowest record address."""
    return 4 if address >> 24 else 3 if address >> 16 else 2


def record(kind, width, address, data):
    content = address.to_bytes(width, "big") + data
    length = len(content) + 1
    checksum = 0xFF - (length + sum(content)) % 256
    return b"S%d%02X%s%02X\n" % (kind, length, content.hex().upper().encode(), checksum)


def records(blocks, entry):
    """The S-record file of (address, bytes) blocks, each begun by an ORG."""
    lines = []
    for address, data in blocks:
        while data:
            address %= 1 << 32
            width = address_width(address)
            room = RECORD_BYTES - width
            lines.append(record(width - 1, width, address, data[:room]))
            address, data = address + room, data[room:]
    width = address_width(entry)
    lines.append(record(11 - width, width, entry, b""))
    return b"".join(lines)


def s_records(address, data):
    """A program that begins with its first byte."""
    return records([(address, data)], address)


def intel_record(kind, address, data):
    """Length, address, kind and data, and what makes their sum zero."""
    content = bytes([len(data), address >> 8, address & 0xFF, kind, *data])
    return b":%s%02X\r\n" % (content.hex().upper().encode(), -sum(content) & 0xFF)


def intel_hex(address, data):
    """At most 16 bytes, the start address and the end."""
    start = address.to_bytes(4, "big")
    return intel_record(0, address, data) + intel_record(3, 0, start) + intel_record(1, 0, b"")


def script_of_records(name, text):
    return script_from_pairs(name, pairs_of_records(text))


def script_of_bytes(name, blocks):
    """The script of a run without S-records; 16-bit addresses."""
    text = b"".join(record(1, 2, address, data[:250]) for address, data in blocks)
    return script_of_records(name, text)


def columns(data):
    shown = b"".join(b" %02X" % byte for byte in data[:LISTED_A_ROW])
    return shown.ljust(3 * LISTED_A_ROW)


def listed(number, text, address=None, data=b""):
    """The listing of one line as read; no address: the column stays blank."""
    data = data[:LISTED_BYTES]
    field = b"  " if address is None else b"%02X" % (address % 256)
    lines = [field + columns(data) + b" %4d. " % number + text]
    if len(data) > LISTED_A_ROW:
        # A row follows as long as the count reaches its start, so a last one may be blank.
        for start in range(LISTED_A_ROW, len(data) + 1, LISTED_A_ROW):
            lines.append(b"    " + columns(data[start:]) + b"\n")
    return b"".join(lines)


def c_array(data):
    rows = [data[start : start + ARRAY_ROW] for start in range(0, len(data), ARRAY_ROW)]
    text = b"const unsigned char algo[] = {\n"
    for row in rows:
        text += b",".join(b"0x%02X" % byte for byte in row)
        text += b",\n" if len(row) == ARRAY_ROW else b"\n"
    return text + b"};\n"


def fcb(data):
    return b" FCB " + b",".join(b"%d" % byte for byte in data) + b"\n"


def counted(length):
    """Bytes that differ from their neighbours."""
    return bytes(index % 251 for index in range(length))
