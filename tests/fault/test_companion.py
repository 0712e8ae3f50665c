"""The companion program when calls fail: a normal result, or status 2 with the reason; never a crash,
nor an output that is missing or cut without a word."""

import collections
import posixpath
import re

import golden_case
import pytest
from injection import TEMPORARY, Reference, performed
from judgement import DELETING, looks_whole
from scenarios import Scenario
from test_fault import MOST_SHOWN, assert_no_complaints, sample

# With --all, one failure of memory of so many; there are thousands in a run.
MEMORY_STEP = 40
UNUSABLE = 2
REASON = re.compile(rb"can't be (?:read|created|written): .|out of memory")
SANITIZER = re.compile(rb"Sanitizer|runtime error|left open|terminate called")

EVERYTHING = golden_case.GoldenCase("debug", "all_options_at_once").file(".szirpa")
WARNED = b"\tLDA\t#1+7%4\n"
FAULTY = b"\tORG\t0\nlabel\tLDXA\nlabel\tLDA\t#300\n\tBRA\tlable\n"
FILES = {"prog.szirpa": EVERYTHING, "warned.szirpa": WARNED, "faulty.szirpa": FAULTY}
ALL_OUTPUTS = "-L -A -S -g -w --depfile prog.d"


def run_of(words, **more):
    arguments = [word.encode() for word in words.split()]
    name = words.replace("/", "_")
    return Scenario(name + "+old" * ("with_old_outputs" in more), FILES, arguments, b"", **more)


SCENARIOS = [
    run_of(f"build {ALL_OUTPUTS} prog.szirpa"),
    run_of(f"build {ALL_OUTPUTS} prog.szirpa", with_old_outputs=True),
    run_of("build -L -A faulty.szirpa", with_old_outputs=True),
    run_of("build --strict warned.szirpa", with_old_outputs=True),
    run_of("build -o out/of.s19 --depfile out/of.d warned.szirpa", directories=["out"]),
    run_of("build --stdout -S warned.szirpa"),
    run_of("build -", standard_input=WARNED),
    run_of("build -L prog.szirpa", closed=(0, 1, 2)),
    run_of("check prog.szirpa faulty.szirpa none.szirpa warned.szirpa"),
    run_of("check --format json faulty.szirpa warned.szirpa prog.szirpa"),
    run_of("check --format sarif faulty.szirpa none.szirpa"),
    run_of("check --stdin-name edited.szirpa -", standard_input=FAULTY),
    run_of("map prog.szirpa"),
    run_of("map --svg map.svg prog.szirpa"),
    run_of("map --svg map.svg warned.szirpa", with_old_outputs=True),
    run_of("explain bad-label"),
    run_of("explain all"),
    run_of("build --lisitng prog.szirpa"),
    run_of("check --help"),
]


class Judgement:
    """The complaints about one injection."""

    def __init__(self, reference, injection, run):
        self.reference = reference
        self.normal = reference.normal
        self.run = run
        self.failed = [] if injection.is_harmless else run.reported
        self.failed_kinds = {kind for kind, _ in self.failed}
        self.complaints = [*self.about_crashes(), *self.about_end(), *self.about_files()]

    def about_crashes(self):
        if self.run.status not in (0, 1, UNUSABLE) or SANITIZER.search(self.run.errors):
            yield f"status {self.run.status}: {self.run.errors[-MOST_SHOWN * 40 :]!r}"
        if not self.run.reported:
            yield "no call has failed"

    def is_normal(self):
        is_same = self.run.status == self.normal.status and self.normal.status != UNUSABLE
        return is_same and not self.is_told_as_overflow()

    def is_told_as_overflow(self):
        """A table of names that can't grow is an error of the source, which has too many."""
        text = self.run.output + self.run.errors
        return "memory" in self.failed_kinds and b"too-many-names" in text

    def about_end(self):
        if self.is_normal():
            for what in ("output", "errors"):
                if getattr(self.run, what) != getattr(self.normal, what):
                    yield f"{what} differs: {getattr(self.run, what)[-MOST_SHOWN * 10 :]!r}"
        elif self.is_told_as_overflow():
            if self.run.status == 0:
                yield "an overflow is no success"
        elif self.run.status != UNUSABLE:
            yield f"status {self.run.status}"
        elif not REASON.search(self.run.output + self.run.errors) and not self.is_muted():
            yield f"no reason: {self.run.errors!r}"

    def is_muted(self):
        refused = self.normal.status == UNUSABLE and self.run.errors == self.normal.errors
        return refused or 2 in self.reference.scenario.closed or self.has_failed("write", "standard error")

    def has_failed(self, kind, name):
        return (kind, name) in self.failed

    def about_files(self):
        for name in sorted({*self.reference.before, *self.normal.files, *self.run.files}):
            content = self.run.files.get(name)
            if content not in self.contents_allowed(name) and not self.is_excused(name, content):
                yield f"{name} is {content if content is None else content[-200:]!r}"

    def contents_allowed(self, name):
        """What a file may hold: what it is to hold, and after a failure also what it held before;
        results may be gone then."""
        if self.is_normal():
            return [self.normal.files.get(name)]
        held = [self.normal.files.get(name), self.reference.before.get(name)]
        return [*held, None] if name not in FILES and self.normal.files.get(name) else held

    def is_excused(self, name, content):
        """Temporary files that can't be deleted; a listing, which only shows; what can neither be
        put into its place as a whole nor deleted."""
        if content is None:
            return False
        if TEMPORARY.fullmatch(posixpath.basename(name)):
            return "unlink" in self.failed_kinds
        if name in FILES or self.run.status == 0:
            return False
        is_cut = self.failed_kinds & DELETING and not looks_whole(content)
        return is_cut or (self.run.status == UNUSABLE and name.endswith(".lst"))


def injections_of(reference, is_all, number):
    injections = list(reference.injections())
    if not is_all:
        return sample(injections, number)
    by_kind = collections.defaultdict(list)
    for injection in injections:
        is_memory = injection.kind in ("memory", "all")
        by_kind[injection.kind, injection.mode].append(injection) if is_memory else None
    calls = [each for each in injections if each.kind not in ("memory", "all")]
    return calls + [each for some in by_kind.values() for each in some[::MEMORY_STEP]]


@pytest.mark.parametrize("scenario", SCENARIOS, ids=lambda scenario: scenario.identifier)
def test_fault(scenario, program, request, tmp_path):
    reference = Reference(program, scenario, tmp_path.resolve())
    injections = injections_of(reference, request.config.getoption("--all"), len(performed))
    performed[scenario.identifier] = len(injections)
    assert_no_complaints(reference, injections, Judgement)
