"""A run that is killed leaves every output absent, whole and old, or whole and new."""

import contextlib
import fcntl
import os
import resource
import signal
import struct
import subprocess
import termios
import time
from collections import Counter

import pytest
from stream_runs import (
    ARRAY,
    EVERY_OUTPUT,
    LISTING,
    OLD,
    OUTPUTS,
    RECORDS,
    SCRIPT,
    SUMMARY,
    TEMPORARY,
    environment_when_traced,
    sanitizers_that,
    traced,
)

# So long that moments differ, so short that there can be many of them.
SECONDS = 0.05


# The location counter starts anew in time, so that all addresses have 16 bits.
BLOCK = b" ORG 0\n" + b" FCB 1,2,3,4,5,6,7,8\n" * 1000


def source_of(lines):
    return BLOCK * (lines // 1000)


def whole_outputs(place, lines):
    """What a run that is left alone makes of a source of so many lines."""
    place.write_source(source_of(lines))
    process = place.run(*EVERY_OUTPUT, "prog.szirpa")
    assert (process.returncode, process.stdout) == (0, SUMMARY)
    whole = {name: place.read(name) for name in OUTPUTS}
    assert whole[RECORDS].endswith(b"\nS9030000FC\n")
    assert whole[SCRIPT].count(b"#setMemory") == whole[ARRAY].count(b"0x") == 8 * lines
    assert whole[LISTING].count(b" FCB ") == lines
    return whole


def put_outputs(place, state):
    """The names as they are before a run, whatever the run before has left."""
    for name in place.names():
        if name != "prog.szirpa":
            (place.path / name).unlink()
    if state != "new":
        place.put_old()
    if state == "link":
        (place.path / RECORDS).rename(place.path / "target")
        place.put_link(RECORDS, "target")


def assert_nothing_in_pieces(place, state, whole):
    for name in OUTPUTS:
        path = place.path / name
        if path.exists():
            left = path.read_bytes()
            assert left == whole[name] or (state != "new" and left == OLD), name
    others = set(place.names()) - {*OUTPUTS, "prog.szirpa", "target"}
    assert all(TEMPORARY.fullmatch(name) for name in others)


def seconds_of_a_run(place):
    times = []
    for _ in range(3):
        start = time.monotonic()
        place.run(*EVERY_OUTPUT, "prog.szirpa")
        times.append(time.monotonic() - start)
    return min(times)


@pytest.fixture(name="long_source")
def source_that_takes_a_while(place):
    """The outputs of prog.szirpa, which is so long that a run takes SECONDS, and its time."""
    place.write_source(source_of(10_000))
    lines = 1000 * max(1, round(10 * SECONDS / seconds_of_a_run(place)))
    whole = whole_outputs(place, lines)
    return whole, seconds_of_a_run(place)


@pytest.mark.parametrize("state, moments", [("new", 80), ("old", 80), ("link", 40)])
def test_killed_run_leaves_no_output_in_pieces(place, long_source, state, moments):
    whole, seconds = long_source
    killed = 0
    for moment in range(moments):
        put_outputs(place, state)
        with place.start(*EVERY_OUTPUT, "prog.szirpa", stdout=subprocess.DEVNULL) as process:
            time.sleep(seconds * moment / moments)
            process.kill()
        if process.returncode == -signal.SIGKILL:
            killed += 1
        else:
            # The machine has less other work than when the time was taken.
            seconds *= 0.9
        assert_nothing_in_pieces(place, state, whole)
    assert killed > moments / 2


def calls_of(place, state):
    """Every system call of a run from its beginning, as its name and how often it came so far."""
    put_outputs(place, state)
    log = place.path / "calls"
    place.run(
        *EVERY_OUTPUT,
        "prog.szirpa",
        before=traced("-o", str(log), "-e", "trace=%file,%desc"),
        env=environment_when_traced(),
    )
    count = Counter()
    lines = [line.split(None, 1)[1] for line in log.read_text(errors="replace").splitlines()]
    log.unlink()
    for name in (line.partition("(")[0] for line in lines if "(" in line and line[0].isalpha()):
        count[name] += 1
        if name != "execve":
            yield name, count[name]


def runs_with_a_signal_at_each_call(place, state, kind):
    for name, number in list(calls_of(place, state)):
        put_outputs(place, state)
        process = place.run(
            *EVERY_OUTPUT,
            "prog.szirpa",
            before=traced("-o", "/dev/null", "-e", f"inject={name}:signal={kind}:when={number}"),
            env=environment_when_traced(),
        )
        assert process.returncode == -signal.Signals[kind]
        yield f"{name} {number}"


@pytest.mark.parametrize("state", ["new", "old"])
def test_run_that_is_killed_at_any_system_call_leaves_no_output_in_pieces(place, state):
    whole = whole_outputs(place, 1000)
    for _ in runs_with_a_signal_at_each_call(place, state, "SIGKILL"):
        assert_nothing_in_pieces(place, state, whole)


def test_run_that_is_terminated_at_any_system_call_leaves_no_temporary_name(place):
    whole = whole_outputs(place, 1000)
    for moment in runs_with_a_signal_at_each_call(place, "old", "SIGTERM"):
        assert_nothing_in_pieces(place, "old", whole)
        assert place.temporary_names() == [], moment


# ---- Signals to a run that waits in the middle of its outputs ----

# Default actions that end a process, without those that tell of a defect in it.
ENDING = [
    *"HUP INT QUIT ALRM TERM USR1 USR2 STKFLT XCPU VTALRM PROF POLL PWR".split(),
    "RTMIN",
    "RTMAX",
]
DEFECTS = "ABRT BUS FPE ILL SEGV SYS TRAP".split()
HARMLESS = "CHLD CONT URG WINCH".split()
LINES = 2000

# Sanitizers catch some signals themselves, even if they were ignored.
WITHOUT_HANDLERS = sanitizers_that(
    *(f"handle_{name}=0" for name in ["abort", "segv", "sigbus", "sigfpe", "sigill", "sigtrap"])
)


def number_of(name):
    return signal.Signals[f"SIG{name}"]


def bytes_in_pipe(descriptor):
    return struct.unpack("i", fcntl.ioctl(descriptor, termios.FIONREAD, b"\0" * 4))[0]


def is_asleep(process):
    with open(f"/proc/{process.pid}/stat", "rb") as file:
        return file.read().rpartition(b")")[2].split()[0] in (b"S", b"Z")


def wait_until_blocked(process, pipe):
    """Until the pipe holds something and the process has long been asleep."""
    deadline = time.monotonic() + 20
    quiet = 0
    while quiet < 3:
        assert time.monotonic() < deadline
        assert process.poll() is None
        quiet = quiet + 1 if bytes_in_pipe(pipe) and is_asleep(process) else 0
        time.sleep(0.002)


@contextlib.contextmanager
def blocked_run(place, full, **options):
    """A run that waits since nobody reads its script or its messages; all else is being written."""
    path = place.path / "blocking"
    os.mkfifo(path)
    pipe = os.open(path, os.O_RDWR | os.O_NONBLOCK | os.O_CLOEXEC)
    fcntl.fcntl(pipe, fcntl.F_SETPIPE_SZ, 4096)
    if full == "script":
        (place.path / SCRIPT).unlink(missing_ok=True)
        place.put_link(SCRIPT, "blocking")
    writing = os.open(path, os.O_WRONLY)
    stdout = writing if full == "messages" else subprocess.DEVNULL
    try:
        with place.start("-w", *EVERY_OUTPUT, "prog.szirpa", stdout=stdout, **options) as run:
            try:
                wait_until_blocked(run, pipe)
                yield run, pipe
            finally:
                run.kill()
    finally:
        os.close(writing)
        os.close(pipe)
        path.unlink()


def no_core():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def assert_ended_by(process, kind):
    assert process.wait(timeout=20) == -kind


def prepare_long_run(place, state):
    # Each line makes bytes and a warning.
    place.write_source(b" ORG 0\n" + b' FCS "\x80bcdefgh"\n' * LINES)
    put_outputs(place, state)


@pytest.mark.parametrize("full, state", [("script", "old"), ("messages", "new")])
@pytest.mark.parametrize("name", [*ENDING, *DEFECTS])
def test_ending_signal_ends_the_run_and_leaves_no_temporary_name(place, name, state, full):
    kind = number_of(name)
    prepare_long_run(place, state)
    with blocked_run(place, full, prepare=no_core, env=WITHOUT_HANDLERS) as (process, _):
        process.send_signal(kind)
        assert_ended_by(process, kind)
    assert place.temporary_names() == []
    for output in set(OUTPUTS) - ({SCRIPT} if full == "script" else set()):
        if (place.path / output).exists():
            assert state == "old" and place.read(output) == OLD


def run_to_its_end(process, pipe):
    while process.poll() is None:
        with contextlib.suppress(BlockingIOError):
            os.read(pipe, 65536)
        time.sleep(0.0005)
    return process.returncode


@pytest.mark.parametrize("name", [*ENDING, *DEFECTS])
def test_signal_that_is_ignored_from_the_start_stays_ignored(place, name):
    kind = number_of(name)
    prepare_long_run(place, "new")
    with blocked_run(
        place,
        "messages",
        prepare=lambda: signal.signal(kind, signal.SIG_IGN),
        env=WITHOUT_HANDLERS,
    ) as (process, pipe):
        process.send_signal(kind)
        assert run_to_its_end(process, pipe) == 0
    assert place.read(RECORDS).endswith(b"\nS9030000FC\n")
    assert place.temporary_names() == []


@pytest.mark.parametrize("name", [*HARMLESS, "PIPE", "XFSZ"])
def test_harmless_signal_does_not_matter(place, name):
    prepare_long_run(place, "new")
    with blocked_run(place, "messages") as (process, pipe):
        process.send_signal(number_of(name))
        assert run_to_its_end(process, pipe) == 0


def test_stopped_run_goes_on(place):
    prepare_long_run(place, "new")
    with blocked_run(place, "messages") as (process, pipe):
        process.send_signal(signal.SIGSTOP)
        time.sleep(0.02)
        process.send_signal(signal.SIGCONT)
        assert run_to_its_end(process, pipe) == 0
    assert place.temporary_names() == []


def test_blocked_signal_stays_blocked(place):
    prepare_long_run(place, "new")
    block = {signal.SIGTERM}
    with blocked_run(
        place, "messages", prepare=lambda: signal.pthread_sigmask(signal.SIG_BLOCK, block)
    ) as (process, pipe):
        process.send_signal(signal.SIGTERM)
        assert run_to_its_end(process, pipe) == 0


def test_killed_run_leaves_temporary_names_of_the_known_form_only(place):
    prepare_long_run(place, "new")
    with blocked_run(place, "script") as (process, _):
        during = set(place.names())
        process.kill()
        process.wait()
        pid = process.pid
    assert not during & {RECORDS, LISTING, ARRAY}
    left = set(place.names()) - {"prog.szirpa", SCRIPT}
    assert all(TEMPORARY.fullmatch(name) and f"-{pid}-" in name for name in left)


def test_old_outputs_are_seen_until_new_ones_are_whole(place):
    prepare_long_run(place, "old")
    with blocked_run(place, "messages") as (process, pipe):
        for name in OUTPUTS:
            assert not (place.path / name).exists() or place.read(name) == OLD
        assert run_to_its_end(process, pipe) == 0
    assert place.read(RECORDS).endswith(b"\nS9030000FC\n")


@pytest.mark.parametrize("name", ["TERM", "KILL"])
def test_output_beside_a_link_target_has_its_temporary_name_there(place, name):
    prepare_long_run(place, "new")
    (place.path / "sub").mkdir()
    (place.path / "sub" / "target").write_bytes(OLD)
    place.put_link(RECORDS, "sub/target")
    with blocked_run(place, "script") as (process, _):
        process.send_signal(number_of(name))
        assert_ended_by(process, number_of(name))
    assert place.read("sub/target") == OLD
    beside = {path.name for path in (place.path / "sub").iterdir()} - {"target"}
    assert all(TEMPORARY.fullmatch(path) for path in beside)
    if name == "TERM":
        assert not beside
