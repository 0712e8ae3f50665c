#!/usr/bin/env python3
"""Measures `zirpa lsp` under a hand that types.

    bench/keys.py [--keys NUMBER] [--lines NUMBER] [--edits NUMBER] [--zirpa PATH]

Keys are typed in a source of many lines, one after another: words are written and removed again,
comments and operands change, lines are broken and joined. After each key the time is taken until
the diagnostics of the new text have arrived, and until the hints and the colours of fifty lines
have arrived after them: by the clock, and how much of that the server has worked, to which other
work on the machine adds little. Then so many edits are made in a shorter source, and the memory of the
server is shown after a tenth of them and after all.
"""

import argparse
import pathlib
import random
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent
sys.path.insert(0, str(ROOT / "tests" / "lsp"))

from client import URI, Client, edit, span  # noqa: E402
from languages import ZIRPA  # noqa: E402
from large import large  # noqa: E402

SHOWN_LINES = 50
SHORT_LINES = 500
TYPED = "        LDA     #value+1        ; typed\n"


def source(lines):
    rng = random.Random(f"typing {lines}")
    return [ZIRPA.line(statement) for statement in large(rng, lines)][:lines]


def keys(rng, lines):
    """Edits as a hand makes them: a statement typed somewhere, then removed key by key."""
    while True:
        line = rng.randrange(lines)
        yield edit(line, 0, line, 0, "\n"), line
        for column, ch in enumerate(TYPED.rstrip("\n")):
            yield edit(line, column, line, column, ch), line
        for column in reversed(range(len(TYPED) - 1)):
            yield edit(line, column, line, column + 1, ""), line
        yield edit(line, 0, line + 1, 0, ""), line


def worked(server):
    """The processor time of the server, in nanoseconds."""
    return int(pathlib.Path(f"/proc/{server.process.pid}/schedstat").read_text().split()[0])


def timed(server, action):
    """Milliseconds by the clock, and of work."""
    begin = time.perf_counter(), worked(server)
    action()
    return (time.perf_counter() - begin[0]) * 1000, (worked(server) - begin[1]) / 1e6


def type_keys(server, lines, count):
    """The times until diagnostics, and until hints and colours, of each key."""
    times = {"diagnostics": [], "hints and colours": []}
    typing = keys(random.Random("keys"), lines)
    for _ in range(count):
        change, line = next(typing)

        def type_key():
            server.change(change)
            server.diagnostics()

        def show():
            shown = span(line, 0, line + SHOWN_LINES, 0)
            server.of("inlayHint", range=shown)
            server.of("semanticTokens/range", range=shown)

        times["diagnostics"].append(timed(server, type_key))
        times["hints and colours"].append(timed(server, show))
    return times


def percentile(times, share):
    return sorted(times)[min(int(len(times) * share), len(times) - 1)]


def memory(server):
    """Resident memory in KiB."""
    status = pathlib.Path(f"/proc/{server.process.pid}/status").read_text()
    return int(status.partition("VmRSS:")[2].split()[0])


def begin(zirpa, text):
    server = Client(zirpa)
    server.start()
    server.open(text, URI)
    server.diagnostics()
    return server


def main():
    parser = argparse.ArgumentParser(description="Measures zirpa lsp under a hand that types.")
    parser.add_argument("--keys", type=int, default=2_000)
    parser.add_argument("--lines", type=int, default=10_000)
    parser.add_argument("--edits", type=int, default=100_000)
    parser.add_argument("--zirpa", default=str(ROOT / "build" / "zirpa"))
    arguments = parser.parse_args()
    server = begin(arguments.zirpa, "\n".join(source(arguments.lines)))
    for what, times in type_keys(server, arguments.lines, arguments.keys).items():
        for kind, each in zip(("clock", "work"), zip(*times)):
            shares = ", ".join(f"{name} {percentile(each, share):.1f}" for name, share in
                               (("median", 0.5), ("p99", 0.99), ("most", 1)))
            print(f"{arguments.lines} lines, {arguments.keys} keys, {what}, {kind}, ms: {shares}",
                  flush=True)
    server.stop()
    server = begin(arguments.zirpa, "\n".join(source(SHORT_LINES)))
    if arguments.edits:
        type_keys(server, SHORT_LINES, arguments.edits // 10)
        earlier = memory(server)
        type_keys(server, SHORT_LINES, arguments.edits - arguments.edits // 10)
        print(f"{SHORT_LINES} lines, KiB: {earlier} after {arguments.edits // 10} edits, "
              f"{memory(server)} after {arguments.edits}")
    server.stop()
    return 0


if __name__ == "__main__":
    sys.exit(main())
