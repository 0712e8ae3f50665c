#!/usr/bin/env python3
"""The processor time of `zirpa check` on the typical program, against HXzirpa's: at most twice as much.

    companion.py --program build/HXzirpa
"""

import argparse
import pathlib
import shutil
import sys
import tempfile

import timing

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = "typical.szirpa"
ROUNDS = 600
MOST = 2.0


def main():
    parser = argparse.ArgumentParser(description="compares zirpa check with HXzirpa")
    parser.add_argument("--program", type=pathlib.Path, required=True)
    program = parser.parse_args().program.resolve()
    with tempfile.TemporaryDirectory(dir="/dev/shm") as directory:
        copies = {name: str(pathlib.Path(directory, name)) for name in ("HXzirpa", "zirpa")}
        for name, copy in copies.items():
            shutil.copy(program.with_name(name), copy)
        shutil.copy(HERE / SOURCE, directory)
        commands = {
            "HXzirpa": [copies["HXzirpa"], SOURCE],
            "check": [copies["zirpa"], "check", SOURCE],
        }
        least = timing.take_turns(commands, directory, ROUNDS, copies.values())
    for name, used in least.items():
        print(f"{name:8} {used.processor * 1000:.2f} ms of processor time, {used.faults} page faults")
    ratio = least["check"].processor / least["HXzirpa"].processor
    print(f"ratio {ratio:.2f}, at most {MOST}")
    return 0 if ratio <= MOST else 1


sys.exit(main())
