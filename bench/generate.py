#!/usr/bin/env python3
"""Writes the workloads of the benchmark into a directory: the same bytes for the same seed.

    bench/generate.py [--seed NUMBER] DIRECTORY [WORKLOAD ...]

Each is drawn once, as statements without a language, and written in that of HXzirpa and in those of
the assemblers that it is compared with. So all read the same lines, names, expressions and data,
and write the same bytes, but for the codes of their processors' instructions.
"""

import argparse
import pathlib
import random
import sys

from expressions import expressions
from languages import ACME, DASM, GNU, TASS64, ZIRPA
from large import FIRST_NUMBER, WORDS, large

HERE = pathlib.Path(__file__).resolve().parent
SEED = 20240229


def in_blocks(statements, size, origin):
    """The statements, each block of which begins at the origin anew."""
    for number, statement in enumerate(statements):
        if number % size == 0:
            yield ("origin", origin)
        yield statement


def symbols(rng, names, references):
    """Half of the names are constants at the beginning, half are labels; a reference a line."""
    known = [f"{rng.choice(WORDS)}_{rng.choice(WORDS)}_{i + FIRST_NUMBER}" for i in range(names)]
    constants, labels = known[: names // 2], known[names // 2:]
    yield ("title", "Many names")
    for i, name in enumerate(constants):
        yield ("constant", name, ("decimal", i % 256))
    uses = [(("LDA", "lda", "ldaa"), "direct"), (("STA", "sta", "staa"), "direct"),
            (("LDX", "ldx", "ldx"), "immediate"), None]
    for i in range(references):
        if i % 75 == 0:
            yield ("origin", ("hex", 0x10))
        for label in labels[i * len(labels) // references: (i + 1) * len(labels) // references]:
            yield ("label", label)
        use, name = rng.choice(uses), rng.choice(known)
        yield ("instruction", "", use[0], (use[1], name), "") if use else ("address", "", [name])
    yield ("end", "")


def data(rng, rows):
    """Rows of sixteen values; as many rows at a time as fit into memory."""
    notations = {"hex": 60, "decimal": 30, "binary": 5, "character": 5}

    def value():
        notation = rng.choices(list(notations), notations.values())[0]
        number = rng.randint(0, 255)
        return (notation, 97 + number % 26 if notation == "character" else number)

    yield ("title", "Data")
    lines = (("bytes", "", [value() for _ in range(16)]) for _ in range(rows))
    yield from in_blocks(lines, 16, ("hex", 0))
    yield ("end", "")


# The million lines have room for few names in each hundred, so their growth is measured against a
# hundred thousand lines that have as few.
FEW_NAMES = 0.86

PEERS = (TASS64, ACME, DASM, GNU)
# What draws a workload, and the languages that it is written in.
WORKLOADS = {
    "large-100k": (lambda rng: large(rng, 100_000), PEERS),
    "sparse-100k": (lambda rng: large(rng, 100_000, FEW_NAMES), ()),
    "sparse-1M": (lambda rng: large(rng, 1_000_000, FEW_NAMES), ()),
    "symbols": (lambda rng: symbols(rng, 39_000, 200_000), PEERS),
    "expressions": (lambda rng: expressions(rng, 100_000, 1 / 3), PEERS),
    "expressions-known": (lambda rng: expressions(rng, 100_000, 0), PEERS),
    "data": (lambda rng: data(rng, 100_000), PEERS),
    "guard-large": (lambda rng: large(rng, 2_000), ()),
    "guard-expressions": (lambda rng: expressions(rng, 1_000, 1 / 3), ()),
    "guard-data": (lambda rng: data(rng, 500), ()),
}


def write_languages(directory, name, statements, languages):
    """One file for each language, which says so in its suffix."""
    statements = list(statements)
    for language in languages:
        path = directory / f"{name}.{language.suffix}"
        path.write_text("".join(f"{language.line(statement)}\n" for statement in statements))


def write(directory, names, seed=SEED):
    """Writes the named workloads into a directory."""
    directory.mkdir(parents=True, exist_ok=True)
    for name in names:
        draw, peers = WORKLOADS[name]
        write_languages(directory, name, draw(random.Random(f"{name} {seed}")), (ZIRPA, *peers))


def main():
    parser = argparse.ArgumentParser(description="Writes the workloads of the benchmark.")
    parser.add_argument("--seed", type=int, default=SEED, help="draws others")
    parser.add_argument("directory", type=pathlib.Path)
    parser.add_argument("workloads", nargs="*", metavar="WORKLOAD",
                        help=f"one of {', '.join(WORKLOADS)}; all of them if none is named")
    arguments = parser.parse_args()
    unknown = set(arguments.workloads) - set(WORKLOADS)
    if unknown:
        parser.error(f"no such workload: {', '.join(sorted(unknown))}")
    write(arguments.directory, arguments.workloads or WORKLOADS, arguments.seed)
    return 0


if __name__ == "__main__":
    sys.exit(main())
