#!/usr/bin/env python3
"""Measures the program against its targets and prints the table.

    bench/run.py [--quick] [--program PATH] [--workloads DIRECTORY]

Times are ratios of commands that took turns, so a busy machine harms them little; instruction
counts do not depend on the machine's load at all.
"""

import argparse
import datetime
import json
import os
import pathlib
import platform
import shlex
import shutil
import statistics
import subprocess
import sys
import tempfile

import callgrind
import generate

HERE = pathlib.Path(__file__).resolve().parent

# Commands that a run needs.
TOOLS = ["gcc", "hyperfine", "valgrind", "/usr/bin/time", "64tass", "acme", "m68hc11-as"]

MIB = 1024 * 1024
LISTED = ["-L", "-S", "-g"]
LARGE = "large-100k"


class Bench:
    """Where things are, and what was measured."""

    def __init__(self, program, binaries, directory, quick):
        self.binaries = binaries
        self.program = pathlib.Path(shutil.copy(program, binaries))
        self.directory = directory
        self.quick = quick
        self.times = {}         # command -> medians of the rounds, in seconds
        self.instructions = {}  # workload and options -> instructions
        self.memory = {}        # workload -> (bytes beyond the source, names)

    def source(self, workload):
        return self.directory / f"{workload}.szirpa"

    def lines(self, workload):
        """Lines that count: the data workload's origins are no part of its subject."""
        with self.source(workload).open("rb") as source:
            return sum(workload != "data" or b"FCB" in line for line in source)

    def assemble(self, workload, *options):
        return [self.program, *options, f"{workload}.szirpa"]


def say(text):
    print(text, file=sys.stderr, flush=True)


def run(command, directory):
    return subprocess.run([*map(str, command)], cwd=directory, check=True, text=True,
                          stdout=subprocess.PIPE).stdout


# ---- Preparation -------------------------------------------------------------------------------


def missing_tools():
    return [tool for tool in TOOLS if shutil.which(tool) is None]


def compile_floors(bench):
    for name in ("empty", "floor"):
        run(["gcc", "-O2", "-static", "-o", name, HERE / f"{name}.c"], bench.binaries)


def workloads(quick):
    left_out = {"sparse-1M", "sparse-100k"} if quick else set()
    return [name for name in generate.WORKLOADS
            if name not in left_out and not name.startswith("guard")]


def written_bytes(bench):
    """The sizes of records and script of the large workload."""
    run(bench.assemble(LARGE), bench.directory)
    return [str((bench.directory / f"{LARGE}{end}").stat().st_size) for end in (".s19", ".fmem")]


# ---- Times -------------------------------------------------------------------------------------


def small_commands(bench):
    return {
        "empty static program": [bench.binaries / "empty"],
        "typical": bench.assemble("typical"),
    }


def large_commands(bench):
    """The options of the others ask for as little as can be compared.

    64tass: S-records as here, names as they are written, no summary; its listing without the
    disassembled code, which has no counterpart here. acme: the plain image, as it has no S-records;
    it keeps the last bytes of an address only, so it has next to nothing to write. GNU as: the
    object file; the step from there to S-records is another program's and is left out.
    """
    tass = ["64tass", "--quiet", "--case-sensitive", "--s-record", "-o", "64tass.s19"]
    return {
        LARGE: bench.assemble(LARGE),
        "64tass": [*tass, f"{LARGE}.64tass"],
        "acme": ["acme", "-f", "plain", "-o", "acme.bin", f"{LARGE}.acme"],
        "GNU as": ["m68hc11-as", "-o", "gnu.o", f"{LARGE}.s"],
        "fgets floor": [bench.binaries / "floor", f"{LARGE}.szirpa", *written_bytes(bench)],
        f"{LARGE} {' '.join(LISTED)}": bench.assemble(LARGE, *LISTED),
        "64tass with listing": [*tass, "--no-monitor", "--list=64tass.lst", f"{LARGE}.64tass"],
    }


def time_round(bench, commands, runs):
    """Median seconds of each command, run one after the other."""
    result = bench.directory / "hyperfine.json"
    run(["hyperfine", "-N", "--style", "none", "--warmup", "1", "--runs", runs,
         "--export-json", result, *(shlex.join(map(str, c)) for c in commands.values())],
        bench.directory)
    rows = json.loads(result.read_text())["results"]
    return {name: statistics.median(row["times"]) for name, row in zip(commands, rows)}


def write_anew(program):
    """Copies a program: how fast it starts depends on where its file lies in memory."""
    copy = program.with_suffix(".copy")
    shutil.copy(program, copy)
    os.replace(copy, program)


def take_times(bench, commands, rounds, runs):
    """Every other round goes backwards, so that a drift of the machine harms all alike."""
    for number in range(rounds):
        for program in (bench.program, bench.binaries / "empty", bench.binaries / "floor"):
            write_anew(program)
        say(f"times: {', '.join(commands)}: round {number + 1} of {rounds}")
        order = list(commands.items())
        medians = time_round(bench, dict(order[::-1] if number % 2 else order), runs)
        for name, seconds in medians.items():
            bench.times.setdefault(name, []).append(seconds)


def ratio(bench, name, *others):
    """The median over the rounds of the time against that of the fastest other."""
    rounds = zip(bench.times[name], *(bench.times[other] for other in others))
    return statistics.median(own / min(rest) for own, *rest in rounds)


# ---- Instructions and memory -------------------------------------------------------------------


def count_instructions(bench):
    jobs = [(name, []) for name in workloads(bench.quick)] + [(LARGE, LISTED)]
    for name, options in jobs:
        key = " ".join([name, *options])
        say(f"instructions: {key}")
        bench.instructions[key] = callgrind.instructions(
            bench.assemble(name, *options), bench.directory)


def per_line(bench, key):
    return bench.instructions[key] / bench.lines(key.split()[0])


def growth(bench):
    """Instructions a line of the larger workload against the smaller, for each pair."""
    pairs = [("symbols", "symbols-4000")]
    if not bench.quick:
        pairs.append(("sparse-1M", "sparse-100k"))
    return {f"{large} / {small}": per_line(bench, large) / per_line(bench, small)
            for large, small in pairs}


def names_of(bench, workload):
    """How many names the program keeps: the rows of its symbol table."""
    table = run(bench.assemble(workload, "-S"), bench.directory)
    return sum(row.startswith("\t") for row in table.splitlines())


def measure_memory(bench):
    for name in workloads(bench.quick):
        say(f"memory: {name}")
        report = bench.directory / "time.txt"
        run(["/usr/bin/time", "-f", "%M", "-o", report, *bench.assemble(name)], bench.directory)
        peak = int(report.read_text()) * 1024
        bench.memory[name] = (peak - bench.source(name).stat().st_size, names_of(bench, name))


def memory_limit(names, mib, name_bytes):
    return mib * MIB + name_bytes * names


def tightest_memory(bench):
    """The workload that comes nearest to its limit, or lies farthest above."""
    return max(bench.memory, key=lambda name: bench.memory[name][0]
               / memory_limit(bench.memory[name][1], 1.5, 250))


# ---- Report ------------------------------------------------------------------------------------


def times(value):
    return f"{value:.2f}"


def count(value):
    return f"{value:,.0f}"


def size(value):
    return f"{value / MIB:.2f} MiB"


def rows(bench):
    """Measure, value, limit to reach, limit to aim for, format."""
    listed = f"{LARGE} {' '.join(LISTED)}"
    tight = tightest_memory(bench)
    used, names = bench.memory[tight]
    grown = growth(bench)
    return [
        ("typical: wall time / empty static program",
         ratio(bench, "typical", "empty static program"), 1.25, 1.10, times),
        ("typical: total instructions", bench.instructions["typical"], 250_000, 170_000, count),
        ("large 100k, S-records and script: time / fastest of the three",
         ratio(bench, LARGE, "64tass", "acme", "GNU as"), 0.6, 0.45, times),
        ("same: time / fgets floor with output", ratio(bench, LARGE, "fgets floor"), 3, 2, times),
        ("same: instructions a line", per_line(bench, LARGE), 2000, 1300, count),
        ("large 100k with `-L -S -g`: time / 64tass with listing",
         ratio(bench, listed, "64tass with listing"), 0.5, 0.4, times),
        ("same: instructions a line", per_line(bench, listed), 2800, 2000, count),
        ("symbols: instructions a line", per_line(bench, "symbols"), 2200, 1500, count),
        ("expressions: instructions a line", per_line(bench, "expressions"), 4500, 3000, count),
        ("data: instructions a line", per_line(bench, "data"), 6000, 4000, count),
        ("instructions a line at 1M against 100k, and at 39,000 names against 4,000 (the larger)",
         max(grown.values()), 1.05, 1.01, lambda value: f"{value:.3f}"),
        (f"peak memory beyond the source itself ({tight}, {names:,} names)", used,
         memory_limit(names, 1.5, 250), memory_limit(names, 1, 220), size),
    ]


def mark(value, reach, aim):
    if value <= aim:
        return "aim"
    return "reach" if value <= reach else "no"


def print_table(head, body):
    print(f"| {' | '.join(head)} |")
    print(f"|{'---|' * len(head)}")
    for row in body:
        print(f"| {' | '.join(row)} |")
    print()


def version(*command):
    process = subprocess.run(command, text=True, check=False, stdin=subprocess.DEVNULL,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return process.stdout.strip().splitlines()[0] if process.stdout.strip() else "unknown"


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def print_circumstances(bench):
    print(f"{datetime.date.today()}, {processor()}, {os.cpu_count()} processors, load "
          f"{os.getloadavg()[0]:.1f}, Linux {platform.release()}; {version('gcc', '--version')}; "
          f"{version('64tass', '--version')}; {version('acme', '--version')}; "
          f"{version('m68hc11-as', '--version')}"
          f"{'; quick run' if bench.quick else ''}.\n")


def report(bench):
    print_circumstances(bench)
    print_table(["measure", "value", "reach", "then aim for", "reached"],
                [(name, form(value), form(reach), form(aim), mark(value, reach, aim))
                 for name, value, reach, aim, form in rows(bench)])
    print_table(["command", "median ms", "fastest round", "slowest round"],
                [(name, *(f"{f(rounds) * 1000:.2f}" for f in (statistics.median, min, max)))
                 for name, rounds in bench.times.items()])
    print_table(["workload", "instructions", "lines", "a line"],
                [(key, count(value), count(value / per_line(bench, key)),
                  count(per_line(bench, key))) for key, value in bench.instructions.items()])
    print_table(["growth", "ratio"], [(k, f"{v:.4f}") for k, v in growth(bench).items()])
    print_table(["workload", "memory beyond the source", "names", "reach", "then aim for"],
                [(name, size(used), count(names), size(memory_limit(names, 1.5, 250)),
                  size(memory_limit(names, 1, 220)))
                 for name, (used, names) in bench.memory.items()])


def measure(bench):
    say("workloads")
    shutil.copy(HERE / "typical.szirpa", bench.directory)
    generate.write(bench.directory, workloads(bench.quick))
    compile_floors(bench)
    rounds = 4 if bench.quick else 15
    take_times(bench, small_commands(bench), 4 * rounds, 60)
    take_times(bench, large_commands(bench), rounds, 3)
    count_instructions(bench)
    measure_memory(bench)
    report(bench)


def main():
    parser = argparse.ArgumentParser(description="Measures the program against its targets.")
    parser.add_argument("--quick", action="store_true", help="fewer rounds, no million lines")
    parser.add_argument("--program", type=pathlib.Path, default=HERE.parent / "build" / "HXzirpa")
    parser.add_argument("--workloads", type=pathlib.Path, metavar="DIRECTORY",
                        help="where to write workloads and outputs; a temporary one if not named")
    parser.add_argument("--tools", action="store_true",
                        help="only print the commands that a run needs")
    arguments = parser.parse_args()
    if arguments.tools:
        print(*TOOLS)
        return 0
    missing = missing_tools()
    if missing:
        parser.error(f"missing {', '.join(missing)} (./dev bench installs them)")
    program = arguments.program.resolve()
    # In RAM, so that no disk takes part. The programs lie on disk, where installed programs do.
    parent = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory() as binaries, tempfile.TemporaryDirectory(dir=parent) as name:
        directory = arguments.workloads.resolve() if arguments.workloads else pathlib.Path(name)
        measure(Bench(program, pathlib.Path(binaries), directory, arguments.quick))
    return 0


if __name__ == "__main__":
    sys.exit(main())
