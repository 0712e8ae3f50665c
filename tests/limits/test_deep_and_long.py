"""Deep expressions on a small stack, and long inputs in linear time.

A line holds at most 4,095 characters, five of which are taken by " FCB ". The time is the child's
user time, the best of three, of one input and of its double.
"""

import os
import resource
import subprocess

import pytest
import running
from expected import records, script_of_bytes, script_of_records
from running import files_below

NAME = "prog.szirpa"
NO_ERRORS = b"-- No errors.\n"
SMALL_STACK = 256 << 10
TIME_LIMIT_SECONDS = 300
REPETITIONS = 3
# The clock of user time is coarse; less than this says nothing.
CLOCK_SECONDS = 0.03


@pytest.fixture(name="directory")
def working_directory(tmp_path):
    return tmp_path.resolve()


def small_stack():
    resource.setrlimit(resource.RLIMIT_STACK, (SMALL_STACK, SMALL_STACK))


def run_in(directory, *command, **options):
    return running.run(directory, *command, timeout=TIME_LIMIT_SECONDS, **options)


# ---- Deep ---------------------------------------------------------------------------------------

LONGEST = 4095 - len(" FCB ")


def alternating(depth):
    """1-(1-(...-(1))): the outermost of an even number of subtractions is 1 again."""
    return 1 - depth % 2


# Name, operand and the byte it yields.
DEEP = [
    ("parentheses", b"(" * 2044 + b"9" + b")" * 2044, 9),
    ("closed_by_the_end_of_a_sum", b"(" * 2043 + b"1+8" + b")" * 2043, 9),
    ("differences", b"1-(" * 1022 + b"1" + b")" * 1022, alternating(1022)),
    ("odd_differences", b"1-(" * 1021 + b"1" + b")" * 1021, alternating(1021)),
    ("even_minus", b"-" * 4088 + b"1", 1),
    ("odd_minus", b"-" * 4089 + b"1", 0xFF),
    ("even_complement", b"~" * 4088 + b"1", 1),
    ("odd_complement", b"~" * 4089 + b"1", 0xFE),
    ("even_not", b"!" * 4088 + b"5", 1),
    ("odd_not", b"!" * 4089 + b"5", 0),
    ("quotients", b"1/" * 2044 + b"1", 1),
    ("minus_in_parentheses", b"-(" * 1362 + b"3" + b")" * 1362, 3),
    ("complement_in_parentheses", b"~(" * 1361 + b"3" + b")" * 1361, 0xFC),
]


def assemble_deep(program, directory, operand):
    assert len(operand) <= LONGEST
    (directory / NAME).write_bytes(b" ORG 0\n FCB " + operand + b"\n FCB 2\n")
    process = run_in(directory, program, NAME, preexec_fn=small_stack)
    files = files_below(directory)
    del files[NAME]
    return process, files


@pytest.mark.parametrize("operand,value", [case[1:] for case in DEEP], ids=[c[0] for c in DEEP])
def test_deep_expression_on_a_small_stack(program, directory, operand, value):
    process, files = assemble_deep(program, directory, operand)
    text = records([(0, bytes([value, 2]))], 0)
    assert (process.stdout, process.stderr, process.returncode) == (NO_ERRORS, b"", 0)
    assert files == {"prog.s19": text, "prog.fmem": script_of_records("prog.fmem", text)}


# Name, operand and the message without its position.
UNFINISHED = [
    ("parentheses", b"(" * LONGEST, b"Missing Parenthesis"),
    ("minus", b"-" * LONGEST, b"Unterminated expression"),
    ("complement", b"~" * LONGEST, b"Unterminated expression"),
    ("not", b"!" * LONGEST, b"Unterminated expression"),
    ("minus_and_parentheses", b"-(" * (LONGEST // 2), b"Missing Parenthesis"),
]


@pytest.mark.parametrize(
    "operand,message", [case[1:] for case in UNFINISHED], ids=[case[0] for case in UNFINISHED]
)
def test_unfinished_deep_expression_on_a_small_stack(program, directory, operand, message):
    assert len(operand) == 4090
    process, files = assemble_deep(program, directory, operand)
    # The line feed comes as a line of its own, so the text ends at column 4095.
    path = bytes(directory / NAME)
    told = b"%s (2) Error: %s, Position[4095]\n-- 1 error(s).\n" % (path, message)
    assert (process.stdout, process.stderr, process.returncode) == (told, b"", 1)
    assert files == {"prog.fmem": script_of_bytes("prog.fmem", [(0, b"\x02")])}


def test_unexpected_parentheses_on_a_small_stack(program, directory):
    process, files = assemble_deep(program, directory, b")" * LONGEST)
    told = b"%s (2) Error: Unexpected Parenthesis, Position[5]\n" % bytes(directory / NAME)
    assert (process.stdout, process.returncode) == (told + b"-- 1 error(s).\n", 1)
    assert files == {"prog.fmem": script_of_bytes("prog.fmem", [(0, b"\x02")])}


# ---- Long ---------------------------------------------------------------------------------------


def user_seconds(directory, command):
    """User time of one run, which must end without errors."""
    with open(os.devnull, "rb+") as null:
        process = subprocess.Popen(command, cwd=directory, stdin=null, stdout=null, stderr=null)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    assert process.returncode == 0
    return usage.ru_utime


def assert_linear(directory, single, double):
    """Twice the input takes less than three times the time."""
    once, twice = (
        min(user_seconds(directory, command) for _ in range(REPETITIONS))
        for command in (single, double)
    )
    assert twice < 3 * max(once, CLOCK_SECONDS), f"{once} s, and {twice} s for the double"


def many_instructions(count):
    return b" ORG 0\n" + b" LDA #5 ; five\n" * count


def many_comments(count):
    return b"; a comment in the first column\n" * count


def many_references(count):
    return b" ORG 0\nHERE NOP\n" + b"#ifdef HERE\n LDA HERE+1-1\n#endif\n" * (count // 3)


def one_line_of_blanks(count):
    return b" ORG 0\n;" + b" " * (count - 1) + b"\n FCB 7\n"


def many_names(count):
    """Names of three hash values only, where a walk along their chains would be quadratic."""
    # Each digit and its complement to 9: the sum of the characters is always the same.
    numbers = [f"{number:04}{9999 - number:04}" for number in range(10000)]
    names = [head + number for number in numbers for head in ("L", "LI", "LIP")]
    return "".join(f"{name}\n" for name in names[:count]).encode()


LONG = {
    # Maker of the source, and its smaller size.
    "instructions": (many_instructions, 500_000),
    "comments": (many_comments, 500_000),
    "references": (many_references, 500_000),
    "line": (one_line_of_blanks, 32 << 20),
    "names": (many_names, 15_000),
}


@pytest.mark.parametrize("kind", LONG)
def test_long_source_takes_linear_time(program, directory, kind):
    make, size = LONG[kind]
    for name, count in (("one.szirpa", size), ("two.szirpa", 2 * size)):
        (directory / name).write_bytes(make(count))
    assert_linear(directory, [program, "one.szirpa"], [program, "two.szirpa"])
    for name in ("one", "two"):
        for suffix in (".szirpa", ".s19", ".fmem"):
            (directory / (name + suffix)).unlink()


EVERY_OUTPUT = ["-L", "-A", "-S", "-g", "-w"]


@pytest.mark.parametrize("arguments", [["-L"], ["-g"], EVERY_OUTPUT], ids=" ".join)
def test_long_source_takes_linear_time_with_every_output(program, directory, arguments):
    for name, count in (("one.szirpa", 300_000), ("two.szirpa", 600_000)):
        (directory / name).write_bytes(many_instructions(count))
    command = [program, *arguments]
    assert_linear(directory, [*command, "one.szirpa"], [*command, "two.szirpa"])
    for path in directory.iterdir():
        path.unlink()


@pytest.mark.parametrize("option", ["-I", "-Id", "-dx", "-S1", "-DN"])
def test_hundred_thousand_options_take_linear_time(program, directory, option):
    (directory / NAME).write_bytes(b" ORG 0\n FCB 7\n")
    single, double = ([option] * count + [NAME] for count in (50_000, 100_000))
    assert_linear(directory, [program, *single], [program, *double])
    assert (directory / "prog.s19").read_bytes() == records([(0, b"\x07")], 0)


def test_a_million_lines(program, directory):
    (directory / NAME).write_bytes(b" ORG 0\n" + b" NOP\n; comment\n" * 500_000 + b" FOO\n")
    process = run_in(directory, program, NAME)
    told = b"%s (1000002) Error: Illegal mnemonic\n" % bytes(directory / NAME)
    assert process.stdout == told + b"-- 1 error(s).\n"
    assert process.returncode == 1
    assert not (directory / "prog.s19").exists()


def test_a_million_bytes_of_program(program, directory):
    (directory / NAME).write_bytes(b" ORG 0\n" + b" NOP\n" * 1_000_000)
    process = run_in(directory, program, NAME)
    assert (process.stdout, process.returncode) == (NO_ERRORS, 0)
    text = records([(0, bytes(1_000_000))], 0)
    assert (directory / "prog.s19").read_bytes() == text or pytest.fail("other S-records")


@pytest.mark.parametrize("filler", [b" ", b"x"], ids=["blanks", "letters"])
def test_a_line_of_a_megabyte(program, directory, filler):
    size = 1 << 20
    (directory / NAME).write_bytes(b" ORG 0\n;" + filler * (size - 1) + b"\n FCB 7\n FOO\n")
    process = run_in(directory, program, "-w", NAME)
    # Pieces of 4,095 characters; the last one holds the line feed.
    pieces, rest = divmod(size, 4095)
    assert rest > 128
    path = bytes(directory / NAME)
    told = []
    for line in range(2, 2 + pieces):
        told.append(b"%s (%d) Warning: Source line is to long\n" % (path, line))
        if filler == b"x" and line > 2:
            # 128 letters are a label, the others an operation.
            told.append(b"%s (%d) Error: Illegal mnemonic\n" % (path, line))
    if filler == b"x":
        told.append(b"%s (%d) Error: Illegal mnemonic\n" % (path, 2 + pieces))
    told.append(b"%s (%d) Error: Illegal mnemonic\n" % (path, 4 + pieces))
    errors = sum(b" Error: " in line for line in told)
    told.append(b"-- %d error(s).\n%d warning(s).\n" % (errors, pieces))
    assert process.stdout == b"".join(told)
    assert process.returncode == errors % 256
    expected = script_of_bytes("prog.fmem", [(0, b"\x07")])
    assert files_below(directory).keys() == {NAME, "prog.fmem"}
    assert (directory / "prog.fmem").read_bytes() == expected
