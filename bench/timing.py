"""Times of commands that take turns.

A busy machine only ever adds to a time, so the smallest of many rounds counts, and a ratio is one
of smallest times.
"""

import contextlib
import dataclasses
import os
import shutil
import subprocess
import time


@dataclasses.dataclass(frozen=True)
class Used:
    processor: float  # user and system time, in seconds
    wall: float
    faults: int  # pages that were brought in without a disk

    def least(self, other):
        return Used(min(self.processor, other.processor), min(self.wall, other.wall),
                    min(self.faults, other.faults))


def run(command):
    """What one run takes, from its start until its status is known."""
    quiet = [(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)]
    began = time.perf_counter()
    process = os.posix_spawn(command[0], command, {}, file_actions=quiet)
    _, status, usage = os.wait4(process, 0)
    wall = time.perf_counter() - began
    if status != 0:
        raise subprocess.CalledProcessError(os.waitstatus_to_exitcode(status), command)
    return Used(usage.ru_utime + usage.ru_stime, wall, usage.ru_minflt)


def write_anew(program):
    """Copies a program: how fast it starts depends on where its file lies in memory."""
    copy = f"{program}.copy"
    shutil.copy(program, copy)
    os.replace(copy, program)


def take_turns(commands, directory, rounds, programs):
    """The least that each of the named commands takes, in a directory, over some rounds.

    Every other round goes backwards, so that a drift of the machine harms all alike.
    """
    commands = {name: [shutil.which(word), *map(str, words)]
                for name, (word, *words) in commands.items()}
    least = {}
    with contextlib.chdir(directory):
        for number in range(rounds):
            if number % max(1, rounds // 60) == 0:
                for program in programs:
                    write_anew(program)
            for name in sorted(commands, reverse=number % 2 == 1):
                used = run(commands[name])
                least[name] = used.least(least.get(name, used))
    return least
