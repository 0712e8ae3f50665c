"""Golden cases: files that share one stem, as described in docs/testing.md.

An expectation that is absent means that the output must not exist, so every case is complete.
"""

import os
import pathlib

import running
from running import BANNER, files_below

GOLDEN = pathlib.Path(__file__).resolve().parent

SCRIPT_HEADER = BANNER + b"File: %s\n\n # ClearAllMemory\n # ClearAllRegisters"


def script_from_pairs(name, pairs):
    """The script NAME that sets the given (address, byte) pairs of hexadecimal texts."""
    lines = [b"\n #setMemory  %s=%s" % pair for pair in pairs]
    return SCRIPT_HEADER % os.fsencode(name) + b"".join(lines)


def pairs_of_records(records):
    """What the data bytes of S-records set: bytes behind the first two, 8-bit addresses."""
    pairs = []
    for line in records.splitlines():
        if not line.startswith(b"S") or line[1:2] not in b"1237890":
            continue
        content = bytes.fromhex(line[4:-2].decode())
        for index, byte in enumerate(content[2:]):
            pairs.append((b"%02X" % ((content[1] + index) & 0xFF), b"%02X" % byte))
    return pairs


def pairs_of_short_form(text):
    """The short form of a script: a line AA=BB for each byte."""
    return [tuple(line.split(b"=")) for line in text.split()]


class GoldenCase:
    """One case: its inputs, its command line and its expectations."""

    def __init__(self, topic, stem):
        self.directory = GOLDEN / topic
        self.stem = stem
        self.identifier = f"{topic}/{stem}"

    def file(self, suffix):
        """The content of one of the case's files, or None."""
        path = self.directory / (self.stem + suffix)
        return path.read_bytes() if path.is_file() else None

    def arguments(self):
        text = self.file(".args")
        words = [] if text is None else text.splitlines()
        source = os.fsencode(self.stem + ".szirpa")
        if b"@NOSOURCE@" in words:
            words.remove(b"@NOSOURCE@")
        elif b"@SOURCE@" not in words:
            words.append(source)
        special = {b"@SOURCE@": source, b"@EMPTY@": b""}
        return [special.get(word, word) for word in words]

    def inputs(self):
        """The files that stand in the working directory before the run."""
        inputs = {}
        given = self.directory / (self.stem + ".in")
        if given.is_dir():
            inputs.update(files_below(given))
        source = self.file(".szirpa")
        if source is not None:
            inputs[self.stem + ".szirpa"] = source
        return inputs

    def input_directories(self):
        """The directories below the working directory that stand there before the run."""
        given = self.directory / (self.stem + ".in")
        return [path.relative_to(given) for path in sorted(given.rglob("*")) if path.is_dir()]

    def expected_script(self):
        script = self.file(".fmem")
        if script is not None:
            return script
        name = self.stem + ".fmem"
        records = self.file(".s19")
        if records is not None:
            return script_from_pairs(name, pairs_of_records(records))
        short = self.file(".mem")
        return None if short is None else script_from_pairs(name, pairs_of_short_form(short))

    def expected_files(self):
        expected = {
            self.stem + suffix: self.file(suffix) for suffix in (".s19", ".lst", "_cout.c")
        }
        expected[self.stem + ".fmem"] = self.expected_script()
        wanted = self.directory / (self.stem + ".want")
        if wanted.is_dir():
            for name, content in files_below(wanted).items():
                if name.endswith(".mem"):
                    name = name[: -len(".mem")] + ".fmem"
                    script_name = name.rpartition("/")[2]
                    content = script_from_pairs(script_name, pairs_of_short_form(content))
                expected[name] = content
        return {name: content for name, content in expected.items() if content is not None}

    def expected_output(self, directory):
        text = self.file(".out") or b""
        return text.replace(b"@DIR@", os.fsencode(directory))

    def expected_status(self):
        text = self.file(".status")
        return 0 if text is None else int(text)

    def expected_tree(self):
        """The files after the run: outputs, and those inputs that no output replaces."""
        outputs_only = {self.stem + suffix for suffix in (".s19", ".lst", "_cout.c")}
        inputs = self.inputs().items()
        kept = {name: content for name, content in inputs if name not in outputs_only}
        return kept | self.expected_files()

    def prepare(self, directory):
        for name in self.input_directories():
            (directory / name).mkdir(parents=True, exist_ok=True)
        for name, content in self.inputs().items():
            (directory / name).write_bytes(content)

    def run(self, program, directory, **options):
        """Runs the case in an empty directory; returns the finished process and the files."""
        self.prepare(directory)
        process = running.run(directory, program, *self.arguments(), **options)
        return process, files_below(directory)


def find_cases(topic=None):
    """All cases, or those of one topic."""
    stems = set()
    for path in GOLDEN.glob(f"{topic or '*'}/*"):
        if path.suffix in (".szirpa", ".args") and path.is_file():
            stems.add((path.parent.name, path.name[: -len(path.suffix)]))
    return [GoldenCase(*stem) for stem in sorted(stems)]


