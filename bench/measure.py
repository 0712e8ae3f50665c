"""What is measured of which workload, and against what."""

import dataclasses
import shutil
import subprocess
import sys

import cachegrind
import generate
import timing

MIB = 1024 * 1024
LISTED = ["-L", "-S", "-g"]
OWN, EMPTY, FLOOR = "HXzirpa", "bench_empty", "bench_floor"
OWN_LISTED = " ".join([OWN, *LISTED])
TYPICAL = "typical"
LARGE, GROWN_FROM, GROWN = "large-100k", "sparse-100k", "sparse-1M"
IN_MEMORY, ON_DISK, GROWTH = "typical in memory", "typical on disk", "growth"

# The others by the suffixes of their sources, with options that ask for as little as can be
# compared. 64tass: S-records as here, names as they are written, no summary. acme: the plain image,
# as it has no S-records; it keeps the last bytes of an address only. dasm: blocks of bytes with
# their addresses. GNU as: the object file; the step from there to S-records is another program's.
# None of them writes anything like the script.
PEERS = {
    "64tass": "64tass --quiet --case-sensitive --s-record -o 64tass.s19 {}.64tass",
    "acme": "acme -f plain -o acme.bin {}.acme",
    "dasm": "dasm {}.dasm -f2 -odasm.bin",
    "gnu": "m68hc11-as -o gnu.o {}.gnu",
}
# All lines as here, without the disassembled code, which has no counterpart; and the names.
TASS_LISTED = "64tass with listing"
LISTING = "--verbose-list --no-monitor --list=64tass.lst --labels=64tass.lbl"
LISTED_PEERS = {TASS_LISTED: f"{PEERS['64tass']} {LISTING}"}


@dataclasses.dataclass(frozen=True)
class Memory:
    """The peak beyond the source itself, and what may account for it."""

    used: int
    names: int
    instructions: int

    def limit(self, mib, name_bytes, instruction_bytes):
        return mib * MIB + name_bytes * self.names + instruction_bytes * self.instructions


class Bench:
    """Where things are, how often they are run, and what came out."""

    def __init__(self, programs, directory, disk, quick):
        self.programs = programs  # name -> path
        self.directory = directory
        self.disk = disk
        self.quick = quick
        self.runs, self.rounds = (1, 5) if quick else (3, 15)
        self.times = {}   # group -> for each run, command -> least that it used
        self.counts = {}  # workload and options -> cachegrind.Counts
        self.memory = {}  # workload -> Memory

    def workloads(self):
        left_out = (GROWN, GROWN_FROM) if self.quick else ()
        return [name for name in generate.WORKLOADS
                if name not in left_out and not name.startswith("guard")]

    def source(self, workload):
        return self.directory / f"{workload}.szirpa"

    def assemble(self, workload, *options):
        return [self.programs[OWN], *options, f"{workload}.szirpa"]


def say(text):
    print(text, file=sys.stderr, flush=True)


def run(command, directory):
    subprocess.run([*map(str, command)], cwd=directory, check=True, stdout=subprocess.DEVNULL)


def write_workloads(bench, seed):
    say("workloads")
    generate.write(bench.directory, bench.workloads(), seed)
    for directory in (bench.directory, bench.disk):
        shutil.copy(generate.HERE / f"{TYPICAL}.szirpa", directory)


# ---- Times -------------------------------------------------------------------------------------


def peers_of(workload):
    return [language.suffix for language in generate.WORKLOADS[workload][1]]


def compared(bench, workload):
    """The commands that do the work of a workload, and the floor, which writes as many bytes."""
    run(bench.assemble(workload), bench.directory)
    sizes = [(bench.directory / f"{workload}{end}").stat().st_size for end in (".s19", ".fmem")]
    result = {OWN: bench.assemble(workload),
              FLOOR: [bench.programs[FLOOR], f"{workload}.szirpa", *sizes]}
    others = {name: PEERS[name] for name in peers_of(workload)}
    if workload == LARGE:
        result[OWN_LISTED] = bench.assemble(workload, *LISTED)
        others |= LISTED_PEERS
    return result | {name: line.format(workload).split() for name, line in others.items()}


def groups(bench):
    """What takes turns: the name of the group, its commands, where they run, how often."""
    typical = {OWN: bench.assemble(TYPICAL), EMPTY: [bench.programs[EMPTY]]}
    yield IN_MEMORY, typical, bench.directory, 40 * bench.rounds
    yield ON_DISK, typical, bench.disk, 40 * bench.rounds
    for workload in filter(peers_of, bench.workloads()):
        yield workload, compared(bench, workload), bench.directory, bench.rounds
    if not bench.quick:
        grown = {name: bench.assemble(name) for name in (GROWN, GROWN_FROM)}
        yield GROWTH, grown, bench.directory, bench.rounds


def take_times(bench):
    for number in range(bench.runs):
        for group, commands, directory, rounds in groups(bench):
            say(f"times, run {number + 1} of {bench.runs}: {group}: {', '.join(commands)}")
            least = timing.take_turns(commands, directory, rounds, bench.programs.values())
            bench.times.setdefault(group, []).append(least)


def ratios(bench, group, own, *others, kind="processor"):
    """For each run, what a command took against the fastest of the others."""
    return [getattr(least[own], kind) / min(getattr(least[other], kind) for other in others)
            for least in bench.times[group]]


# ---- Counts ------------------------------------------------------------------------------------


def count(bench):
    jobs = [(name, []) for name in (TYPICAL, *bench.workloads())] + [(LARGE, LISTED)]
    for name, options in jobs:
        key = " ".join([name, *options])
        say(f"counts: {key}")
        bench.counts[key] = cachegrind.counts(bench.assemble(name, *options), bench.directory)


def lines(bench, key):
    with bench.source(key.split()[0]).open("rb") as source:
        return sum(1 for _ in source)


def a_line(bench, key, kind):
    return getattr(bench.counts[key], kind) / lines(bench, key)


# ---- Memory ------------------------------------------------------------------------------------


def measure_memory(bench):
    """With all outputs: the listing shows the names, the debug records the instructions."""
    for name in (TYPICAL, *bench.workloads()):
        say(f"memory: {name}")
        report = bench.directory / "time.txt"
        run(["/usr/bin/time", "-f", "%M", "-o", report, *bench.assemble(name, *LISTED)],
            bench.directory)
        _, _, table = (bench.directory / f"{name}.lst").read_text().partition("SYMBOL TABLE:")
        records = (bench.directory / f"{name}.s19").read_text()
        peak = int(report.read_text()) * 1024
        bench.memory[name] = Memory(peak - bench.source(name).stat().st_size,
                                    table.count("\n\t"), records.count("\nSY:C:X:"))
