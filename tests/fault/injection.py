"""Runs of the fault program: the reference runs, in which nothing fails and every call is told, and
the injections, in which calls fail."""

import collections
import dataclasses
import fcntl
import functools
import os
import pathlib
import re
import shutil
import tempfile

import running
from running import files_below

SANITIZERS = {
    "ASAN_OPTIONS": "detect_leaks=1:exitcode=99",
    "UBSAN_OPTIONS": "print_stacktrace=1",
}

# The number counts the outputs of a run, whether their temporary files can be created or not.
TEMPORARY = re.compile(r"HXzirpa-[0-9]+-([0-9]+)\.tmp")
RENAMING = re.compile(r".*HXzirpa-[0-9]+-([0-9]+)\.tmp>(.*)")

# Number of injections performed in each scenario.
performed = collections.Counter()


@dataclasses.dataclass(frozen=True)
class Injection:
    """Which call fails, and how; described in fault_main.cpp."""

    kind: str
    mode: str
    call: int = 1

    def __str__(self):
        return f"{self.kind} {self.mode} {self.call}"

    @property
    def is_harmless(self):
        return self.mode in ("count", "interrupted", "short")


@dataclasses.dataclass
class Run:
    """What a run left."""

    directory: bytes
    status: int
    output: bytes
    errors: bytes
    files: dict
    reported: list  # (kind, object) of the calls that failed; in the mode "count", of all

    def name_outputs(self, names):
        """Calls outputs by their names, whatever file stands for them."""
        self.reported = [(kind, output_of(thing, names)) for kind, thing in self.reported]

    def output_in(self, directory):
        """Standard output of the same run in another directory."""
        return self.output.replace(self.directory, directory)


def read_report(path):
    lines = path.read_text("latin-1").splitlines()
    return [tuple(line.split(" ", 1)) for line in lines]


def output_of(thing, names):
    """The output that a temporary file or the target of a link stands for; other names stay."""
    match = TEMPORARY.search(thing)
    return names.get(thing if match is None else match[1], thing)


def standard_input(content):
    """A pipe that holds all of the content, so that each run takes it in the same pieces."""
    if content is None:
        return open(os.devnull, "rb")
    reader, writer = os.pipe()
    fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, max(len(content), 1))
    os.write(writer, content)
    os.close(writer)
    return open(reader, "rb")


def perform(program, scenario, injection, place, old_outputs=(), arguments=None):
    """One run, in a new directory below place, which does not outlive it."""
    home = pathlib.Path(tempfile.mkdtemp(dir=place))
    directory = home / "run"
    directory.mkdir()
    scenario.prepare(directory, old_outputs)
    report = home / "report"
    settings = {
        "HXZIRPA_FAULT_MODE": injection.mode,
        "HXZIRPA_FAULT_KIND": injection.kind,
        "HXZIRPA_FAULT_CALL": str(injection.call),
        "HXZIRPA_FAULT_REPORT": str(report),
    }
    with standard_input(scenario.standard_input) as given:
        process = running.run(
            directory,
            program,
            *(scenario.arguments if arguments is None else arguments),
            env={**os.environ, **SANITIZERS, **settings},
            stdin=given,
            preexec_fn=lambda: [os.close(number) for number in scenario.closed],
        )
    run = Run(
        os.fsencode(directory),
        process.returncode,
        process.stdout,
        process.stderr,
        files_below(directory),
        read_report(report),
    )
    shutil.rmtree(home)
    return run


class Reference:
    """The runs of a scenario in which nothing fails."""

    def __init__(self, program, scenario, place):
        self.program = program
        self.scenario = scenario
        self.place = place
        self.old_outputs = ()
        self.normal = self.count_and_name()
        if scenario.with_old_outputs:
            self.old_outputs = self.outputs
            self.normal = self.count_and_name()

    def count(self, arguments=None):
        counting = Injection("all", "count")
        return perform(
            self.program, self.scenario, counting, self.place, self.old_outputs, arguments
        )

    def count_and_name(self):
        run = self.count()
        self.names = {**self.names_of_links(), **self.names_of_temporaries(run)}
        run.name_outputs(self.names)
        return run

    def names_of_links(self):
        """The outputs by the files that they are links to."""
        links = self.scenario.links
        return {target: name for name, target in links.items() if target == "other.s19"}

    def names_of_temporaries(self, run):
        """The outputs by the numbers of their temporary files. The S-record file is looked for
        first and is the first; its temporary file is not renamed after errors."""
        looked_for = [name for kind, name in run.reported if kind == "readlink"]
        renamings = [RENAMING.match(name) for kind, name in run.reported if kind == "rename"]
        names = {match[1]: match[2] for match in renamings}
        return {**names, "0": looked_for[0]} if looked_for else {}

    def inject(self, injection):
        run = perform(self.program, self.scenario, injection, self.place, self.old_outputs)
        run.name_outputs(self.names)
        return run

    @functools.cached_property
    def without_listing(self):
        """The run that does not ask for the listing."""
        return self.count([word for word in self.scenario.arguments if word != b"-L"])

    @property
    def outputs(self):
        """Names of the outputs in the order of their creation; the S-record file comes first."""
        return [name for kind, name in self.normal.reported if kind == "create"]

    @functools.cached_property
    def before(self):
        """The files that the run finds."""
        directory = pathlib.Path(tempfile.mkdtemp(dir=self.place))
        self.scenario.prepare(directory, self.old_outputs)
        files = files_below(directory)
        shutil.rmtree(directory)
        return files

    def injections(self):
        """All that can be made to fail in the normal run."""
        kinds = [kind for kind, _ in self.normal.reported]
        count = collections.Counter(kinds)
        memory = count.pop("memory", 0)
        calls = range(1, count.total() + 1)
        for mode in ("once", "onwards"):
            yield from (Injection("calls", mode, call) for call in calls)
        for kind, number in count.items():
            # The last call of a kind fails alone; that is among the above.
            yield from (Injection(kind, "onwards", call) for call in range(1, number))
        for kind in ("read", "write"):
            for mode in ("interrupted", "short"):
                yield from (Injection(kind, mode, call + 1) for call in range(count[kind]))
        yield from (Injection("write", "full", call + 1) for call in range(count["write"]))
        for mode in ("once", "onwards"):
            yield from (Injection("memory", mode, call + 1) for call in range(memory))
        for position, kind in enumerate(kinds):
            if kind == "memory":
                yield Injection("all", "onwards", position + 1)
