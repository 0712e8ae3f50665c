"""Every limit that can be seen from outside, just below, at and just above it.

Sources are made here and their results worked out by the rules in tests/expected.py. Golden cases hold
these, which are not repeated:

- nesting: conditionals/nesting_of_19_is_allowed, nesting_of_20_is_reported_and_balanced (#ifdef)
- names: line/names_of_127_and_128_characters_differ,
  label_is_cut_after_128_characters_and_the_rest_is_the_operation,
  expressions/name_of_128_characters_is_accepted, symbols/names_of_128_characters_differ_in_the_last
- words of 63 and 64: directives/very_long_word_is_an_illegal_mnemonic
- work buffer: conditionals/name_is_cut_by_the_512_character_work_buffer
- lines: source/line_of_4092_characters_is_not_too_long, line_of_4093_characters_is_too_long,
  line_of_4095_characters_leaves_its_newline_as_a_line, carriage_return_counts_for_the_length
- 119 and 125 bytes of a line: listing/at_most_120_bytes_of_a_line_are_listed
- 28 to 31 bytes: records/thirty_bytes_..., twenty_nine_bytes_..., twenty_eight_bytes_fill_a_record
- C rows: records/c_array_of_1_byte, _15_, _16_, _17_ and _32_bytes
- symbols: symbols/table_holds_39800_names, label_39801_ends_the_run,
  equ_name_39801_ends_the_run_before_any_output
- source names of 256 and 257: command_line/source_name_of_256_characters_is_opened and _257_
- errors: diagnostics/255_errors_are_the_exit_status, 256_errors_exit_with_zero,
  257_errors_exit_with_one
- bounds: instructions/branch_displacement_... and operand_byte_..., data/fcb_values_that_fit
"""

import itertools

import pytest
import running
from expected import (
    LISTING_HEADER,
    c_array,
    counted,
    fcb,
    listed,
    records,
    script_of_bytes,
    script_of_records,
)

TIME_LIMIT_SECONDS = 120
NAME = "prog.szirpa"
NO_ERRORS = b"-- No errors.\n"
FILE_HEADER = b'---- File: "prog.szirpa"\n'


class Run:
    """A finished run: standard output, status and the files it left, without the source."""

    def __init__(self, directory, process):
        self.path = bytes(directory / NAME)
        self.out = process.stdout
        self.status = process.returncode
        self.files = running.files_below(directory)
        self.files.pop(NAME, None)

    def message(self, line, kind, text):
        return b"%s (%d) %s: %s\n" % (self.path, line, kind, text)

    def errors(self, messages):
        """Standard output of a run whose errors are (line, text)."""
        lines = [self.message(line, b"Error", text) for line, text in messages]
        return b"".join(lines) + b"-- %d error(s).\n" % len(lines)


@pytest.fixture(name="assemble")
def assemble_in_tmp_path(program, tmp_path):
    directory = tmp_path.resolve()

    def run(source, *arguments, operand=NAME):
        (directory / NAME).write_bytes(source)
        process = running.run(directory, program, *arguments, operand, timeout=TIME_LIMIT_SECONDS)
        assert process.stderr == b""
        return Run(directory, process)

    return run


def outputs(blocks, entry):
    text = records(blocks, entry)
    return {"prog.s19": text, "prog.fmem": script_of_records("prog.fmem", text)}


def assert_clean(run, blocks, entry):
    assert (run.out, run.status) == (NO_ERRORS, 0)
    assert run.files == outputs(blocks, entry)


def assert_errors(run, messages, blocks):
    assert (run.out, run.status) == (run.errors(messages), len(messages) % 256)
    assert run.files == {"prog.fmem": script_of_bytes("prog.fmem", blocks)}


# ---- Nesting ------------------------------------------------------------------------------------

OPENINGS = {
    "if": (b"##if 1", b"#if too deeply nested"),
    "ifdef": (b"#ifdef VAL", b"#if too deeply nested"),
    "ifndef": (b"#ifndef NEVER", b"#ifndef too deeply nested"),
}
NESTED_IN_GOLDEN = {("ifdef", 19, False), ("ifdef", 20, False)}
NESTINGS = [
    nesting
    for nesting in itertools.product(OPENINGS, [18, 19, 20, 21], [False, True])
    if nesting not in NESTED_IN_GOLDEN
]


@pytest.mark.parametrize("word,depth,skipped", NESTINGS)
def test_nesting_of_19_is_the_deepest(assemble, word, depth, skipped):
    opening, message = OPENINGS[word]
    first = b"##if 0" if skipped else opening
    lines = [b" ORG 0", b"#define VAL", first, *[opening] * (depth - 1)]
    lines += [b" FCB 1", *[b"#endif"] * depth, b" FCB 2", b""]
    run = assemble(b"\n".join(lines))
    data = b"\x02" if skipped else b"\x01\x02"
    if depth <= 19:
        assert_clean(run, [(0, data)], 0)
    else:
        # The first opening stands in line 3.
        assert_errors(run, [(2 + level, message) for level in range(20, depth + 1)], [(0, data)])


# ---- Names --------------------------------------------------------------------------------------


def symbol_table(rows):
    lines = [b"\t%04X\t%s\n" % (value, name) for name, value in rows]
    return b"\n--\tSYMBOL TABLE:\n--\tVALUE   \tSYMBOL \n" + b"".join(lines)


@pytest.mark.parametrize("length", [127, 128, 129])
def test_name_of_option_d_is_stored_whole(assemble, length):
    name = b"N" * length
    run = assemble(b" ORG 0\n FCB 1\n", "-S", "-D", name)
    assert run.out == symbol_table([(name, 0)]) + NO_ERRORS
    assert run.files == outputs([(0, b"\x01")], 0)


@pytest.mark.parametrize("length", [127, 128, 129])
def test_name_in_an_expression_is_read_to_128_characters(assemble, length):
    name = b"N" * length
    run = assemble(b" ORG 0\n FCB 1\n FCB " + name + b"\n", "-D", name)
    if length <= 128:
        assert_clean(run, [(0, b"\x01\x00")], 0)
    else:
        # The 129th character is an operand behind an operand.
        assert_errors(run, [(3, b"Missing operator, Position[133]")], [(0, b"\x01")])


@pytest.mark.parametrize("length", [127, 128])
def test_undefined_name_is_reported_whole(assemble, length):
    name = b"N" * length
    run = assemble(b" ORG 0\n FCB " + name + b"\n")
    assert_errors(run, [(2, b"Undefined symbol '%s'" % name)], [(0, b"\x00")])


@pytest.mark.parametrize("length", [127, 128, 129])
def test_conditional_words_take_names_whole(assemble, length):
    name, shorter = b"N" * length, b"N" * (length - 1)
    source = b" ORG 0\n#define %s 7\n#ifdef %s\n FCB 1\n#endif\n#ifdef %s\n FCB 2\n#endif\n"
    assert_clean(assemble(source % (name, name, shorter)), [(0, b"\x01")], 0)


@pytest.mark.parametrize("length", [127, 128, 129])
def test_end_reads_128_characters_of_its_name(assemble, length):
    label = b"E" * 128
    run = assemble(b" ORG $10\n NOP\n%s NOP\n END %s\n" % (label, b"E" * length))
    assert_clean(run, [(0x10, b"\x00\x00")], 0x10 if length < 128 else 0x11)


# ---- Words --------------------------------------------------------------------------------------


@pytest.mark.parametrize("length", [62, 65])
def test_long_word_is_no_operation(assemble, length):
    run = assemble(b" ORG 0\n %s $20\n FCB 1\n" % (b"ORG" + b"G" * (length - 3)))
    assert_errors(run, [(2, b"Illegal mnemonic")], [(0, b"\x01")])


# ---- Work buffer of conditional words: 512 characters behind the word ---------------------------


@pytest.mark.parametrize("last,value", [(511, 12), (512, 12), (513, 1), (514, 0)])
def test_value_of_define_is_cut_behind_512_characters(assemble, last, value):
    rest = b" N" + b" " * (last - 4) + b"12"
    assert len(rest) == last
    run = assemble(b"#define%s\n ORG 0\n FCB N\n" % rest)
    assert_clean(run, [(0, bytes([value]))], 0)


@pytest.mark.parametrize("last,value", [(511, 1), (512, 1), (513, 2), (514, 2)])
def test_expression_of_if_is_cut_behind_512_characters(assemble, last, value):
    rest = b" " + b"0" * (last - 2) + b"1"
    assert len(rest) == last
    run = assemble(b" ORG 0\n##if%s\n FCB 1\n#else\n FCB 2\n#endif\n" % rest)
    assert_clean(run, [(0, bytes([value]))], 0)


@pytest.mark.parametrize("place,value", [(511, 1), (512, 1), (513, 2)])
def test_name_behind_512_characters_is_empty(assemble, place, value):
    source = b" ORG 0\n#define V\n#ifdef%sV\n FCB 1\n#else\n FCB 2\n#endif\n"
    assert_clean(assemble(source % (b" " * (place - 1))), [(0, bytes([value]))], 0)


# ---- Lines --------------------------------------------------------------------------------------


@pytest.mark.parametrize("length", [4091, 4094, 4096, 4097, 4095 + 127, 4095 + 128])
def test_line_is_read_in_pieces_of_4095_characters(assemble, length):
    line = b";" + b"L" * (length - 1) + b"\n"
    run = assemble(b" ORG 0\n" + line + b" FCB 7\n", "-L", "-w")
    warned = length + 1 > 4093
    text = b"Source line is to long"
    lines = [listed(1, b" ORG 0\n", 0), FILE_HEADER]
    if warned:
        lines.append(b'"prog.szirpa" LINE: 2,WARNING: %s\n' % text)
    lines.append(listed(2, line[:4095]))
    number = 3
    if line[4095:]:
        # The rest is a label of its own.
        lines.append(listed(3, line[4095:], 0))
        number = 4
    lines.append(listed(number, b" FCB 7\n", 0, b"\x07"))
    warning = run.message(2, b"Warning", text) + b"-- No errors.\n1 warning(s).\n"
    assert (run.out, run.status) == (warning if warned else b"No errors.\n", 0)
    listing = LISTING_HEADER % b"prog.lst" + b"".join(lines)
    assert run.files == outputs([(0, b"\x07")], 0) | {"prog.lst": listing}


# ---- Bytes of a line in the listing -------------------------------------------------------------


def assert_listed(run, line, data):
    listing = LISTING_HEADER % b"prog.lst" + listed(1, b" ORG 0\n", 0) + FILE_HEADER
    assert run.files["prog.lst"] == listing + listed(2, line, 0, data)
    assert run.out == NO_ERRORS


@pytest.mark.parametrize("count", [5, 6, 7, 11, 12, 13, 114, 118, 120, 121, 122, 126, 127, 240])
def test_fcb_lists_at_most_120_bytes(assemble, count):
    line = fcb(counted(count))
    run = assemble(b" ORG 0\n" + line, "-L")
    assert_listed(run, line, counted(count))
    assert run.files["prog.s19"] == records([(0, counted(count))], 0)


@pytest.mark.parametrize("count", [119, 120, 121])
def test_fcs_lists_at_most_120_bytes(assemble, count):
    text = bytes(0x41 + index % 26 for index in range(count))
    line = b' FCS "%s"\n' % text
    assert_listed(assemble(b" ORG 0\n" + line, "-L"), line, text)


@pytest.mark.parametrize("count", [1, 119, 120, 121])
def test_rmb_lists_one_byte(assemble, count):
    line = b" RMB %d\n" % count
    run = assemble(b" ORG 0\n" + line, "-L")
    assert_listed(run, line, b"\x00")
    assert run.files["prog.s19"] == records([(0, bytes(count))], 0)


# ---- Records and C rows -------------------------------------------------------------------------

BASES = [0x10, 0x100, 0x10000, 0x123456, 0x1000000, 0x12345678]


@pytest.mark.parametrize("base", BASES, ids=[f"{base:X}" for base in BASES])
@pytest.mark.parametrize("rest", [-1, 0, 1])
@pytest.mark.parametrize("full", [1, 2, 3])
def test_records_are_filled_to_32_bytes(assemble, base, full, rest):
    width = 4 if base >> 24 else 3 if base >> 16 else 2
    data = counted(full * (32 - width) + rest)
    run = assemble(b" ORG $%X\n" % base + fcb(data))
    assert_clean(run, [(base, data)], base)


@pytest.mark.parametrize("count", [0, 2, 14, 31, 33, 47, 48, 49, 255, 256, 257])
def test_c_array_has_rows_of_16(assemble, count):
    data = counted(count)
    run = assemble(b" ORG 0\n" + (fcb(data) if data else b""), "-L", "-A")
    assert run.files["prog_cout.c"] == c_array(data)
    assert run.out == NO_ERRORS


# ---- Addresses at the borders of the widths -----------------------------------------------------

ADDRESSES = [0, 1, 0xFE, 0xFF, 0x100, 0x101]
ADDRESSES += [border + step for border in (1 << 16, 1 << 24, 1 << 31) for step in (-2, -1, 0, 1)]
ADDRESSES += [(1 << 32) - 2, (1 << 32) - 1]


@pytest.mark.parametrize("count", [1, 2, 31])
@pytest.mark.parametrize("address", ADDRESSES, ids=[f"{address:X}" for address in ADDRESSES])
def test_width_follows_the_address(assemble, address, count):
    line, data = fcb(counted(count)), counted(count)
    origin = b" ORG $%X\n" % address
    run = assemble(origin + line + b" FCB 9\n", "-L")
    assert (run.out, run.status) == (NO_ERRORS, 0)
    listing = (
        LISTING_HEADER % b"prog.lst"
        + listed(1, origin, address)
        + FILE_HEADER
        + listed(2, line, address, data)
        + listed(3, b" FCB 9\n", address + count, b"\x09")
    )
    assert run.files == outputs([(address, data + b"\x09")], address) | {"prog.lst": listing}


@pytest.mark.parametrize("origin", [b"$100000005", b"4294967301", b"(1<<32)+5", b"5-(1<<32)"])
def test_addresses_have_32_bits(assemble, origin):
    assert_clean(assemble(b" ORG %s\n FCB 1\n" % origin), [(5, b"\x01")], 5)


# ---- Displacements and truncation ---------------------------------------------------------------


@pytest.mark.parametrize("base", [0, 0x80, 0x1000, 0xFF00])
def test_every_displacement_of_8_bits(assemble, base):
    near = range(-128, 128)
    source = b"".join(b" ORG %d\n BRA %d\n" % (base, base + 2 + step) for step in near)
    blocks = [(base, bytes([0x21, step % 256])) for step in near]
    assert_clean(assemble(source), blocks, base)


@pytest.mark.parametrize("base", [0, 0x80, 0x1000, 0xFF00])
def test_displacements_beyond_8_bits(assemble, base):
    steps = [-258, -257, -256, -255, -131, -130, -129, -128, 127, 128, 129, 254, 255, 256, 257]
    source = b"".join(b" ORG %d\n BNE %d\n" % (base, base + 2 + step) for step in steps)
    messages = [
        (2 * index + 2, b"Displacement (0x%X) is out of range" % (step % (1 << 32)))
        for index, step in enumerate(steps)
        if not -128 <= step <= 127
    ]
    blocks = [(base, bytes([0x25, step % 256])) for step in steps]
    assert_errors(assemble(source), messages, blocks)


@pytest.mark.parametrize(
    "line,opcode",
    [(b" FCB %d", b""), (b" LDA #%d", b"\xf0"), (b" ADDA %d,Y", b"\xd6"), (b" CLR %d", b"\x35")],
    ids=["fcb", "lda", "adda", "clr"],
)
def test_values_of_one_byte(assemble, line, opcode):
    fitting = range(-256, 256)
    source = b" ORG 0\n" + b"".join(line % value + b"\n" for value in fitting)
    data = b"".join(opcode + bytes([value % 256]) for value in fitting)
    assert_clean(assemble(source), [(0, data)], 0)

    values = [-65537, -65536, -512, -258, -257, -256, 255, 256, 257, 511, 512, 65535, 65536]
    source = b"".join(b" ORG 0\n" + line % value + b"\n" for value in values)
    messages = [
        (2 * index + 2, b"Value (0x%X) is truncated" % (value % (1 << 32)))
        for index, value in enumerate(values)
        if not -256 <= value <= 255
    ]
    run = assemble(source)
    # The first run's S-records are gone: these errors are this run's.
    assert_errors(run, messages, [(0, opcode + bytes([value % 256])) for value in values])


# ---- Symbols ------------------------------------------------------------------------------------

OVERFLOW = b"(F1010) Symbol table overflow\nTerminated due to fatal error(s)"
EMPTY_OUTPUTS = {"prog.s19": b"", "prog.fmem": b""}
SYMBOL_LINES = {
    # What enters a name, and what a run that ends at it leaves: conditional words and EQU enter
    # their names before the outputs are made.
    "label": (b"N%05d\n", EMPTY_OUTPUTS),
    "equ": (b"N%05d EQU 5\n", {}),
    "define": (b"#define N%05d\n", {}),
    "ifdef": (b"#ifdef N%05d\n#endif\n", {}),
}
FULL_IN_GOLDEN = {("label", 39800, 0), ("label", 39801, 0), ("equ", 39801, 0)}
TABLES = [
    table
    for table in itertools.product(SYMBOL_LINES, [39799, 39800, 39801], [0, 1])
    if table not in FULL_IN_GOLDEN
]


@pytest.mark.parametrize("kind,count,optional", TABLES)
def test_table_holds_39800_names(assemble, kind, count, optional):
    """Names of the source together with those of -D, here one or none."""
    line, left = SYMBOL_LINES[kind]
    source = b"".join(line % number for number in range(count - optional))
    run = assemble(source, *["-D", "Z"][: 2 * optional])
    if count <= 39800:
        assert_clean(run, [], 0)
    else:
        assert (run.out, run.status, run.files) == (OVERFLOW, 255, left)


# ---- Source names -------------------------------------------------------------------------------

TAIL = "/p.szirpa"


def directories(length):
    """A relative path of that length, no component longer than file systems allow."""
    parts = []
    while length > 101:
        parts.append("d" * 99)
        length -= 100
    return "/".join([*parts, "e" * length])


@pytest.mark.parametrize("length", [255, 256, 257, 1023, 1024])
@pytest.mark.parametrize("rooted", [False, True], ids=["relative", "rooted"])
def test_source_name_of_256_characters_is_the_longest(assemble, tmp_path, length, rooted):
    prefix = f"{tmp_path.resolve()}/" if rooted else ""
    name = prefix + directories(length - len(prefix) - len(TAIL)) + TAIL
    assert len(name) == length
    source = tmp_path / name
    source.parent.mkdir(parents=True)
    source.write_bytes(b" ORG 0\n FCB 5\n")
    run = assemble(b"", operand=name)
    left = {path: content for path, content in run.files.items() if not path.endswith(TAIL)}
    if length <= 256:
        text = records([(0, b"\x05")], 0)
        assert (run.out, run.status) == (NO_ERRORS, 0)
        assert left == {"p.s19": text, "p.fmem": script_of_records("p.fmem", text)}
    else:
        assert (run.out, run.status) == (b"HXzirpa: Can't open '%s'\n" % name.encode(), 1)
        assert left == {}


# ---- Fatal messages -----------------------------------------------------------------------------


@pytest.mark.parametrize("length", [1022, 1023, 1024, 1025, 1026, 2048])
def test_fatal_message_is_cut_behind_1024_characters(assemble, length):
    start, end = b"Cannot create output fil '", b"'"
    name = (b"none/" * length)[: length - len(start) - len(end) - 1] + b"x"
    text = start + name + end
    assert len(text) == length
    run = assemble(b" ORG 0\n", "-L", "-o", name)
    assert run.out == b"%s (0)Fatal error: %s\n" % (run.path, text[:1024])
    assert (run.status, run.files) == (1, {})


# ---- Include directories ------------------------------------------------------------------------


@pytest.mark.parametrize("count", [1, 20, 21, 22, 23])
@pytest.mark.parametrize("joined", [False, True], ids=["apart", "joined"])
def test_include_directory_22_is_ignored(assemble, tmp_path, count, joined):
    last = f"inc{count}"
    (tmp_path / last).mkdir()
    (tmp_path / last / "p.szirpa").write_bytes(b" ORG 0\n FCB 5\n")
    # Directories are probed with a backslash and opened with a slash.
    (tmp_path / f"{last}\\p.szirpa").write_bytes(b"")
    given = {f"{last}/p.szirpa", f"{last}\\p.szirpa"}
    options = []
    for number in range(1, count + 1):
        options += [f"-Iinc{number}"] if joined else ["-I", f"inc{number}"]
    run = assemble(b"", *options, operand="p.szirpa")
    left = {path: content for path, content in run.files.items() if path not in given}
    if count <= 21:
        text = records([(0, b"\x05")], 0)
        assert (run.out, run.status) == (NO_ERRORS, 0)
        assert left == {"p.s19": text, "p.fmem": script_of_records("p.fmem", text)}
    else:
        assert (run.out, run.status) == (b"HXzirpa: Can't open 'p.szirpa'\n", 1)
        assert left == {}


# ---- Number of errors ---------------------------------------------------------------------------


def as_16_bits(count):
    """The error counter is a signed 16-bit number."""
    return (count + 32768) % 65536 - 32768


@pytest.mark.parametrize("listing", [False, True], ids=["", "listed"])
@pytest.mark.parametrize("count", [254, 300, 32767, 32768, 32769, 65535, 65536, 65537])
def test_errors_are_counted_in_16_bits(assemble, count, listing):
    run = assemble(b" FOO\n" * count, *["-L"][: int(listing)])
    lines = range(1, count + 1)
    shown = as_16_bits(count)
    summary = b"-- %d error(s).\n" % shown if shown else NO_ERRORS
    told = b"".join(run.message(line, b"Error", b"Illegal mnemonic") for line in lines)
    # Not left to pytest, which would take minutes over the difference of megabytes.
    assert run.out == told + summary or pytest.fail(f"ends in {run.out[-200:]!r}")
    assert run.status == count % 256
    assert set(run.files) == {"prog.fmem"} | ({"prog.s19"} if not shown else set()) | (
        {"prog.lst"} if listing else set()
    )
    if not shown:
        assert run.files["prog.s19"] == records([], 0)
    if listing:
        parts = [LISTING_HEADER % b"prog.lst"]
        for line in lines:
            parts.append(b'"prog.szirpa" line %d, ERROR: Illegal mnemonic\n' % line)
            parts.append(listed(line, b" FOO\n", 0))
            if line == 1:
                parts.append(FILE_HEADER)
        if shown:
            parts.append(b"\n\n****** Total Errors: %d\n" % shown)
        text = run.files["prog.lst"]
        assert text == b"".join(parts) or pytest.fail(f"the listing ends in {text[-200:]!r}")


def test_65536_errors_count_as_none_for_the_summary_with_w(assemble):
    run = assemble(b" FOO\n" * 65536, "-w")
    assert run.out.endswith(b"Illegal mnemonic\nNo errors.\n")
    assert run.status == 0
