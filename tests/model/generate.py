"""Random sources for the comparison of the program with the model.

A case is a source with its options and the other files of its directory. A seed and an index
name one case, always the same one as long as the golden sources do not change.
"""

import os
import random
from dataclasses import dataclass
from pathlib import Path

from source_words import (
    BLOCKING_DIRECTORIES, ODD_DEFINES, ODD_OPTIONS, OUTPUT_NAMES, SOURCE_NAMES)
from source_writers import (
    HOSTILITY, STYLE_NAMES, STYLE_WEIGHTS, DebuggerWriter, ProgramWriter, SourceWriter, edit_bytes,
    many_names)

GOLDEN = Path(__file__).resolve().parent.parent / "golden"
LARGEST_GOLDEN_SOURCE = 4000


@dataclass(frozen=True)
class Case:
    """One run: the options, the source's name, if there is one, and the files of the directory.

    A name that ends in "/" is an empty directory.
    """

    options: tuple
    source: bytes | None
    files: dict

    def argv(self, directory):
        words = [*self.options, *([] if self.source is None else [self.source])]
        return [b"HXzirpa", *(word.replace(b"{cwd}", directory) for word in words)]


# Golden sources, spliced and edited

def golden_sources():
    paths = sorted(GOLDEN.glob("*/*.szirpa"))
    return [path.read_bytes() for path in paths if path.stat().st_size <= LARGEST_GOLDEN_SOURCE]


def splice(rng, sources, writer):
    """A golden source with lines of another one and lines of the writer, edited here and there."""
    lines = rng.choice(sources).splitlines(keepends=True)
    other = rng.choice(sources).splitlines(keepends=True) or [b"\n"]
    for _ in range(rng.choice([0, 1, 1, 2, 4, 8])):
        place = rng.randint(0, len(lines))
        kind = rng.randrange(6)
        if kind == 0:
            del lines[place:place + rng.randint(1, 3)]
        elif kind == 1:
            start = rng.randrange(len(other))
            lines[place:place] = other[start:start + rng.randint(1, 8)]
        elif kind == 2:
            lines.insert(place, writer.text(1))
        elif kind == 3 and lines:
            lines.insert(place, rng.choice(lines))
        elif place < len(lines):
            line = bytearray(lines[place])
            edit_bytes(rng, line)
            lines[place] = bytes(line)
    return b"".join(lines)


# Cases

class Generator:
    """All cases of one seed."""

    def __init__(self, seed):
        self.seed = seed
        self.golden = golden_sources()

    def case(self, index):
        rng = random.Random(f"{self.seed}/{index}")
        style = rng.choices(STYLE_NAMES, STYLE_WEIGHTS)[0]
        writer = SourceWriter(rng, style, rng.choice(HOSTILITY))
        odd_names = rng.random() < 0.1
        text = writer.text(rng.randint(0, 3)) if odd_names else self.text(rng, writer)
        text = self.line_ends(rng, text)
        source = rng.choice(SOURCE_NAMES) if odd_names else b"p.szirpa"
        options = self.options(rng, writer, odd_names)
        files = self.other_files(rng)
        if odd_names and rng.random() < 0.02:
            return Case(tuple(options), None, files)
        if not plain_name(source) + b"/" in files and rng.random() < 0.995:
            files[plain_name(source)] = text
        return Case(tuple(options), source, files)

    @staticmethod
    def other_files(rng):
        files = {b"sub/": b""}
        if rng.random() < 0.05:
            files.update({b"p.s19": b"old\n", b"p.lst": b"old\n", b"p.fmem": b"old\n"})
        elif rng.random() < 0.01:
            files[rng.choice(BLOCKING_DIRECTORIES)] = b""
        return files

    def text(self, rng, writer):
        kind = rng.random()
        if kind < 0.10:
            return ProgramWriter(rng).text()
        if kind < 0.16:
            return DebuggerWriter(rng).text(rng.choice([1, 2, 4, 8, 15]))
        if kind < 0.161:
            return many_names(rng)
        if kind < 0.40:
            return splice(rng, self.golden, writer)
        return writer.text(rng.choice([1, 2, 3, 5, 8, 12, 20, 30]))

    @staticmethod
    def line_ends(rng, text):
        roll = rng.random()
        if roll < 0.05:
            text = text.replace(b"\n", b"\r\n")
        elif roll < 0.07:
            text += rng.choice([b"\x1a", b"\0", b"\r", b"\r\n", b"\n\n"])
        return text[:-1] if rng.random() < 0.12 else text

    @staticmethod
    def options(rng, writer, odd_names):
        chosen = [[flag] for flag, share in ((b"-L", 0.6), (b"-S", 0.3), (b"-g", 0.4), (b"-A", 0.3),
                                             (b"-w", 0.6), (b"-S1", 0.05), (b"-S2", 0.05),
                                             (b"-S3", 0.05)) if rng.random() < share]
        if rng.random() < 0.2:
            chosen += [rng.choice([[b"-D", name], [b"-D" + name]])
                       for name in rng.choices(writer.names + [b"DEB"], k=rng.randint(1, 3))]
        if rng.random() < 0.10:
            chosen.append(rng.choice([[b"-C", b"nocase"], [b"-Cnocase"]]))
        if rng.random() < 0.03:
            chosen.append(rng.choice([[b"-C", b"nopure"], [b"-Cnopure"]]))
        if rng.random() < 0.03:
            chosen.append([b"-D", rng.choice(ODD_DEFINES)])
        if odd_names:
            chosen += rng.choices(ODD_OPTIONS, k=rng.randint(0, 3))
            chosen += [[b"-o", rng.choice(OUTPUT_NAMES)] for _ in range(rng.choice([0, 1, 1, 2]))]
        rng.shuffle(chosen)
        words = [word for option in chosen for word in option]
        return words[:-1] if odd_names and rng.random() < 0.1 else words


def plain_name(name):
    """A source's name as the name of a file in the directory of the run."""
    return os.path.normpath(name.replace(b"{cwd}", b"."))


def write_case(case, directory):
    """Put a case's files into a directory."""
    for name, data in case.files.items():
        path = os.path.join(directory, name)
        if name.endswith(b"/"):
            os.makedirs(path, exist_ok=True)
            continue
        with open(path, "wb") as stream:
            stream.write(data)
