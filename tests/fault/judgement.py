"""What a run may come to when calls fail: the normal result, or an end that says what failed; and
never a lost source or an S-record file that is taken for whole and is not."""

import os
import posixpath
import re

from injection import TEMPORARY
from scenarios import OLD_OUTPUT

MOST_SHOWN = 500  # bytes
FAILURE = 1
OVERFLOW_STATUS = 255
OUT_OF_MEMORY = b"HXzirpa: Out of memory\n"
OVERFLOW = b"(F1010) Symbol table overflow\nTerminated due to fatal error(s)"
FATAL = b"%s (0)Fatal error: Cannot create output fil '%s'\n"
SUMMARY = re.compile(rb"(No errors|error\(s\)|warning\(s\))\.\n\Z")
RECORD = re.compile(rb"^S[0-9].*$", re.MULTILINE)
END_RECORD = re.compile(rb"S[789]([0-9A-F]{2})([0-9A-F]+)\Z")
READING = {"open", "read", "fstat"}
LOOKING = {"stat", "lstat", "readlink"}
CREATING = {"create", "open", "fstat", "ftruncate"}
COPYING = {"open", "read", "write", "close"}
DELETING = {"stat", "unlink", "truncate"}


def is_end_record(line):
    match = END_RECORD.match(line)
    return match is not None and len(match[2]) == 2 * int(match[1], 16)


def looks_whole(content):
    """Whether readers that take S-records alone find an end record behind all others."""
    records = RECORD.findall(content)
    return bool(records) and is_end_record(records[-1])


class Judgement:
    """The complaints about one injection."""

    def __init__(self, reference, injection, run):
        self.reference = reference
        self.run = run
        self.outputs = reference.outputs
        self.records_name = self.outputs[0] if self.outputs else None
        self.failed = [] if injection.is_harmless else run.reported
        self.failed_kinds = {kind for kind, _ in self.failed}
        self.is_muted = 1 in reference.scenario.closed or self.has_failed(
            "write", "standard output"
        )
        self.complaints = [
            *self.complaints_about_errors(),
            *self.complaints_about_inputs(),
            *self.complaints_about_records(),
            *self.complaints_about_end(),
        ]

    def has_failed(self, kind, name):
        return (kind, name) in self.failed

    def failed_to_write(self, name):
        """Bytes are lost; those of a file that cannot be renamed are copied."""
        kinds = {kind for kind, thing in self.failed if thing == name}
        return bool(kinds & {"write", "close"}) or ("rename" in kinds and self.failed_to_copy(name))

    def failed_to_copy(self, name):
        kinds = {kind for kind, thing in self.failed if thing == name}
        return bool(kinds & COPYING) or name not in self.reference.before

    # ---- Whatever has failed ----

    def complaints_about_errors(self):
        if self.run.errors:
            yield self.run.errors[:MOST_SHOWN].decode("latin-1")
        if not self.run.reported:
            yield "no call has failed"

    def complaints_about_inputs(self):
        """Files that the normal run does not touch are as they were."""
        for name, content in self.reference.before.items():
            is_kept = self.reference.normal.files.get(name) == content
            if is_kept and self.run.files.get(name) != content:
                yield f"{name} is changed or lost"

    def complaints_about_records(self):
        """An S-record file that looks whole is the right one."""
        expected = self.reference.normal.files.get(self.records_name, b"")
        for name in self.places_of_records():
            content = self.run.files.get(name, b"")
            if not looks_whole(content):
                continue
            if RECORD.findall(content) != RECORD.findall(expected):
                yield f"{name} looks whole: {content[-200:]!r}"
            elif content != expected and is_end_record(content.splitlines()[-1]):
                yield f"{name} looks whole without the debug records"

    def places_of_records(self):
        """The S-record file, and where a link of its name leads."""
        return [self.records_name, self.reference.scenario.links.get(self.records_name)]

    # ---- How the run ended ----

    def complaints_about_end(self):
        """The output must have a reading, and the files must suit it."""
        readings = [list(files) for files in (*self.normal_readings(), *self.told_readings())]
        if self.is_muted and self.may_have_been_cut():
            readings.append([])
        if not readings:
            return [f"status {self.run.status}, output {self.run.output[-MOST_SHOWN:]!r}"]
        return min(readings, key=len)

    def texts(self):
        """The runs without a fault that this one may be like, with their standard output: with and
        without the listing, and without the working directory when it cannot be found out."""
        bases = [self.reference.normal]
        if b"-L" in self.reference.scenario.arguments and "create" in self.failed_kinds:
            bases.append(self.reference.without_listing)
        return [
            (base, base.output_in(directory)) for base in bases for directory in self.directories()
        ]

    def directories(self):
        directory = self.run.directory
        return [directory, b""] if "getcwd" in self.failed_kinds else [directory]

    def normal_readings(self):
        """The fault did not matter, or an output is left out silently."""
        for base, text in self.texts():
            is_same = (self.run.output, self.run.status) == (text, base.status)
            if is_same and not self.is_muted and not self.must_be_told(base):
                yield self.complaints_about_normal_files(base)

    def must_be_told(self, base):
        """Whether a fault has happened that a run which comes to its end must tell."""
        finishes = SUMMARY.search(base.output) is not None
        return finishes and any(map(self.failed_to_write, self.outputs))

    def told_readings(self):
        """The run ended and has told what failed, behind what it had printed until then."""
        for message, status in [] if self.is_muted else self.messages():
            begin = self.run.output[: len(self.run.output) - len(message)]
            if (
                self.run.status == status
                and self.run.output == begin + message
                and any(text.startswith(begin) for _, text in self.texts())
            ):
                yield self.complaints_about_files_left(message)

    def messages(self):
        """The ends (text, status) that tell what has failed."""
        if self.failed_kinds & READING:
            yield b"HXzirpa: Can't open '%s'\n" % self.reference.scenario.source, FAILURE
        unwritten = [os.fsencode(name) for name in self.outputs if self.failed_to_write(name)]
        if unwritten:
            yield b"".join(b"HXzirpa: Can't write '%s'\n" % name for name in unwritten), FAILURE
        if "memory" in self.failed_kinds:
            yield OUT_OF_MEMORY, FAILURE
            yield OVERFLOW, OVERFLOW_STATUS
        for name in self.names_refused():
            for path in self.source_paths():
                yield FATAL % (path, os.fsencode(name)), FAILURE

    def names_refused(self):
        """The outputs that may be said not to be creatable: one that is not, or, when it cannot be
        told whether outputs collide, each that has been looked at."""
        names = {name for kind, name in self.failed if kind in CREATING and name in self.outputs}
        if self.failed_kinds & LOOKING:
            calls = [*self.reference.normal.reported, *self.failed]
            names |= {name for kind, name in calls if kind in LOOKING}
        return names

    def source_paths(self):
        """The names that messages may give the source."""
        scenario = self.reference.scenario
        for name in {scenario.source, *map(os.fsencode, scenario.files)}:
            for directory in self.directories():
                yield posixpath.normpath(posixpath.join(directory + b"/", name))

    def may_have_been_cut(self):
        """Standard output failed: it may stop anywhere, but the status tells."""
        statuses = {FAILURE}
        if "memory" in self.failed_kinds or self.reference.normal.status == OVERFLOW_STATUS:
            statuses.add(OVERFLOW_STATUS)
        return self.run.status in statuses and any(
            self.is_begin_of(text, message)
            for _, text in self.texts()
            for message in [b"", *(message for message, _ in self.messages())]
        )

    def is_begin_of(self, text, message):
        """Whether the output is how the text begins, or a begin of it and then of the message."""
        output = self.run.output
        first = max(len(output) - len(message), 0)
        return any(
            text.startswith(output[:end]) and message.startswith(output[end:])
            for end in range(first, len(output) + 1)
        )

    # ---- Files ----

    def complaints_about_normal_files(self, base):
        """The files are those of a run without a fault, apart from what cannot be created."""
        for name in sorted(set(base.files) | set(self.run.files)):
            content = self.run.files.get(name)
            if content == base.files.get(name) or self.is_excused_temporary(name):
                continue
            if content is None:
                if not self.has_failed("create", name) and not self.has_failed("rename", name):
                    yield f"{name} is missing"
            elif not self.leftover_is_excused(name, content):
                yield f"{name} differs: {content[-200:]!r}"

    def is_excused_temporary(self, name):
        return TEMPORARY.fullmatch(posixpath.basename(name)) and "unlink" in self.failed_kinds

    def leftover_is_excused(self, name, content):
        """A file that could not be created or deleted may be empty, old or, without an end
        record, begun."""
        if name in self.places_of_records():
            return self.failed_kinds & DELETING and not looks_whole(content)
        return self.has_failed("create", name) and content in (b"", OLD_OUTPUT)

    def complaints_about_files_left(self, message):
        """A run that tells a fault creates nothing, or deletes its S-record file."""
        known = {*self.reference.before, *self.outputs, *self.places_of_records()}
        for name in sorted(set(self.run.files) - known):
            if not self.is_excused_temporary(name):
                yield f"{name} must not exist"
        before_creation = b"Can't open" in message or (
            b"Cannot create" in message and "create" not in self.failed_kinds
        )
        if before_creation and self.run.files != self.reference.before:
            yield f"files are touched: {sorted(self.run.files)}"
        after_creation = b"Can't write" in message or message == OUT_OF_MEMORY
        if after_creation and not self.failed_kinds & DELETING:
            if self.run.files.get(self.records_name) not in (None, OLD_OUTPUT):
                yield f"{self.records_name} is left"
