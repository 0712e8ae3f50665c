"""Random sources through the program and through the model; every difference is a fault in one.

    compare.py --program PATH --count N --seed S [--jobs J]

Standard output, exit status and all output files are compared byte for byte. Differences that
show in the same way are one kind: the first of a kind is printed as the smallest source that
still shows it, the others are counted.
"""

import argparse
import contextlib
import multiprocessing
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import traceback
from collections import Counter
from dataclasses import dataclass, field, replace

from generate import Generator, plain_name, write_case
from zirpa_model import TooLong, run

SECONDS_A_RUN = 20
LARGEST_FILE = 1 << 28
LARGEST_RESERVATION = 5000
CASES_A_TASK = 250
SMALL_SOURCE = 600
SHOWN_OF_A_FILE = 3000


@dataclass
class Outcome:
    """What a run has left behind."""

    status: int
    stdout: bytes
    files: dict
    stderr: bytes = b""

    def parts(self):
        return {b"status": b"%d" % self.status, b"standard output": self.stdout,
                b"standard error": self.stderr, **self.files}


@dataclass
class Tally:
    """What a task has found. Kinds of differences: an example each, minimised and printable."""

    compared: int = 0
    skipped: int = 0
    kinds: Counter = field(default_factory=Counter)
    examples: dict = field(default_factory=dict)

    def add(self, other):
        self.compared += other.compared
        self.skipped += other.skipped
        self.kinds.update(other.kinds)


class Bench:
    """A directory in memory in which the program runs again and again."""

    def __init__(self, program, base):
        self.program = program
        self.directory = os.fsencode(tempfile.mkdtemp(prefix="bench", dir=base))
        os.chdir(self.directory)

    def program_outcome(self, case):
        write_case(case, self.directory)
        try:
            process = subprocess.run(case.argv(self.directory), executable=self.program,
                                     stdin=subprocess.DEVNULL, capture_output=True,
                                     timeout=SECONDS_A_RUN, check=False)
        except subprocess.TimeoutExpired:
            return Outcome(-signal.SIGKILL, b"", self.take_files())
        return Outcome(process.returncode, process.stdout, self.take_files(), process.stderr)

    def take_files(self):
        """What the directory holds; it is empty then."""
        paths = pathlib.Path(os.fsdecode(self.directory)).rglob("*")
        files = {os.path.relpath(os.fsencode(path), self.directory): path.read_bytes()
                 for path in paths if path.is_file()}
        shutil.rmtree(self.directory)
        os.mkdir(self.directory)
        os.chdir(self.directory)
        return files

    def model_outcome(self, case):
        try:
            result = run(case.argv(self.directory), case.files, self.directory, LARGEST_RESERVATION)
        except TooLong:
            raise
        except Exception:
            return Outcome(-1, b"the model failed\n" + traceback.format_exc().encode(), {})
        files = {name: data for name, data in case.files.items() if not name.endswith(b"/")}
        files.update((self.relative(name), data) for name, data in result.files.items())
        for name in result.removed:
            files.pop(self.relative(name), None)
        return Outcome(result.status, result.stdout, files)

    def relative(self, name):
        return os.path.relpath(os.path.join(self.directory, name), self.directory)

    def difference(self, case):
        """The parts in which the two runs differ: name to (program, model)."""
        model = self.model_outcome(case).parts()
        program = self.program_outcome(case).parts()
        if model == program:
            return {}
        return {name: (program.get(name), model.get(name)) for name in {**program, **model}
                if program.get(name) != model.get(name)}


# Kinds of differences

def first_difference(left, right):
    """The first line in which two texts differ, of each."""
    left_lines, right_lines = left.split(b"\n"), right.split(b"\n")
    for one, other in zip(left_lines, right_lines):
        if one != other:
            return one, other
    shorter = min(len(left_lines), len(right_lines))
    return (b"".join(left_lines[shorter:shorter + 1]), b"".join(right_lines[shorter:shorter + 1]))


def kind_of(difference):
    """Two differences are of one kind if the same part differs first, and in the same messages."""
    for name in (b"standard error", b"standard output", b"status"):
        if name in difference:
            break
    else:
        name = min(difference)
    program, model = difference[name]
    lines = (b"absent" if text is None else text for text in (program, model))
    shown = (re.sub(rb"/\S*/|[^a-zA-Z ]|[0-9A-F]{2,}|'.*'", b"", line[:300])
             for line in first_difference(*lines))
    return b" | ".join((os.path.splitext(name)[1] or name, *shown))


# Minimisation

def reduce_sequence(items, still_shows):
    """The items without every run of items that can be left out."""
    size = len(items) // 2 or 1
    while items:
        start = 0
        while start < len(items):
            fewer = items[:start] + items[start + size:]
            if still_shows(fewer):
                items = fewer
            else:
                start += size
        if size == 1:
            break
        size //= 2
    return items


def minimise(bench, case):
    """The smallest case found that still shows a difference: by lines, options and bytes."""
    name = plain_name(case.source or b"")

    def shows(candidate):
        try:
            return bool(bench.difference(candidate))
        except TooLong:
            return False

    def with_text(text):
        return replace(case, files={**case.files, name: text})

    def with_options(options):
        return replace(case, options=tuple(options))

    case = with_options(reduce_sequence(case.options, lambda o: shows(with_options(o))))
    if name in case.files:
        lines = case.files[name].splitlines(keepends=True)
        lines = reduce_sequence(lines, lambda ls: shows(with_text(b"".join(ls))))
        text = b"".join(lines)
        if len(text) <= SMALL_SOURCE:
            text = reduce_sequence(text, lambda t: shows(with_text(t)))
        case = with_text(text)
    return case


def describe(bench, case):
    lines = ["arguments: " + " ".join(repr(word)[1:] for word in case.argv(b"{cwd}"))]
    lines += [f"file {name!r}: {data!r}" for name, data in case.files.items()
              if not name.endswith(b"/")]
    for name, (program, model) in bench.difference(case).items():
        lines += [f"  {name.decode(errors='replace')}",
                  f"    program: {program!r:.{SHOWN_OF_A_FILE}}",
                  f"    model:   {model!r:.{SHOWN_OF_A_FILE}}"]
    return "\n".join(lines)


# Tasks

class Worker:
    """What one process of the pool keeps between its tasks."""

    bench = generator = None
    seen = set()

    @classmethod
    def start(cls, program, base, seed):
        resource.setrlimit(resource.RLIMIT_FSIZE, (LARGEST_FILE, LARGEST_FILE))
        cls.bench = Bench(program, base)
        cls.generator = Generator(seed)

    @classmethod
    def compare_range(cls, indices):
        tally = Tally()
        for index in indices:
            cls.compare(index, tally)
        return tally

    @classmethod
    def compare(cls, index, tally):
        case = cls.generator.case(index)
        try:
            difference = cls.bench.difference(case)
        except TooLong:
            tally.skipped += 1
            return
        tally.compared += 1
        if not difference:
            return
        kind = kind_of(difference)
        tally.kinds[kind] += 1
        if kind not in cls.seen:
            cls.seen.add(kind)
            small = minimise(cls.bench, case)
            tally.examples[kind] = f"index {index}\n" + describe(cls.bench, small)


def tasks(first, count):
    end = first + count
    starts = range(first, end, CASES_A_TASK)
    return [range(start, min(start + CASES_A_TASK, end)) for start in starts]


@contextlib.contextmanager
def mapping(jobs, start):
    """A map over so many processes. One job needs no other process, nor what they share."""
    if jobs == 1:
        Worker.start(*start)
        yield map
        return
    try:
        pool = multiprocessing.Pool(jobs, Worker.start, start)
    except OSError as error:
        sys.exit(f"several jobs need /dev/shm, one (--jobs 1) does not: {error}")
    with pool:
        yield pool.imap_unordered


def compare_all(arguments, base):
    total = Tally()
    start = (os.path.abspath(arguments.program), base, arguments.seed)
    with mapping(arguments.jobs, start) as mapped:
        ranges = tasks(arguments.first, arguments.count)
        for tally in mapped(Worker.compare_range, ranges):
            for kind in tally.examples.keys() - total.kinds.keys():
                print(f"--- {kind.decode(errors='replace')}\n{tally.examples[kind]}\n", flush=True)
            total.add(tally)
    return total


def parse_arguments():
    parser = argparse.ArgumentParser(description="Compare the program with the model.")
    parser.add_argument("--program", required=True)
    parser.add_argument("--count", type=int, default=20000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--first", type=int, default=0, help="index of the first source")
    parser.add_argument("--jobs", type=int, default=2)
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    base = tempfile.mkdtemp(prefix="compare", dir=memory)
    try:
        total = compare_all(arguments, base)
    finally:
        shutil.rmtree(base)
    for kind, count in total.kinds.most_common():
        print(f"{count:8} {kind.decode(errors='replace')}")
    if total.skipped:
        print(f"{total.skipped} sources left out: they reserve too much memory")
    differ = sum(total.kinds.values())
    print(f"{total.compared} sources compared, {differ} differ")
    return 1 if differ else 0


if __name__ == "__main__":
    sys.exit(main())
