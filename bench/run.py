#!/usr/bin/env python3
"""Measures the program against its targets and prints the table.

    bench/run.py [--quick] [--seed NUMBER] [--program PATH] [--workloads DIRECTORY]

Times are compared with those of other programs that do the same work in turn (timing.py); counts do
not depend on the machine's load at all (cachegrind.py); memory is what the system reports.
measure.py says what is measured, this file what is to be reached.
"""

import argparse
import datetime
import os
import pathlib
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile

import generate
from measure import (EMPTY, FLOOR, GROWN, GROWN_FROM, GROWTH, IN_MEMORY, LARGE, LISTED, MIB,
                     ON_DISK, OWN, OWN_LISTED, TASS_LISTED, Bench, a_line, count, lines,
                     measure_memory, peers_of, ratios, take_times, write_workloads)

BUILD = pathlib.Path(__file__).resolve().parent.parent / "build"

# Commands that a run needs.
TOOLS = ["valgrind", "/usr/bin/time", "64tass", "acme", "dasm", "m68hc11-as"]


def ratio(value):
    return f"{value:.2f}"


def tenths(value):
    return f"{value:,.1f}"


def whole(value):
    return f"{value:,.0f}"


def size(value):
    return f"{value / MIB:.2f} MiB"


# ---- Targets -----------------------------------------------------------------------------------
#
# Rows are: the measure, its value in each run, the limit to reach, that to aim for, the format.


def peer_rows(bench):
    def row(name, workload, reach, aim):
        others = peers_of(workload)
        return (f"{name}: processor time / fastest of {', '.join(others)}",
                ratios(bench, workload, OWN, *others), reach, aim, ratio)

    listed = " ".join(LISTED)
    return [
        row("large 100k", LARGE, 0.42, 0.36),
        ("same: mispredictions a line", [a_line(bench, LARGE, "mispredictions")], 13.5, 11, tenths),
        ("same: instructions a line", [a_line(bench, LARGE, "instructions")], 1550, 1300, whole),
        (f"large 100k, `{listed}`: processor time / 64tass with listing",
         ratios(bench, LARGE, OWN_LISTED, TASS_LISTED), 0.31, 0.26, ratio),
        row("expressions", "expressions", 1.05, 0.80),
        row("expressions of known names", "expressions-known", 1.05, 0.80),
        row("data", "data", 0.80, 0.65),
        row("symbols", "symbols", 0.42, 0.36),
    ]


def typical_rows(bench):
    faults = [least[OWN].faults - least[EMPTY].faults for least in bench.times[IN_MEMORY]]
    return [
        ("typical in memory: wall time / empty program with the same flags",
         ratios(bench, IN_MEMORY, OWN, EMPTY, kind="wall"), 1.20, 1.15, ratio),
        ("same: page faults above it", faults, 10, 7, whole),
        ("typical on disk, old outputs in place: wall time / empty program",
         ratios(bench, ON_DISK, OWN, EMPTY, kind="wall"), 1.33, 1.25, ratio),
    ]


def floor_rows(bench):
    limits = [(LARGE, 2.3, 1.9), ("data", 1.9, 1.5), ("expressions", 5.5, 4),
              ("expressions-known", 5.5, 4)]
    return [(f"{workload}: processor time / floor with output",
             ratios(bench, workload, OWN, FLOOR), reach, aim, ratio)
            for workload, reach, aim in limits]


def reach_of_memory(memory):
    return memory.limit(1.2, 220, 16)


def aim_of_memory(memory):
    return memory.limit(1, 200, 12)


def memory_row(bench):
    """The workload that comes nearest to its limit, or lies farthest above."""
    name, memory = max(bench.memory.items(),
                       key=lambda item: item[1].used / reach_of_memory(item[1]))
    return (f"memory beyond the source, all options ({name}: {memory.names:,} names, "
            f"{memory.instructions:,} instruction lines)",
            [memory.used], reach_of_memory(memory), aim_of_memory(memory), size)


def growth_rows(bench):
    if GROWTH not in bench.times:
        return []
    longer = lines(bench, GROWN) / lines(bench, GROWN_FROM)
    instructions = [a_line(bench, name, "instructions") for name in (GROWN, GROWN_FROM)]
    return [
        ("growth 100k to 1M: processor time a line",
         [value / longer for value in ratios(bench, GROWTH, GROWN, GROWN_FROM)], 1.05, 1.01, ratio),
        ("same: instructions a line", [instructions[0] / instructions[1]], 1.05, 1.01, ratio),
    ]


def targets(bench):
    return [*peer_rows(bench), *typical_rows(bench), *floor_rows(bench), memory_row(bench),
            *growth_rows(bench)]


# ---- Report ------------------------------------------------------------------------------------


def mark(value, reach, aim):
    if value <= aim:
        return "aim"
    return "reach" if value <= reach else "no"


def target_row(name, values, reach, aim, form):
    """The middle of the runs, and how far they lie apart."""
    value = statistics.median(values)
    spread = f"{form(min(values))} to {form(max(values))}" if len(values) > 1 else ""
    return (name, form(value), spread, form(reach), form(aim), mark(value, reach, aim))


def print_table(head, body):
    print(f"| {' | '.join(head)} |")
    print(f"|{'---|' * len(head)}")
    for row in body:
        print(f"| {' | '.join(row)} |")
    print()


def print_times(bench):
    def milliseconds(runs, name, kind):
        return f"{min(getattr(least[name], kind) for least in runs) * 1000:.2f}"

    print_table(["workload", "command", "processor ms", "wall ms", "page faults"],
                [(group, name, milliseconds(runs, name, "processor"),
                  milliseconds(runs, name, "wall"), whole(min(r[name].faults for r in runs)))
                 for group, runs in bench.times.items() for name in runs[0]])


def print_counts(bench):
    print_table(["workload", "lines", "instructions", "a line", "mispredictions", "a line"],
                [(key, whole(lines(bench, key)), whole(counts.instructions),
                  whole(a_line(bench, key, "instructions")), whole(counts.mispredictions),
                  tenths(a_line(bench, key, "mispredictions")))
                 for key, counts in bench.counts.items()])


def print_memory(bench):
    print_table(["workload", "memory beyond the source", "names", "instruction lines", "reach",
                 "then aim for"],
                [(name, size(memory.used), whole(memory.names), whole(memory.instructions),
                  size(reach_of_memory(memory)), size(aim_of_memory(memory)))
                 for name, memory in bench.memory.items()])


def version(*command):
    process = subprocess.run(command, text=True, check=False, stdin=subprocess.DEVNULL,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return process.stdout.strip().splitlines()[0] if process.stdout.strip() else "unknown"


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def print_circumstances(bench, seed):
    tools = [("gcc", "--version"), ("64tass", "--version"), ("acme", "--version"), ("dasm",),
             ("m68hc11-as", "--version")]
    print(f"{datetime.date.today()}, seed {seed}, {processor()}, {os.cpu_count()} processors, load "
          f"{os.getloadavg()[0]:.1f}, Linux {platform.release()}; "
          f"{'; '.join(version(*tool) for tool in tools)}"
          f"{'; quick run' if bench.quick else ''}.\n")


def report(bench, seed):
    print_circumstances(bench, seed)
    print_table(["measure", "value", "spread", "reach", "then aim for", "reached"],
                [target_row(*row) for row in targets(bench)])
    print_times(bench)
    print_counts(bench)
    print_memory(bench)


# ---- Command line ------------------------------------------------------------------------------


def parse():
    parser = argparse.ArgumentParser(description="Measures the program against its targets.")
    parser.add_argument("--quick", action="store_true", help="one run, no million lines")
    parser.add_argument("--seed", type=int, default=generate.SEED, help="draws other workloads")
    parser.add_argument("--program", type=pathlib.Path, default=BUILD / OWN)
    parser.add_argument("--workloads", type=pathlib.Path, metavar="DIRECTORY",
                        help="where to write workloads and outputs; a temporary one if not named")
    parser.add_argument("--tools", action="store_true",
                        help="only print the commands that a run needs")
    arguments = parser.parse_args()
    missing = [tool for tool in TOOLS if shutil.which(tool) is None]
    missing += [name for name in (EMPTY, FLOOR) if not (BUILD / name).exists()]
    if missing and not arguments.tools:
        parser.error(f"missing {', '.join(missing)} (./dev bench sees to it)")
    return arguments


def main():
    arguments = parse()
    if arguments.tools:
        print(*TOOLS)
        return 0
    # In RAM, so that no disk takes part; the programs lie on disk, where installed programs do.
    parent = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with (tempfile.TemporaryDirectory(dir=BUILD) as disk,
          tempfile.TemporaryDirectory(dir=parent) as memory):
        disk = pathlib.Path(disk)
        originals = {OWN: arguments.program, EMPTY: BUILD / EMPTY, FLOOR: BUILD / FLOOR}
        programs = {name: pathlib.Path(shutil.copy(path, disk / name))
                    for name, path in originals.items()}
        directory = (arguments.workloads or pathlib.Path(memory)).resolve()
        bench = Bench(programs, directory, disk, arguments.quick)
        write_workloads(bench, arguments.seed)
        take_times(bench)
        count(bench)
        measure_memory(bench)
        report(bench, arguments.seed)
    return 0


if __name__ == "__main__":
    sys.exit(main())
