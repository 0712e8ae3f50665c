"""What the output files say about a few bytes in a row, written by the rules of each format."""

from golden_case import script_from_pairs

MOST_BYTES = 16  # so that every format needs one record only
START_RECORD_LENGTH = 4


def with_checksum(content, checksum):
    return (bytes(content) + bytes([checksum])).hex().upper()


def s_record(kind, address, data=b""):
    """Length, address and data, and the complement of their sum."""
    content = [2 + len(data) + 1, address >> 8, address & 0xFF, *data]
    return f"S{kind}{with_checksum(content, ~sum(content) & 0xFF)}\n"


def s_records(address, data):
    """A program that begins with its first byte."""
    assert len(data) <= MOST_BYTES
    return (s_record(1, address, data) + s_record(9, address)).encode()


def intel_record(kind, address, data):
    """Length, address, kind and data, and what makes their sum zero."""
    content = [len(data), address >> 8, address & 0xFF, kind, *data]
    return f":{with_checksum(content, -sum(content) & 0xFF)}\r\n"


def intel_hex(address, data):
    """The data, the start address and the end."""
    assert len(data) <= MOST_BYTES
    start = address.to_bytes(START_RECORD_LENGTH, "big")
    records = [intel_record(0, address, data), intel_record(3, 0, start), intel_record(1, 0, b"")]
    return "".join(records).encode()


def c_array(data):
    assert len(data) < MOST_BYTES
    values = ",".join(f"0x{byte:02X}" for byte in data)
    return f"const unsigned char algo[] = {{\n{values}\n}};\n".encode()


def script(name, address, data):
    return script_from_pairs(
        name, [(b"%02X" % (address + index), b"%02X" % byte) for index, byte in enumerate(data)]
    )
