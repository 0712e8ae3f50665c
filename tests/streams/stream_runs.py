"""A small source, what its outputs hold by the rules, and runs of the program in one directory."""

import contextlib
import os
import re
import subprocess

import pytest
import running
from expected import LISTING_HEADER, listed
from running import BANNER

GOOD = b" ORG $10\n LDA #5\n"
BAD = GOOD + b" BAD\n WORSE\n"
# Longer than any output, so that a file which is not cut shows.
OLD = b"old " * 1000

EVERY_OUTPUT = ["-L", "-A"]
RECORDS, LISTING, ARRAY, SCRIPT = OUTPUTS = ["prog.s19", "prog.lst", "prog_cout.c", "prog.fmem"]
# These replace what has their name; the S-record file is written through a link.
REPLACING = [LISTING, ARRAY, SCRIPT]

TEMPORARY = re.compile(r"HXzirpa-\d+-\d+\.tmp")

SUMMARY = b"-- No errors.\n"


HEADED_LINES = (
    LISTING_HEADER % b"prog.lst"
    + listed(1, b" ORG $10\n", 0x10)
    + b'---- File: "prog.szirpa"\n'
    + listed(2, b" LDA #5\n", 0x10, b"\xf0\x05")
)
WHOLE = {
    RECORDS: b"S1050010F005F5\nS9030010EC\n",
    LISTING: HEADED_LINES,
    ARRAY: b"const unsigned char algo[] = {\n0xF0,0x05\n};\n",
    SCRIPT: BANNER
    + b"File: prog.fmem\n\n # ClearAllMemory\n # ClearAllRegisters"
    + b"\n #setMemory  10=F0\n #setMemory  11=05",
}
WHOLE_AFTER_ERRORS = {
    **WHOLE,
    LISTING: HEADED_LINES
    + b'"prog.szirpa" line 3, ERROR: Illegal mnemonic\n'
    + listed(3, b" BAD\n", 0x12)
    + b'"prog.szirpa" line 4, ERROR: Illegal mnemonic\n'
    + listed(4, b" WORSE\n", 0x12)
    + b"\n\n****** Total Errors: 2\n",
}
del WHOLE_AFTER_ERRORS[RECORDS]

ERRORS = pytest.mark.parametrize("errors", [0, 2])
STREAMS = pytest.mark.parametrize("stream", ["stdout", "stderr"])
# Names of a standard stream.
FORMS = pytest.mark.parametrize("form", ["/dev/{0}", "/dev/fd/{1}", "/proc/self/fd/{1}"])


def own_name(stream, form):
    return form.format(stream, {"stdout": 1, "stderr": 2}[stream])


def expected_outputs(errors, but=()):
    """What the outputs hold, those left out that stand for something else."""
    expected = WHOLE_AFTER_ERRORS if errors else WHOLE
    return {name: content for name, content in expected.items() if name not in but}


def in_child(closed=(), prepare=None, **options):
    """Options for a run whose child has closed these descriptors, after what is to be prepared."""

    def begin():
        if prepare:
            prepare()
        for descriptor in closed:
            os.close(descriptor)

    return {**options, "preexec_fn": begin} if prepare or closed else options


class Place:
    """A directory with prog.szirpa, and the program, which is run in it."""

    def __init__(self, path, program):
        self.path = path.resolve()
        self.program = program
        self.write_source(GOOD)

    def write_source(self, text):
        (self.path / "prog.szirpa").write_bytes(text)

    def start(self, *arguments, before=(), **options):
        """Starts a run after the command `before`."""
        command = [*before, self.program, *arguments]
        streams = {"stdin": subprocess.DEVNULL, "stderr": subprocess.PIPE}
        return subprocess.Popen(command, cwd=self.path, **{**streams, **in_child(**options)})

    def run(self, *arguments, before=(), **options):
        command = [*before, self.program, *arguments]
        return running.run(self.path, *command, **in_child(**options))

    def assemble(self, errors, *arguments, **options):
        """A run that reports so many errors, and leaves no temporary name in the directory."""
        self.write_source(BAD if errors else GOOD)
        process = self.run(*arguments, "prog.szirpa", **options)
        assert self.temporary_names() == []
        return process

    def assert_outputs(self, expected):
        assert {name: self.read(name) for name in expected} == expected

    def put_old(self, *names):
        for name in names or OUTPUTS:
            (self.path / name).write_bytes(OLD)

    def put_link(self, name, target):
        (self.path / name).symlink_to(target)

    def read(self, name):
        return (self.path / name).read_bytes()

    def names(self):
        return sorted(path.name for path in self.path.iterdir())

    def temporary_names(self):
        return [name for name in self.names() if TEMPORARY.fullmatch(name)]

    def messages(self, errors):
        if not errors:
            return SUMMARY
        path = os.fsencode(self.path / "prog.szirpa")
        lines = [b"%s (%d) Error: Illegal mnemonic\n" % (path, number) for number in (3, 4)]
        return b"".join(lines) + b"-- 2 error(s).\n"

    def refusal(self, name):
        path = self.path / "prog.szirpa"
        return os.fsencode(f"{path} (0)Fatal error: Cannot create output fil '{name}'\n")


@contextlib.contextmanager
def fifo_with_room(path):
    """A new FIFO, open for both sides, so that neither waits for the other."""
    os.mkfifo(path)
    both = os.open(path, os.O_RDWR | os.O_NONBLOCK | os.O_CLOEXEC)
    try:
        yield both
    finally:
        os.close(both)


def drain(descriptor):
    """What lies in a pipe just now."""
    parts = []
    with contextlib.suppress(BlockingIOError):
        while part := os.read(descriptor, 65536):
            parts.append(part)
    return b"".join(parts)


def own_mounts():
    """The command after which mounts are seen by the run alone."""
    command = ["unshare", "--mount", *([] if os.geteuid() == 0 else ["--map-root-user"])]
    probe = [*command, "mount", "-t", "tmpfs", "none", "/mnt"]
    try:
        allowed = subprocess.run(probe, capture_output=True, check=False).returncode == 0
    except FileNotFoundError:
        allowed = False
    if not allowed:
        pytest.skip("mounting is not allowed here")
    return command


def traced(*options):
    """A command that follows the run's system calls; `options` say what becomes of them."""
    command = ["strace", "-qq", "-f"]
    try:
        probe = subprocess.run([*command, "true"], capture_output=True, check=False)
    except FileNotFoundError:
        pytest.skip("strace is missing")
    if probe.returncode != 0:
        pytest.skip("tracing is not allowed here")
    return [*command, *options]


def sanitizers_that(*options):
    """The environment in which a program with sanitizers has these options too."""
    given = os.environ.get("ASAN_OPTIONS", "")
    return {**os.environ, "ASAN_OPTIONS": ":".join(filter(None, [given, *options]))}


def environment_when_traced():
    # The search for leaks is itself a tracer, and there can be only one.
    return sanitizers_that("detect_leaks=0")
