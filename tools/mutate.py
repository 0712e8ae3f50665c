#!/usr/bin/env python3
"""Mutation testing: breaks the program in many small ways and sees whether a test notices.

    mutate.py [--count 500] [--seed 1] [--jobs 2] [--survivors FILE]
    mutate.py --again FILE [--jobs 2]

A mutant is the program with one operator, constant, condition or statement changed. Mutants are
spread over the modules in proportion to their lines and chosen by the seed alone. Each is built
without optimisation and meets the tests, the fastest first: golden cases, the other tests of whole
runs, the unit tests. The first test that fails, crashes or hangs kills it. A mutant that does not
compile does not count, nor does one whose optimised code is that of the program itself; others
take their places. --again tests the mutants listed in a survivors file anew.

A loop that hangs ends at a time limit, and what a mutant writes is bounded.
"""

import argparse
import ast
import collections
import contextlib
import functools
import multiprocessing
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests" / "golden"))

# The imports need the path.
import golden_case  # noqa: E402  pylint: disable=wrong-import-position
from test_golden import expected_tree  # noqa: E402  pylint: disable=wrong-import-position

SOURCE_DIRECTORIES = ("as", "expr", "symtab", "target", "util")
MEMORY = "/dev/shm"
COMPILER = ["g++", "-std=c++20", "-w", "-I."]
PYTHON = "/usr/bin/python3"  # Debian's, which has pytest

# Limits on the tests of one mutant, so that a loop without end does no harm.
GOLDEN_SECONDS = 5
PYTEST_SECONDS = 30
UNIT_SECONDS = 30
COMPILE_SECONDS = 120
FILE_BYTES = 8 << 20
MEMORY_BYTES = 1 << 30

# The golden topics most likely to notice a fault in a module.
TOPICS = {
    "asCommand": ["command_line"],
    "asCond": ["conditionals"],
    "asData": ["data"],
    "asDebug": ["debug"],
    "asDiag": ["diagnostics"],
    "asEqu": ["directives", "symbols"],
    "asFiles": ["command_line", "records"],
    "asLine": ["line", "directives"],
    "asList": ["directives", "listing"],
    "asListing": ["listing"],
    "asMain": ["command_line", "diagnostics"],
    "asOptions": ["command_line"],
    "asOutput": ["records", "listing"],
    "asPseudo": ["directives", "conditionals"],
    "asSource": ["source"],
    "emit": ["records", "data"],
    "encode": ["instructions", "operands"],
    "expr": ["expressions"],
    "format": ["listing", "debug"],
    "input": ["source"],
    "number": ["numbers", "debug"],
    "operand": ["operands", "instructions"],
    "optab": ["instructions"],
    "output": ["records", "listing"],
    "path": ["command_line", "source"],
    "reloc": ["data", "operands"],
    "scan": ["numbers", "expressions"],
    "symtab": ["symbols"],
    "text": ["line", "source"],
    "wrap": ["expressions"],
}

# Lines of which only the speed depends on the exact value, by module.
PERFORMANCE_ONLY = {
    "input": r"kFirstCapacity",
    "output": r"kOutputBufferSize = ",
    "symtab": r"kFirstIndexSize = |kNamePieceSize = |kMultiplier|hash \^|hash = |piece = piece|"
    r"indexed_symbols \* 2|old\(symbol_index\.size\(\) \* 2|kPiece",
    "asOutput": r"\.reserve\(",
}

# First values of state, which every run sets anew before it reads them, and a column that nothing
# reads.
NEVER_READ = re.compile(r"^(?:std::)?(?:u?int\w*|size_t|unsigned) \w+ = -?\d+;|DIR_\w+, +0\},$")

Mutant = collections.namedtuple("Mutant", "file line column before after")
Verdict = collections.namedtuple("Verdict", "kind detail")  # kind: one of the following
UNCOMPILED, EQUIVALENT, KILLED, SURVIVED = "uncompiled", "equivalent", "killed", "survived"


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
    """The position behind the parenthesis that closes the one at start."""
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


def cannot_matter(module, line):
    pattern = PERFORMANCE_ONLY.get(module)
    is_performance_only = pattern is not None and re.search(pattern, line) is not None
    return is_performance_only or NEVER_READ.search(line) is not None


def mutants_of_file(path, random_numbers):
    text = (ROOT / path).read_text()
    code = blanked(text)
    lines = text.splitlines()
    for changes in (operator_changes, constant_changes, condition_changes, statement_changes):
        for position, before, after in changes(code, random_numbers):
            line = text.count("\n", 0, position) + 1
            if cannot_matter(pathlib.Path(path).stem, lines[line - 1]):
                continue
            # What was blanked inside stays as it is.
            whole = text[position : position + len(before)]
            after = after.replace(before, whole) if before in after else after
            column = position - text.rfind("\n", 0, position)
            yield Mutant(path, line, column, whole, after)


# ---- Which mutants are tested --------------------------------------------------------------------


def source_files():
    return sorted(
        path.relative_to(ROOT).as_posix()
        for directory in SOURCE_DIRECTORIES
        for path in (ROOT / directory).glob("*")
        if path.suffix in (".cpp", ".h")
    )


def shuffled_mutants(seed):
    """All mutants by module, each list in the order in which it is drawn from."""
    random_numbers = random.Random(seed)
    modules = collections.defaultdict(list)
    for path in source_files():
        modules[pathlib.Path(path).stem] += mutants_of_file(path, random_numbers)
    for mutants in modules.values():
        random_numbers.shuffle(mutants)
    return modules


def module_lines():
    """Lines of code by module."""
    lines = collections.Counter()
    for path in source_files():
        code = blanked((ROOT / path).read_text())
        lines[pathlib.Path(path).stem] += sum(1 for line in code.splitlines() if line.strip())
    return lines


class Lottery:
    """Draws mutants so that the modules keep their shares."""

    def __init__(self, seed):
        self.waiting = shuffled_mutants(seed)
        self.lines = module_lines()
        self.drawn = collections.Counter()

    def neediest_module(self):
        open_modules = [module for module in sorted(self.waiting) if self.waiting[module]]
        return min(open_modules, key=lambda name: (self.drawn[name] + 0.5) / self.lines[name])

    def draw(self, count):
        chosen = []
        while len(chosen) < count and any(self.waiting.values()):
            module = self.neediest_module()
            self.drawn[module] += 1
            chosen.append(self.waiting[module].pop())
        return chosen

    def put_back(self, mutant):
        """The mutant did not count; its module is due another one."""
        self.drawn[pathlib.Path(mutant.file).stem] -= 1


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


def run(command, directory, seconds, **options):
    """Runs a command quietly; None if it takes too long, and then all that it started ends too."""
    with subprocess.Popen(
        command,
        cwd=directory,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        start_new_session=True,
        **options,
    ) as process:
        try:
            return process.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return None


def object_name(source):
    return source.replace("/", "_")[: -len(".cpp")] + ".o"


def compile_one(tree, source, directory, optimisation="-O0"):
    """Compiles a source of the tree into a directory; the object's path, or None."""
    target = directory / object_name(source)
    command = [*COMPILER, optimisation, "-MMD", "-c", source, "-o", str(target)]
    return target if run(command, tree, COMPILE_SECONDS) == 0 else None


def link(objects, target, *libraries):
    command = ["g++", *map(str, objects), "-o", str(target), *libraries]
    return run(command, target.parent, COMPILE_SECONDS) == 0


def included_files(object_path):
    """The project's files that an object was compiled from."""
    names = object_path.with_suffix(".d").read_text().replace("\\\n", " ").split()[1:]
    return {os.path.normpath(name) for name in names if not name.startswith("/")}


class Build:
    """A copy of the sources with all objects, and the tests' objects."""

    def __init__(self, directory):
        self.tree = directory / "tree"
        self.objects = directory / "objects"
        self.optimised = directory / "optimised"

    def sources(self):
        return [name for name in source_files() if name.endswith(".cpp")]

    def tests(self):
        names = sorted((self.tree / "tests" / "unit").glob("*.cpp"))
        return [f"tests/unit/{path.name}" for path in names]

    def copy_sources(self):
        for name in (*SOURCE_DIRECTORIES, "tests/unit"):
            shutil.copytree(ROOT / name, self.tree / name)

    def compile_everything(self, pool):
        """Compiles both ways; the tests, for which speed does not matter, once."""
        self.objects.mkdir()
        self.optimised.mkdir()
        jobs = [(self.tree, name, self.objects) for name in self.sources() + self.tests()]
        jobs += [(self.tree, name, self.optimised, "-O2") for name in self.sources()]
        if not all(pool.starmap(compile_one, jobs, chunksize=1)):
            raise SystemExit("mutate.py: the program does not compile")

    def copy_for_worker(self, directory):
        """A copy whose sources may be mutated; the objects are shared."""
        worker = Build(directory)
        shutil.copytree(self.tree, worker.tree)
        worker.objects = self.objects
        worker.optimised = self.optimised
        return worker

    def users_of(self, file, names):
        """Those of the sources that a file is compiled into."""
        return [name for name in names if file in included_files(self.objects / object_name(name))]


# ---- Tests ---------------------------------------------------------------------------------------


@contextlib.contextmanager
def bounded():
    """Programs started inside write small files only and have little memory."""
    limits = {resource.RLIMIT_FSIZE: FILE_BYTES, resource.RLIMIT_AS: MEMORY_BYTES}
    before = {limit: resource.getrlimit(limit) for limit in limits}
    for limit, value in limits.items():
        resource.setrlimit(limit, (value, before[limit][1]))
    try:
        yield
    finally:
        for limit, value in before.items():
            resource.setrlimit(limit, value)


def as_expected(case, program, directory):
    process, files = case.run(str(program), directory)
    return (
        process.returncode == case.expected_status()
        and process.stdout == case.expected_output(directory)
        and process.stderr == b""
        and files == expected_tree(case)
    )


def golden_case_passes(case, program, scratch):
    directory = pathlib.Path(tempfile.mkdtemp(dir=scratch))
    try:
        return as_expected(case, program, directory)
    except (subprocess.TimeoutExpired, MemoryError, OSError):
        return False
    finally:
        shutil.rmtree(directory, ignore_errors=True)


@functools.cache
def all_cases():
    return golden_case.find_cases()


def cases_for(module):
    """All golden cases, those of the module's topics first."""
    first = TOPICS.get(module, [])
    rank = {topic: place for place, topic in enumerate(first)}
    return sorted(all_cases(), key=lambda case: rank.get(case.directory.name, len(first)))


def failing_golden_case(program, module, scratch):
    for case in cases_for(module):
        if not golden_case_passes(case, program, scratch):
            return f"golden {case.identifier}"
    return None


def failing_whole_run(program, scratch):
    topics = [f"tests/{name}" for name in ("matrix", "files", "examples", "readme")]
    options = ["-q", "-x", "-p", "no:cacheprovider", f"--basetemp={scratch / 'pytest'}"]
    command = [PYTHON, "-m", "pytest", *options, *topics, "--program", str(program)]
    environment = {**os.environ, "PYTHONDONTWRITEBYTECODE": "1"}
    passed = run(command, ROOT, PYTEST_SECONDS, env=environment) == 0
    return None if passed else "matrix, files, examples or readme"


def failing_unit_test(program, scratch):
    environment = {**os.environ, "TMPDIR": str(scratch)}
    command = [str(program), "--gtest_fail_fast", "--gtest_brief=1"]
    return None if run(command, scratch, UNIT_SECONDS, env=environment) == 0 else "unit tests"


# ---- One mutant ----------------------------------------------------------------------------------


def mutated(text, mutant):
    start = sum(map(len, text.splitlines(keepends=True)[: mutant.line - 1])) + mutant.column - 1
    end = start + len(mutant.before)
    if text[start:end] != mutant.before:
        raise SystemExit(f"mutate.py: {mutant.file}:{mutant.line} has changed")
    return text[:start] + mutant.after + text[end:]


class Worker:
    """Builds and tests mutants, one after the other, in a directory of its own."""

    def __init__(self, base, directory):
        self.scratch = directory / "scratch"
        self.scratch.mkdir(parents=True)
        self.base = base
        self.build = base.copy_for_worker(directory)
        self.mutant_objects = directory / "mutant"
        golden_case.TIME_LIMIT_SECONDS = GOLDEN_SECONDS

    @contextlib.contextmanager
    def applied(self, mutant):
        """The mutant stands in the tree."""
        path = self.build.tree / mutant.file
        text = path.read_text()
        path.write_text(mutated(text, mutant))
        self.mutant_objects.mkdir()
        try:
            yield
        finally:
            path.write_text(text)
            shutil.rmtree(self.mutant_objects)
            shutil.rmtree(self.scratch, ignore_errors=True)
            self.scratch.mkdir(exist_ok=True)

    def recompiled(self, names, optimisation="-O0"):
        """The sources' mutated objects by name, or None."""
        objects = {}
        for name in names:
            objects[name] = compile_one(self.build.tree, name, self.mutant_objects, optimisation)
            if objects[name] is None:
                return None
        return objects

    def linked(self, name, sources, objects, *libraries):
        """Links the sources' mutated objects, and for the others the program's own."""
        target = self.mutant_objects / name
        paths = [objects.get(source, self.base.objects / object_name(source)) for source in sources]
        return target if link(paths, target, *libraries) else None

    def is_equivalent(self, names):
        """True if the optimiser makes the same code of the mutant."""
        objects = self.recompiled(names, "-O2")
        return objects is not None and all(
            path.read_bytes() == (self.base.optimised / path.name).read_bytes()
            for path in objects.values()
        )

    def unit_test_sets(self, mutant):
        """All unit tests at once, or those of a header's module first: it changes their objects."""
        tests = self.build.tests()
        if mutant.file.endswith(".cpp"):
            return [tests]
        own = f"tests/unit/{pathlib.Path(mutant.file).stem}_test.cpp"
        return [[name for name in tests if name in (own, "tests/unit/support.cpp")], tests]

    def unit_tests(self, mutant, tests, objects):
        """Builds unit tests; None if they do not compile with the mutant."""
        rebuilt = self.recompiled(self.base.users_of(mutant.file, tests))
        if rebuilt is None:
            return None
        library = [name for name in self.build.sources() if name != "as/main.cpp"]
        flags = ("-lgtest", "-lgtest_main", "-pthread")
        return self.linked("unit_tests", library + tests, {**objects, **rebuilt}, *flags)

    def failing_unit_test(self, mutant, objects):
        for tests in self.unit_test_sets(mutant):
            program = self.unit_tests(mutant, tests, objects)
            if program is None:
                return "a unit test's compilation"
            with bounded():
                found = failing_unit_test(program, self.scratch)
            if found is not None:
                return found
        return None

    def killer(self, mutant, objects):
        """The test that notices the mutant, or None."""
        program = self.linked("HXzirpa", self.build.sources(), objects)
        if program is None:
            return "linker"
        with bounded():
            found = failing_golden_case(
                program, pathlib.Path(mutant.file).stem, self.scratch
            ) or failing_whole_run(program, self.scratch)
        return found or self.failing_unit_test(mutant, objects)

    def judge(self, mutant):
        names = self.base.users_of(mutant.file, self.build.sources())
        with self.applied(mutant):
            objects = self.recompiled(names)
            if objects is None:
                return Verdict(UNCOMPILED, "")
            test = self.killer(mutant, objects)
            if test is not None:
                return Verdict(KILLED, test)
            return Verdict(EQUIVALENT if self.is_equivalent(names) else SURVIVED, "")

    def check_program(self):
        """The program itself must survive, or no verdict would mean anything."""
        test = self.killer(Mutant("as/main.cpp", 1, 1, "", ""), {})
        if test is not None:
            raise SystemExit(f"mutate.py: the program itself fails: {test}")


worker = None  # of this process


def start_worker(base, directory):
    global worker
    worker = Worker(base, directory / f"worker{os.getpid()}")


def check_program(_):
    worker.mutant_objects.mkdir()
    worker.check_program()
    shutil.rmtree(worker.mutant_objects)


def judge(mutant):
    return mutant, worker.judge(mutant)


# ---- The command ---------------------------------------------------------------------------------


def described(mutant):
    return f"{mutant.file}:{mutant.line}:{mutant.column}\t{mutant.before!r} -> {mutant.after!r}"


def parse_survivor(line):
    place, _, change = line.rstrip("\n").partition("\t")
    file, number, column = place.split(":")
    before, after = map(ast.literal_eval, change.split(" -> "))
    return Mutant(file, int(number), int(column), before, after)


def tested_lottery(pool, lottery, count):
    """Verdicts on as many mutants as asked for, those that do not count left out."""
    verdicts = []
    while len(verdicts) < count:
        drawn = lottery.draw(count - len(verdicts))
        if not drawn:
            break
        for mutant, verdict in pool.imap(judge, drawn, chunksize=1):
            report(mutant, verdict)
            if verdict.kind in (UNCOMPILED, EQUIVALENT):
                lottery.put_back(mutant)
            else:
                verdicts.append((mutant, verdict))
    return verdicts


def tested_again(pool, path):
    mutants = [parse_survivor(line) for line in path.read_text().splitlines()]
    verdicts = list(pool.imap(judge, mutants, chunksize=1))
    for mutant, verdict in verdicts:
        report(mutant, verdict)
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
    parser.add_argument("--count", type=int, default=500)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--survivors", type=pathlib.Path, help="write the survivors to this file")
    parser.add_argument("--again", type=pathlib.Path, help="test the mutants in this file anew")
    return parser.parse_args()


def main():
    given = arguments()
    protect_devices()
    with tempfile.TemporaryDirectory(prefix="mutate", dir=MEMORY) as name:
        directory = pathlib.Path(name)
        base = Build(directory / "base")
        base.copy_sources()
        with multiprocessing.Pool(given.jobs) as pool:
            base.compile_everything(pool)
        with multiprocessing.Pool(given.jobs, start_worker, (base, directory)) as pool:
            pool.map(check_program, [None])
            if given.again is not None:
                verdicts = tested_again(pool, given.again)
            else:
                verdicts = tested_lottery(pool, Lottery(given.seed), given.count)
    summarise(verdicts, given.survivors)


if __name__ == "__main__":
    main()
