#!/usr/bin/env python3
"""Mutation testing: breaks the program in many small ways and sees whether a test notices.

    mutate.py [--companion] [--count 500] [--seed 1] [--jobs 2] [--survivors FILE]
    mutate.py [--companion] --again FILE [--jobs 2]

A mutant is the program with one operator, constant, condition or statement changed; the seed alone
chooses among all there are. With --companion, zirpa and the door are changed instead. Each is built without
optimisation and meets the tests of whole runs that have the label "mutants" in ctest (for zirpa its own
tests), those first that noticed the last mutants of the same module, and then the unit tests. The first test that
fails, crashes or hangs kills it. A mutant that does not compile does not count, nor does one whose
optimised code is that of the program itself; others take their places. --again tests the mutants
listed in a survivors file anew.

A loop that hangs ends at a time limit, and what a mutant writes is bounded.
"""

import argparse
import ast
import collections
import itertools
import json
import multiprocessing
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile

import check_floors

ROOT = pathlib.Path(__file__).resolve().parents[1]
MEMORY = "/dev/shm"
PYTHON = "/usr/bin/python3"  # Debian's, which has pytest

TEST_SECONDS = 120
BUILD_SECONDS = 600
# Programs that test a mutant get little room and time, so that a loop without end does no harm.
BOUNDED = ["prlimit", f"--fsize={8 << 20}:", f"--as={1 << 30}:", "--cpu=20:"]

# Lines in which a change has no effect that a test could see.
UNTESTABLE = [
    # Only the speed depends on the exact value.
    r"kNamePieceSize = |kMultiplier|hash \^|hash = |kPiece",
    r"records \* 2 > symbol_index|old\(symbol_index",
    r"\.reserve\(",
    # First values of state, which every run sets anew before it reads them.
    r"^(?:std::)?(?:u?int\w*|size_t|unsigned) \w+ = -?\d+;",
    # A column that nothing reads.
    r"DIR_\w+, +0, ",
]

# What is changed: the folders, the target that is tested by whole runs and those with all of the code,
# and the tests of whole runs; None for those that have the label.
Subject = collections.namedtuple("Subject", "folders target libraries tests")
PROGRAM = Subject({"as", "target", "expr", "symtab", "util"}, "HXzirpa", ["zirpa"], None)
COMPANION_TESTS = """alarms beginners c_reading command_line corners diagnostics explain formats map
    streams swallowed"""
COMPANION = Subject(
    {"door", "zirpa"},
    "companion_program",
    ["door", "companion"],
    [f"tests/zirpa/test_{name}.py" for name in COMPANION_TESTS.split()],
)

Mutant = collections.namedtuple("Mutant", "file line column before after")
Verdict = collections.namedtuple("Verdict", "kind detail")  # kind: one of the following
UNCOMPILED, EQUIVALENT, KILLED, SURVIVED = "uncompiled", "equivalent", "killed", "survived"


class Broken(Exception):
    """The run makes no sense; the text says why."""


# ---- What can be changed -------------------------------------------------------------------------

SWAPS = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "+": "-", "-": "+",
    "+=": "-=", "-=": "+=", "&&": "||", "||": "&&",
}  # fmt: skip
STEPS = {"++": "--", "--": "++"}
NOT_CODE = re.compile(
    r'//[^\n]*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\'|^[ \t]*#[^\n]*|static_assert\([^;]*;',
    re.MULTILINE,
)
# Numbers that only tell one enumerator from another, and template arguments.
NOT_A_CONSTANT = re.compile(r"^\s*\w+ = -?\d+,|^\s*enum .*= \d+[,}]|template")
# Blanks tell a binary operator from a template's brackets, a reference or a sign.
OPERATOR = re.compile(r"(?<= )(==|!=|<=|>=|<|>|\+=|-=|\+|-|&&|\|\|)(?= |$)", re.MULTILINE)
STEP = re.compile(r"\+\+|--")
NUMBER = re.compile(r"(?<![\w.])(0x[0-9A-Fa-f]+|\d+)(?=U?\b)(?!\.)")
TRUTH = re.compile(r"\b(true|false)\b")
CONDITION = re.compile(r"\b(?:if|while) (\()")
STATEMENT = re.compile(
    r"(?<=[;{}:])\s*^ +((?:\(void\)|\*)?(?:\+\+|--)?[\w:.>\[\]*()&-]+?"
    r"(?:(?:\+\+|--)|\([^;{}]*\)| [+|&-]?= [^;{}]*)?;)(?=\s*$)",
    re.MULTILINE,
)
KEYWORD = re.compile(r"^(?:return\b.|case|using|else|default|public|private)")


def blanked(text):
    """The code alone: comments, texts, directives and static assertions become blanks."""
    return NOT_CODE.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), text)


def balanced_end(code, start):
    """The position after the parenthesis that closes the one at start."""
    depth = 0
    for position in range(start, len(code)):
        depth += {"(": 1, ")": -1}.get(code[position], 0)
        if depth == 0:
            return position + 1
    raise ValueError("unbalanced parentheses")


def changed_number(text, random_numbers):
    up = random_numbers.random() < 0.5
    value = int(text, 0) if text.startswith("0x") else int(text)
    value = value + 1 if up or value == 0 else value - 1
    return f"0x{value:X}" if text.startswith("0x") else str(value)


def operator_changes(code, _):
    for match in OPERATOR.finditer(code):
        yield match.start(), match[0], SWAPS[match[0]]
    for match in STEP.finditer(code):
        yield match.start(), match[0], STEPS[match[0]]


def constant_changes(code, random_numbers):
    for match in TRUTH.finditer(code):
        yield match.start(), match[0], "false" if match[0] == "true" else "true"
    for match in NUMBER.finditer(code):
        changed = changed_number(match[0], random_numbers)
        line_start = code.rfind("\n", 0, match.start()) + 1
        line = code[line_start : code.find("\n", match.start())]
        if not NOT_A_CONSTANT.search(line):
            yield match.start(), match[0], changed


def condition_changes(code, _):
    for match in CONDITION.finditer(code):
        start = match.start(1)
        condition = code[start : balanced_end(code, start)]
        if ";" not in condition and not re.search(r" = ", condition):
            yield start, condition, f"(!{condition})"


def statement_changes(code, _):
    for match in STATEMENT.finditer(code):
        if not KEYWORD.match(match[1]) and match[1] != ";":
            yield match.start(1), match[1], ";"


def cannot_matter(line):
    return any(re.search(pattern, line) for pattern in UNTESTABLE)


def mutants_of_file(path, random_numbers):
    text = (ROOT / path).read_text()
    code = blanked(text)
    lines = text.splitlines()
    for changes in (operator_changes, constant_changes, condition_changes, statement_changes):
        for position, before, after in changes(code, random_numbers):
            line = text.count("\n", 0, position) + 1
            if cannot_matter(lines[line - 1]):
                continue
            # What was blanked inside stays as it is.
            whole = text[position : position + len(before)]
            after = after.replace(before, whole) if before in after else after
            column = position - text.rfind("\n", 0, position)
            yield Mutant(path, line, column, whole, after)


# ---- Which mutants are tested --------------------------------------------------------------------


def all_mutants(subject, seed):
    """All mutants of a subject, in the order in which they are tested."""
    numbers = random.Random(seed)
    files = [path.relative_to(ROOT).as_posix() for path in check_floors.files()]
    files = [file for file in files if file.split("/")[0] in subject.folders]
    mutants = [mutant for file in files for mutant in mutants_of_file(file, numbers)]
    numbers.shuffle(mutants)
    return mutants


# ---- Protection ----------------------------------------------------------------------------------


def protect_devices():
    """Starts anew where devices can't be deleted, for a mutant may forget to leave them alone."""
    if os.geteuid() != 0 or "HXZIRPA_DEVICES_PROTECTED" in os.environ:
        return
    os.environ["HXZIRPA_DEVICES_PROTECTED"] = "1"
    read_only = "mount --rbind /dev /dev && mount -o remount,bind,ro /dev"
    os.execvp("unshare", ["unshare", "--mount", "sh", "-c", f'{read_only} && exec "$@"', "sh",
                          sys.executable, *sys.argv])


# ---- Building ------------------------------------------------------------------------------------


def run(command, directory, seconds, output=subprocess.DEVNULL, **options):
    """Runs a command; its status, or None if it takes too long: all that it started ends then."""
    with subprocess.Popen(
        command,
        cwd=directory,
        stdin=subprocess.DEVNULL,
        stdout=output,
        stderr=subprocess.STDOUT,
        start_new_session=True,
        **options,
    ) as process:
        try:
            return process.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return None


class Build:
    """A copy of the sources, built in two ways, and a copy of all that to go back to."""

    def __init__(self, directory, subject):
        self.subject = subject
        self.work = directory / "work"
        self.pristine = directory / "pristine"
        self.tree = self.work / "tree"
        self.plain = self.work / "plain"
        self.optimised = self.work / "optimised"

    def configure(self):
        shutil.copytree(ROOT, self.tree, ignore=shutil.ignore_patterns(".git", "build"))
        flags = {self.plain: ["-O0", "-DHXZIRPA_TESTS=ON"], self.optimised: ["-O2"]}
        for directory, (level, *options) in flags.items():
            options += ["-DCMAKE_BUILD_TYPE=None", f"-DCMAKE_CXX_FLAGS=-w {level}"]
            command = ["cmake", "-G", "Ninja", "-S", str(self.tree), "-B", str(directory), *options]
            if run(command, self.work, BUILD_SECONDS) != 0:
                raise Broken("the program can't be configured")

    def make(self, directory, target):
        command = ["cmake", "--build", str(directory), "--target", target, "--parallel", "1"]
        return run(command, self.work, BUILD_SECONDS) == 0

    def make_everything(self):
        parts = [(self.plain, target) for target in ("HXzirpa", self.subject.target, "unit_tests")]
        parts += [(self.optimised, library) for library in self.subject.libraries]
        if not all(self.make(*part) for part in parts):
            raise Broken("the program does not compile")
        shutil.copytree(self.work, self.pristine)

    def restore(self):
        """Puts back what differs from the copy, times included: else it would be built again."""
        for path in filter(pathlib.Path.is_file, self.pristine.rglob("*")):
            target = self.work / path.relative_to(self.pristine)
            if not target.exists() or target.stat().st_mtime_ns != path.stat().st_mtime_ns:
                shutil.copy2(path, target)

    def is_equivalent(self):
        """True if the optimiser makes the same code of the mutant."""
        return all(map(self.is_same_library, self.subject.libraries))

    def is_same_library(self, name):
        archive = self.optimised / f"lib{name}.a"
        before = (self.pristine / archive.relative_to(self.work)).read_bytes()
        return self.make(self.optimised, name) and archive.read_bytes() == before


# ---- Tests ---------------------------------------------------------------------------------------


def whole_run_tests(build):
    """What pytest runs in ctest's tests with the label "mutants"."""
    command = ["ctest", "--test-dir", str(build), "-L", "mutants", "--show-only=json-v1"]
    shown = json.loads(subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout)
    words = (word for test in shown["tests"] for word in test["command"])
    return sorted({word for word in words if word.startswith("tests/")})


# ---- One mutant ----------------------------------------------------------------------------------


def mutated(text, mutant):
    start = sum(map(len, text.splitlines(keepends=True)[: mutant.line - 1])) + mutant.column - 1
    end = start + len(mutant.before)
    if text[start:end] != mutant.before:
        raise Broken(f"{mutant.file}:{mutant.line} has changed")
    return text[:start] + mutant.after + text[end:]


class Worker:
    """Builds and tests mutants, one after the other, in a directory of its own."""

    def __init__(self, directory, subject):
        self.directory = directory
        self.scratch = directory / "scratch"
        self.build = Build(directory, subject)
        self.build.configure()
        self.build.make_everything()
        self.whole_runs = subject.tests or whole_run_tests(self.build.plain)
        found = self.killer("the program itself")
        if found is not None:
            raise Broken(f"the program itself fails: {found}")

    def run_tests(self, command, directory, output=subprocess.DEVNULL):
        environment = {**os.environ, "PYTHONDONTWRITEBYTECODE": "1", "TMPDIR": str(self.scratch)}
        self.scratch.mkdir()
        try:
            return run([*BOUNDED, *command], directory, TEST_SECONDS, output, env=environment)
        finally:
            shutil.rmtree(self.scratch, ignore_errors=True)

    def failing_whole_run(self, module):
        """The first whole run that fails; pytest begins with those that failed for the module."""
        cache = self.directory / "failed" / module
        places = [f"--basetemp={self.scratch}/runs", f"--override-ini=cache_dir={cache}"]
        quiet = ["--override-ini=addopts=-q", "-x", "-rfE", "--tb=no"]
        command = [PYTHON, "-m", "pytest", *quiet, *places, "--failed-first", *self.whole_runs]
        command += ["--program", str(self.build.plain / "HXzirpa")]
        with tempfile.TemporaryFile("w+") as output:
            status = self.run_tests(command, ROOT, output)
            output.seek(0)
            found = re.search(r"^(?:FAILED|ERROR) (\S+)", output.read(), re.MULTILINE)
        return None if status == 0 else found[1] if found else "time"

    def failing_unit_test(self):
        if not self.build.make(self.build.plain, "unit_tests"):
            return "a unit test's compilation"
        command = [str(self.build.plain / "unit_tests"), "--gtest_fail_fast", "--gtest_brief=1"]
        return None if self.run_tests(command, self.scratch) == 0 else "unit tests"

    def killer(self, module):
        """The test that notices a mutant of the module, or None."""
        return self.failing_whole_run(module) or self.failing_unit_test()

    def judge(self, mutant):
        path = self.build.tree / mutant.file
        path.write_text(mutated(path.read_text(), mutant))
        try:
            return self.verdict(pathlib.Path(mutant.file).stem)
        finally:
            self.build.restore()

    def verdict(self, module):
        if not self.build.make(self.build.plain, self.build.subject.target):
            return Verdict(UNCOMPILED, "")
        test = self.killer(module)
        if test is not None:
            return Verdict(KILLED, test)
        return Verdict(EQUIVALENT if self.build.is_equivalent() else SURVIVED, "")


worker = None  # of this process, or why there is none


def start_worker(directory, subject):
    global worker
    try:
        worker = Worker(directory / f"worker{os.getpid()}", subject)
    except Broken as error:
        # The pool would go on replacing a process that ends here.
        worker = error


def judge(mutant):
    if isinstance(worker, Broken):
        raise worker
    return mutant, worker.judge(mutant)


# ---- The command ---------------------------------------------------------------------------------


def described(mutant):
    return f"{mutant.file}:{mutant.line}:{mutant.column}\t{mutant.before!r} -> {mutant.after!r}"


def parse_survivor(line):
    place, _, change = line.rstrip("\n").partition("\t")
    file, number, column = place.split(":")
    before, after = map(ast.literal_eval, change.split(" -> "))
    return Mutant(file, int(number), int(column), before, after)


def tested(pool, mutants, count):
    """Verdicts on as many mutants as asked for, those that do not count left out."""
    waiting = iter(mutants)
    verdicts = []
    while drawn := list(itertools.islice(waiting, count - len(verdicts))):
        for mutant, verdict in pool.imap(judge, drawn):
            report(mutant, verdict)
            if verdict.kind not in (UNCOMPILED, EQUIVALENT):
                verdicts.append((mutant, verdict))
    return verdicts


def report(mutant, verdict):
    """Survivors go to standard output, all verdicts to standard error."""
    print(f"{verdict.kind} {described(mutant)} {verdict.detail}", file=sys.stderr, flush=True)
    if verdict.kind == SURVIVED:
        print(described(mutant), flush=True)


def summarise(verdicts, survivors_path):
    survivors = [mutant for mutant, verdict in verdicts if verdict.kind == SURVIVED]
    if survivors_path is not None:
        survivors_path.write_text("".join(described(mutant) + "\n" for mutant in survivors))
    killed = len(verdicts) - len(survivors)
    share = 100 * killed / max(len(verdicts), 1)
    print(f"{len(verdicts)} mutants, {killed} killed ({share:.1f} %), {len(survivors)} survived")


def arguments():
    parser = argparse.ArgumentParser(description="tests the tests with mutants of the program")
    parser.add_argument("--companion", action="store_true", help="change zirpa and the door")
    parser.add_argument("--count", type=int, default=500)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--survivors", type=pathlib.Path, help="write the survivors to this file")
    parser.add_argument("--again", type=pathlib.Path, help="test the mutants in this file anew")
    return parser.parse_args()


def main():
    given = arguments()
    subject = COMPANION if given.companion else PROGRAM
    protect_devices()
    with tempfile.TemporaryDirectory(prefix="mutate", dir=MEMORY) as name:
        directory = pathlib.Path(name)
        with multiprocessing.Pool(given.jobs, start_worker, (directory, subject)) as pool:
            if given.again is None:
                verdicts = tested(pool, all_mutants(subject, given.seed), given.count)
            else:
                mutants = [parse_survivor(line) for line in given.again.read_text().splitlines()]
                verdicts = tested(pool, mutants, len(mutants))
    summarise(verdicts, given.survivors)


if __name__ == "__main__":
    try:
        main()
    except Broken as reason:
        sys.exit(f"mutate.py: {reason}")
