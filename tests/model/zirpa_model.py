"""A second implementation of the assembler, to be compared with the first.

It is written for plainness, not for speed: one class holds every global of the program, the
functions keep the program's own names, and each does its work in the order that the rules give.
Random sources go through both programs; every difference is a fault in one of them.

The entry is run(argv, cwd_files, cwd), which assembles in memory and returns a Result.
"""

import os
import sys
from dataclasses import dataclass, field

from zirpa_expr import Expressions, Operand
from zirpa_tables import *  # noqa: F403


# Records

class Symbol:
    """One name. The line is 0 until the name has been defined."""

    def __init__(self, name, value, line, flags, count):
        self.name = name
        self.value = s32(value)
        self.line = line
        self.first_reference = 0
        self.flags = flags
        self.count = count
        self.element_size = 0


class FileEntry:
    """One source file opened in a pass."""

    def __init__(self, name, pathname, data):
        self.name = name
        self.pathname = pathname
        self.data = data
        self.position = 0
        self.saved_line = 0


@dataclass
class Result:
    status: int
    stdout: bytes
    files: dict
    removed: set = field(default_factory=set)


class EndRun(Exception):
    """The run ends at once with a status."""

    def __init__(self, status):
        super().__init__(status)
        self.status = status


class TooLong(Exception):
    """The source reserves more memory than the caller wants to wait for."""


def filled(text, values):
    """A message with its values; a NUL among them ends it."""
    return (text % values).split(b"\0")[0]


class Assembler(Expressions):
    """The whole program; its attributes are the program's globals."""

    def __init__(self, cwd_files, cwd, reservation_limit=MAX_RESERVATION):
        self.cwd_files = cwd_files
        self.cwd = cwd
        self.reservation_limit = reservation_limit
        self.stdout = bytearray()
        self.outputs = {}
        self.removed = set()

        self.O_symtab = self.O_cout = self.O_symdebug = self.O_warn = self.O_list = 0
        self.O_oflag = 0
        self.O_symbol_case_sensitive = self.O_directive_style_pure = 1
        self.record_type = 2
        self.OutputTitle = self.DbgSrcDir = b""
        self.include_stack = []

        self.symbols = {}
        self.symheads = [[] for _ in range(256)]

        self.ifdepth = self.skipping = 0
        # Entries are never cleared at the end of a conditional; each opening word sets its
        # own. Those of the depths past 19 begin at 0.
        self.ifsatisfied = {}

        self.default_entry_seen = self.entry_is_defined = 0
        self.defaultentryLC = self.entryLC = 0
        self.last_seen_label = b""
        self.last_seen_label_value = self.last_seen_label_offset = 0

        self.objectfile = self.listfile = self.algofile = self.zirpafile = None
        self.Object_name = self.List_name = self.zirpafilename = b""
        self.symdebfile = bytearray()
        self.listing_on = 0
        self.algofilecount = 0
        self.outrec_type = 0
        self.outrec = []

        self.Pass = self.Pass2 = 0
        self.Line = b""
        self.yytext, self.yyval = b"", 0
        self.errorsp = None
        self.initpass1()
        self.new_line()

    # The driver

    def initpass1(self):
        self.reset_pass_counters()
        self.Pass2 = 0
        self.phase_error = self.Phase_Error_Written = 0
        self.newuse = 0
        self.file_entry = []
        self.source_stack_ptr = self.pplevel = -1
        self.file_entry_index = {}

    def reset_pass_counters(self):
        self.LC = self.dotLC = self.listLC = 0
        self.Line_no = self.realline = self.listline = 0
        self.uncond_listing_on = 0
        self.Errors = self.Warnings = 0
        self.endflag = 0

    def main(self, argv):
        if len(argv) < 2:
            self.stdout += USAGE
            raise EndRun(0)
        file = self.scan_options(argv[1:])
        if file is None:
            raise EndRun(0)

        self.Pass = 0
        self.initpass1()
        if not self.push_source(file):
            self.cannot_open(file)
        self.assemble_all_lines()

        self.Pass = 1
        self.initpass1()
        if not self.openfiles(file):
            self.cannot_open(file)
        self.assemble_all_lines()

        self.Pass = 2
        self.Pass2 = 1
        self.prep_undefine()
        # The first record takes the location counter that the pass before has left.
        self.outrecinit(self.record_type, self.LC)
        self.write_headers()
        for entry in self.file_entry:
            entry.position = 0
        self.source_stack_ptr = self.pplevel = -1
        self.push_source(None)
        self.reset_pass_counters()
        self.assemble_all_lines()

        if self.O_symtab:
            self.symwrite()
        self.CloseDown()
        self.summary()

    def assemble_all_lines(self):
        while self.as_read_line():
            self.assaline(self.Pass)
            if self.Pass2:
                self.as_write_listline()

    def cannot_open(self, file):
        self.stdout += b"%s: Can't open '%s'\n" % (PROGRAM, file)
        raise EndRun(1)

    def summary(self):
        clean = self.Errors == 0 and self.Warnings == 0
        if clean and self.O_warn > 0:
            self.stdout += b"No errors.\n"
            raise EndRun(0)
        self.stdout += b"-- "
        if self.Errors:
            self.stdout += b"%d error(s).\n" % self.Errors
        else:
            self.stdout += b"No errors.\n"
        if self.O_warn > 0 and self.Warnings:
            self.stdout += b"%d warning(s).\n" % self.Warnings
        raise EndRun(self.Errors & 0xFF)

    # The command line

    def scan_options(self, args):
        """Set the options; return the source file's name, or None when there is none."""
        rest = iter(args)
        for arg in rest:
            if not arg.startswith(b"-"):
                return arg
            if self.set_flag(arg):
                continue
            if arg in (b"-d", b"-o", b"-D", b"-I", b"-C"):
                value = next(rest, None)
                if value is None:
                    self.unknown_option(arg)
                    return None
                self.set_option(arg[1:2], value)
            elif arg[:3] in (b'-d"', b'-o"') or arg[:2] in (b"-D", b"-I", b"-C"):
                self.set_option(arg[1:2], arg[2:])
            else:
                self.unknown_option(arg)
        return None

    def set_flag(self, arg):
        flags = {b"-L": ("O_list", 1), b"-S": ("O_symtab", 1), b"-A": ("O_cout", 1),
                 b"-g": ("O_symdebug", 1), b"-w": ("O_warn", 1), b"-S1": ("record_type", 1),
                 b"-S2": ("record_type", 2), b"-S3": ("record_type", 3)}
        if arg not in flags:
            return False
        setattr(self, *flags[arg])
        return True

    def set_option(self, letter, value):
        if letter == b"d":
            self.DbgSrcDir = copyquotedopt(value)
        elif letter == b"o":
            self.OutputTitle = copyquotedopt(value)
            self.O_oflag = 1
        elif letter == b"D":
            self.define_from_command_line(value)
        elif letter == b"I":
            self.include_stack.append(copyquotedopt(value))
        else:
            self.set_compatibility(value)

    def set_compatibility(self, word):
        if word == b"nopure":
            self.O_directive_style_pure = 0
        elif word == b"nocase":
            self.O_symbol_case_sensitive = 0
        elif word != b"nonative":
            self.stdout += (b"%s: Unknown compatibility option -C '%s' is ignored.\n"
                            % (PROGRAM, word))

    def unknown_option(self, arg):
        self.stdout += b"%s: Unknown option '%s' is ignored.\n" % (PROGRAM, arg[1:])

    def define_from_command_line(self, name):
        sp = self.getsym(name)
        if sp is None:
            self.putsym(name, 0, 1, DEFINED, -1)
        else:
            sp.flags |= MULTIPLE

    # The output files

    def names_directory(self, name):
        return any(key.startswith(name + b"/") for key in self.cwd_files)

    def can_create(self, name):
        path = os.path.relpath(os.path.join(self.cwd, name), self.cwd)
        directory, bare = os.path.split(path)
        # What lies outside is not known here and taken for a place that can be written.
        known = not directory or path.startswith(b"../") or self.names_directory(directory)
        return (name[-1:] not in (b"", b"/") and len(bare) <= 255 and known
                and not self.names_directory(path))

    def create(self, name):
        """Open an output for writing; None when that is not possible."""
        if not self.can_create(name):
            return None
        self.outputs[name] = bytearray()
        return self.outputs[name]

    def refuse_collisions(self, names):
        """No output may overwrite the source or another output."""
        taken = {os.path.normpath(self.file_entry[0].pathname)}
        for name in filter(self.can_create, names):
            path = os.path.normpath(os.path.join(self.cwd, name))
            if path in taken:
                self.vpFatal(b"Cannot create output fil '%s'", name)
            taken.add(path)

    def openfiles(self, file):
        if len(file) > 1023 or not self.push_source(file):
            return 0
        FileTitle = RemoveExtension(FilenameFromPath(file))
        base = FileTitle
        if self.O_oflag:
            self.Object_name = self.OutputTitle
            base = RemoveExtension(FilenameFromPath(self.OutputTitle))
        else:
            self.Object_name = FileTitle + b".s19"
        self.List_name = base + b".lst"
        array_name = base + b"_cout.c"
        self.zirpafilename = FileTitle + b".fmem"
        self.refuse_collisions([self.Object_name] + [self.List_name] * self.O_list
                               + [array_name] * self.O_cout + [self.zirpafilename])
        self.objectfile = self.create(self.Object_name)
        if self.objectfile is None:
            self.vpFatal(b"Cannot create output fil '%s'", self.Object_name)
        if self.O_list:
            self.listfile = self.create(self.List_name)
            if self.listfile is None:
                self.Warning(b"Can't create listfile")
                self.O_list = 0
        if self.O_cout:
            self.open_c_array(array_name)
        self.zirpafile = self.create(self.zirpafilename)
        return 1

    def open_c_array(self, name):
        self.algofile = self.create(name)
        # Quirk (array-needs-listing): it is the listing that is tested here.
        if self.listfile is None:
            self.Warning(b"Can't create C output file")
            self.O_cout = 0
        elif self.algofile is not None:
            self.algofile += b"const unsigned char algo[] = {\n"
        self.algofilecount = 0

    def write_headers(self):
        if self.O_list:
            self.listfile += BANNER + b"\n%s\n\n" % NOTICE + b"\nFile: %s\n" % self.List_name
            self.listing_on = 1
        if self.zirpafile is not None:
            self.zirpafile += BANNER + b"\n%s" % NOTICE + b"\nFile: %s\n" % self.zirpafilename
            self.zirpafile += b"\n # ClearAllMemory\n # ClearAllRegisters"

    def CloseDown(self):
        if self.O_cout and self.algofile is not None:
            self.algofile += b"\n};\n" if self.algofilecount else b"};\n"
        self.putout()
        self.outrecinit(9, self.entry_address())
        self.putout()
        if self.O_symdebug:
            self.objectfile += b"SX:C:s:start\n" + self.symdebfile
        if self.Errors:
            del self.outputs[self.Object_name]
            self.removed.add(self.Object_name)
            if self.listfile is not None:
                self.listfile += b"\n\n****** Total Errors: %d\n" % self.Errors

    def entry_address(self):
        if self.entry_is_defined:
            return self.entryLC
        return self.defaultentryLC if self.default_entry_seen else self.LC

    # Diagnostics: only the final pass reports, so that each fault is told once

    def Error(self, text):
        if not self.Pass2:
            self.Line_Done = 1
            return
        if self.phase_error:
            # Quirk (second-phase-error): the flag stays set and swallows every later error.
            if self.Phase_Error_Written:
                return
            self.Phase_Error_Written = 1
            self.phase_error = 0
        if not self.LineError:
            self.Errors = signed(self.Errors + 1, 16)
            self.LineError = 1
            entry = self.getCurrentFileInfo()
            self.stdout += b"%s (%d) Error: %s\n" % (entry.pathname, self.Line_no, text)
            if self.O_list and self.listfile is not None:
                self.listfile += b'"%s" line %d, ERROR: %s\n' % (entry.name, self.Line_no, text)
        self.Line_Done = 1

    def vpError(self, text, *values):
        self.LineError = 0
        self.Error(filled(text, values))

    def Warning(self, text):
        if not (self.O_warn and self.Pass2):
            return
        self.Warnings += 1
        entry = self.getCurrentFileInfo()
        self.stdout += b"%s (%d) Warning: %s\n" % (entry.pathname, self.Line_no, text)
        if self.O_list and self.listfile is not None:
            self.listfile += b'"%s" LINE: %d,WARNING: %s\n' % (entry.name, self.Line_no, text)

    def vpWarning(self, text, *values):
        self.Warning(filled(text, values))

    def vpFatal(self, text, *values):
        message = filled(text, values)[:1024]
        entry = self.getCurrentFileInfo()
        if entry is None:
            self.stdout += b"Fatal error: %s\n" % message
        else:
            where = (entry.pathname, self.Line_no, message)
            self.stdout += b"%s (%d)Fatal error: %s\n" % where
            if self.O_list and self.listfile is not None:
                self.listfile += b'"%s" (%d) Fatal error: %s\n' % where
        raise EndRun(1)

    # The source

    def getCurrentFileInfo(self):
        index = self.file_entry_index.get(self.pplevel, -1)
        if index < 0:
            index = 0
        return self.file_entry[index] if index < len(self.file_entry) else None

    def read_file(self, name):
        if name in self.cwd_files and not name.endswith(b"/"):
            return self.cwd_files[name]
        if not name or name.endswith(b"/"):
            return None
        plain = os.path.normpath(os.path.join(self.cwd, name))
        return self.cwd_files.get(os.path.relpath(plain, self.cwd) if self.cwd else plain)

    def push_source(self, name):
        if self.source_stack_ptr > 18:
            self.vpFatal(b"To many input files, source stack exhausted")
        if self.Pass2:
            index = self.file_entry_index.get(self.pplevel, -1)
            if index >= 0:
                self.file_entry[index].saved_line = self.Line_no
            self.Line_no = 0
            self.source_stack_ptr += 1
            self.pplevel += 1
            self.newuse = 1
            return 1
        if len(name) > 256:
            self.Error(b"(F1034)")
            return 0
        data = self.read_file(name)
        if data is None:
            return 0
        pathname = name if name.startswith(b"/") else makePathAbsoluteUX(self.cwd, name)
        entry = FileEntry(FilenameFromPath(name), pathname, data)
        entry.saved_line = self.Line_no
        self.newuse = 1
        self.source_stack_ptr += 1
        self.pplevel += 1
        self.file_entry.append(entry)
        self.file_entry_index[self.pplevel] = len(self.file_entry) - 1
        self.Line_no = 0
        return 1

    def pop_source(self):
        self.source_stack_ptr -= 1
        self.pplevel += 1
        if not self.Pass2:
            # Two steps back, which need not be the file that included this one.
            self.file_entry_index[self.pplevel] = self.file_entry_index.get(self.pplevel - 2, -1)
        index = self.file_entry_index.get(self.pplevel, -1)
        if index >= 0:
            self.Line_no = self.file_entry[index].saved_line
        self.newuse = 1
        self.endflag = 0
        return self.source_stack_ptr >= 0

    def new_line(self):
        self.pending_listLC = self.IsEquDirective = self.code_i = self.isinstruction = 0
        self.ctoken = self.forwardref = self.LineError = self.IsEqu = self.label = 0
        self.Byte_Extension = 1
        self.Line_Done = 0
        self.Code = bytearray(128)
        self.label_name = b""

    def fgets(self):
        """The next piece of text up to 4,095 characters; None at the end of the file."""
        entry = self.getCurrentFileInfo()
        start = entry.position
        if start >= len(entry.data):
            return None
        newline = entry.data.find(b"\n", start, start + 4095)
        entry.position = newline + 1 if newline >= 0 else min(start + 4095, len(entry.data))
        return entry.data[start:entry.position].split(b"\0")[0]

    def as_read_line(self):
        if self.endflag and not self.pop_source():
            return 0
        while True:
            self.new_line()
            text = self.fgets()
            if text is not None:
                break
            if not self.pop_source():
                return 0
        self.Line = text
        self.Line_no += 1
        self.realline += 1
        self.listline += 1
        self.scan(text, 0, 0)
        if len(text) > 4093:
            self.Warning(b"Source line is to long")
        if len(text) >= 2 and text[-2] == ord("\r"):
            self.Line = text[:-2] + b"\n"
            self.scan(self.Line, 0, 0)
        return 1

    def scan(self, text, position, column):
        """Point the scanner into a text whose first character stands in a column of the line."""
        self.text = text
        self.Col_Ptr = position
        self.text_column = column

    def char(self, ahead=0):
        return at(self.text, self.Col_Ptr + ahead)

    # One line

    def assaline(self, number):
        self.mp = None
        self.dotLC = value = self.LC
        self.pending_listLC = 1
        self.conditional_field()
        if not self.is_true_level():
            self.done_without_address()
        elif not self.Line_Done and not self.label_field(number):
            return
        self.SkipSpace()
        if self.char() == ord(";"):
            self.Line_Done = 1
            if number == 0:
                return
            self.listLC = self.LC
        elif number == 0:
            if not self.Line_Done and self.isPseudoEqu():
                self.DoEqu(0)
            return
        else:
            self.listLC = self.LC
            self.operation_field()
        if self.mp is not None and 1 <= self.mp[2] <= 127:
            self.resetLabel()
        if self.label and not self.IsEqu:
            self.defsym(self.label_name, value, 1)
            self.pending_listLC = 1
            self.SetLastLabel(self.label_name, value)
        if self.Line_Done:
            return
        self.SkipSpace()
        self.CodeLine()

    def done_without_address(self):
        self.Line_Done = 1
        self.pending_listLC = 0

    def conditional_field(self):
        token, after = self.is_conditional_macro_directive(skipblanc(self.Line, 0))
        if token:
            self.Col_Ptr = after
            if self.DoCond(token):
                self.done_without_address()

    def label_field(self, number):
        """Take the label; 0 when the source has ended inside a debugger line."""
        first = at(self.Line, 0)
        if first in (0, ord("\n"), ord(";")):
            self.done_without_address()
        elif number > 0 and self.Line.startswith(b".stab"):
            return self.debugger_line()
        elif not isblanc(first):
            self.label = self.IsLabel()
            self.label_name = self.yytext
            if not self.label:
                self.Error(b"Illegal label")
                self.Line_Done = 1
        else:
            self.SkipSpace()
        return 1

    def debugger_line(self):
        if self.Pass2 and self.O_symdebug:
            self.ProcessStab()
            self.Line_Done = 1
            return 1
        while line_divided(self.Line):
            if not self.as_read_line():
                self.Error(b"Read Error: Possibly last line continuation")
                return 0
        self.Line_Done = 1
        return 1

    def operation_field(self):
        if self.Line_Done:
            return
        if self.PseudoOp():
            self.Line_Done = 1
            return
        self.mp = self.ZIRPA_getmnem()
        if self.mp is None:
            self.Error(b"Illegal mnemonic")
            self.Line_Done = 1

    def IsLabel(self):
        if not self.valid_sym():
            return 0
        if self.char() == ord(":"):
            self.Col_Ptr += 1
        return 1

    def SkipSpace(self):
        self.Col_Ptr = skip_spaces_and_tabs(self.text, self.Col_Ptr)
        if self.char() in (0, ord("\n")):
            self.Line_Done = 1

    def resetLabel(self):
        self.SetLastLabel(b"", 0)

    def SetLastLabel(self, name, value):
        self.last_seen_label = name
        self.last_seen_label_value = value
        self.last_seen_label_offset = 0

    def ZIRPA_getmnem(self):
        word = word_at(self.text, self.Col_Ptr)
        found = OPTAB.get(word.upper())
        self.Col_Ptr += len(word) if found else 1
        return found

    # Instructions

    def CodeLine(self):
        coder = self.mp[2]
        if coder == 0:
            result = self.coder_inherent()
        elif coder == 2:
            result = self.coder_branch()
        elif coder in (5, 6):
            result = self.coder_pair(TRANSFERS if coder == 5 else EXCHANGES)
        else:
            result = self.coder_memory(OR_VALUES[coder])
        if result < 0:
            self.code_i = 0
        self.Line_Done = 1
        if self.Pass2 and self.O_symdebug:
            self.isinstruction = 1

    def coder_inherent(self):
        self.ebyte(self.mp[0])
        return 1

    def coder_branch(self):
        operand = Operand()
        if self.Parse_Operand(operand):
            self.Error(b"Bad operand syntax")
            return -1
        if not operand.mode & self.mp[1]:
            self.Error(b"Illegal addressing mode")
            return -1
        self.ebyte(self.mp[0])
        self.emit_displacement(operand.value, self.LC, 1)
        return 0

    def coder_memory(self, or_values):
        operand = Operand()
        if self.Parse_Operand(operand):
            self.Error(b"Syntax Error")
            return -1
        if not operand.mode & self.mp[1]:
            self.Error(b"Illegal Addressing Mode")
            return -1
        self.ebyte(self.mp[0] | or_values.get(operand.mode, 0))
        if operand.mode & WITH_OPERAND_BYTE:
            self.emit_byte_value(operand.value)
        return 0

    def coder_pair(self, pairs):
        registers = self.ParseReglist()
        if registers is None:
            self.Error(b"Bad register pair")
            return -1
        if registers not in pairs:
            self.Error(b"Illegal register combination")
            return -1
        self.ebyte(pairs[registers])
        return 1

    def emit_byte_value(self, value):
        self.ebyte(value)
        if not -256 <= s32(value) <= 255:
            self.vpError(b"Value (0x%X) is truncated", u32(value))

    def emit_displacement(self, value, location, bias):
        displacement = s64(value - (location + bias))
        if not -128 <= displacement <= 127:
            self.vpError(b"Displacement (0x%X) is out of range", u32(displacement))
        self.ebyte(displacement)

    # Symbols

    def stored_name(self, name):
        return name if self.O_symbol_case_sensitive else name.upper()

    def getsym(self, text):
        return self.symbols.get(self.stored_name(leading_run(text, is_name_char)))

    def putsym(self, text, value, line, flags, count):
        name = self.stored_name(word_at(text, 0))
        if name in self.symbols:
            self.Error(b"(F1024)")
            return None
        if len(self.symbols) >= MAX_SYMBOLS:
            self.stdout += b"(F1010) Symbol table overflow\nTerminated due to fatal error(s)"
            raise EndRun(255)
        sp = Symbol(name, value, line, flags, count)
        self.symbols[name] = sp
        self.symheads[sum(leading_run(name, is_name_char)) % 256].append(sp)
        return sp

    def lookup(self, name):
        return self.getsym(name) or self.putsym(name, 0, 0, UNDEFINED, 0)

    def refsym(self, name):
        sp = self.lookup(name)
        if self.Pass2:
            if sp.line > self.realline:
                self.forwardref = 1
        elif sp.flags == UNDEFINED:
            sp.flags |= FORWARD
            self.forwardref = 1
            sp.first_reference = self.Line_no
        return sp

    def defsym(self, name, value, check):
        sp = self.lookup(name)
        if self.Pass2:
            self.compare_definition(sp, value, check)
        elif sp.flags & MULTIPLE:
            pass
        elif sp.flags & UNDEFINED:
            sp.value = s32(value)
            sp.flags = sp.flags & ~UNDEFINED | DEFINED
            sp.line = self.realline
        elif sp.flags & (DEFINED | EXTERNAL):
            sp.flags = MULTIPLE
        elif not sp.flags & (0x8 | 0x100 | 0x200):
            self.Error(b"(F1023)")
        else:
            sp.value = s32(value)
            sp.flags |= DEFINED
            sp.line = self.realline

    def compare_definition(self, sp, value, check):
        if sp.line == 0:
            sp.line = self.realline
        if sp.flags & MULTIPLE:
            self.Error(b"Multiple definition")
        elif not sp.flags & (SETTABLE | CONSTANT) and check and sp.value != value:
            self.phase_error = 1
            self.Error(b"Phase error between passes")

    def prep_undefine(self):
        for sp in self.symbols.values():
            if sp.flags & CONDITIONAL:
                sp.flags = CONDITIONAL | UNDEFINED

    def symwrite(self):
        stream = self.listfile if self.O_list else self.stdout
        padding = b"" if self.O_list else b"   "
        if self.symbols:
            stream += b"\n--\tSYMBOL TABLE:\n--\tVALUE%s\tSYMBOL \n" % padding
        for chain in self.symheads:
            for sp in chain:
                stream += b"\t%04X\t%s\n" % (u32(sp.value), sp.name)

    # Directives

    def GetPseudoToken(self, word):
        return PSEUDO_ZIRPA.get(word.lower(), 0)

    def PseudoOp(self):
        word = word_at(self.text, self.Col_Ptr)
        token = self.GetPseudoToken(word[:MAX_DIRECTIVE_WORD])
        if not token:
            return 0
        # Every blank is skipped here, the newline included.
        self.Col_Ptr = skipblanc(self.text, self.Col_Ptr + len(word))
        return {7: self.DoOrg, 8: lambda: self.DoEqu(0), 10: self.DoEnd,
                11: self.do_define_data, 16: self.do_reserve_memory,
                20: self.do_define_characters}[token]()

    def isPseudoEqu(self):
        word = word_at(self.text, self.Col_Ptr)
        self.Col_Ptr = skipblanc(self.text, self.Col_Ptr + len(word))
        return self.GetPseudoToken(word) == 8

    def define_label_here(self):
        if self.label:
            self.defsym(self.label_name, self.LC, 1)
            self.SetLastLabel(self.label_name, self.LC)
            self.IsEqu = 1

    def do_define_data(self):
        self.define_label_here()
        count = 0
        while True:
            operand = Operand()
            if self.ppexpr(operand, 1):
                return -1
            self.emit_byte_value(operand.value)
            count += 1
            if isblanc(self.char()):
                break
            if not self.lookahead(","):
                self.Error(b"Bad delimiter")
                return -1
        self.Byte_Extension = 1
        self.register_size(count)
        return 1

    def do_define_characters(self):
        self.define_label_here()
        if not self.lookahead('"'):
            self.Error(b"Bad operand syntax")
            return -1
        count = 0
        while True:
            # Quirk (first-character): the first character is content even when it is the delimiter.
            value = self.string_character()
            if value is None:
                break
            self.ebyte(value)
            count += 1
            if self.char() == ord('"'):
                self.register_size(count)
                return 2 if self.Pass2 else 1
            if self.char() == 0:
                break
        self.Error(b"Bad operand syntax")
        return -1

    def string_character(self):
        """The next character of a string, or None at the end of the text."""
        c = self.char()
        if c == 0:
            return None
        self.Col_Ptr += 1
        if c == ord("\\"):
            c = self.char()
            if c == 0:
                return None
            self.Col_Ptr += 1
            return STRING_ESCAPES.get(c, c)
        if c >= 128:
            self.Warning(b"Illegal ASCII character")
        return c

    def do_reserve_memory(self):
        self.define_label_here()
        operand = Operand()
        if self.ppexpr(operand, 1):
            return -1
        if not isblanc(self.char()):
            self.Error(b"Bad constant delimiter")
            return -1
        if not 1 <= operand.value <= MAX_RESERVATION:
            self.Error(b"Undetermined size for reservation of storage")
            return -1
        if operand.value > self.reservation_limit:
            raise TooLong
        self.register_size(operand.value)
        if not self.Pass2:
            self.LC = u32(self.LC + operand.value)
            return -1
        for _ in range(operand.value):
            self.code_i = 0
            self.ebyte(0)
        return -1

    def register_size(self, count):
        """Record how much data follows the label that was defined last."""
        if not self.Pass2 or not self.last_seen_label:
            return
        sp = self.getsym(self.last_seen_label)
        if sp is None:
            self.Error(b"RegisterSymSize failed")
        elif self.last_seen_label_offset == 0:
            sp.count = s32(count)
            sp.element_size = 1
            self.last_seen_label_offset = s32(count)
        else:
            sp.count = s32(sp.count + count)

    def DoEqu(self, settable):
        if not self.label:
            self.Error(b'No label for "equ"')
            return -1
        sp = self.getsym(self.label_name)
        held = sp.value if sp else 0
        if sp is None:
            if self.Pass == 0 and not settable:
                value = self.equ_operand(0)
                self.putsym(self.label_name, value, self.realline, DEFINED | CONSTANT, -1)
                return 2
            flags = DEFINED | CONSTANT | (SETTABLE if settable else 0)
            sp = self.putsym(self.label_name, 0, self.realline, flags, -1)
            sp.value = s32(self.equ_operand(0))
        else:
            self.equ_again(sp, settable)
        if self.Pass2:
            self.check_equ(sp, held)
        self.Code[self.code_i:self.code_i + 2] = (sp.value & 0xFFFF).to_bytes(2, "big")
        self.code_i += 2
        self.pending_listLC = 0
        self.IsEqu = self.IsEquDirective = 1
        return 2

    def equ_operand(self, check):
        return self.evalexp(self.text, self.Col_Ptr, 0, check)

    def equ_again(self, sp, settable):
        if sp.line == 0:
            sp.line = self.realline
        if self.Pass2:
            sp.value = s32(self.equ_operand(0))
        elif sp.flags & UNDEFINED:
            sp.flags = sp.flags & ~UNDEFINED | DEFINED | CONSTANT | (SETTABLE if settable else 0)
            sp.value = s32(self.equ_operand(0))
        elif not (settable and sp.flags & SETTABLE):
            sp.flags |= MULTIPLE
        else:
            sp.value = s32(self.equ_operand(0))

    def check_equ(self, sp, held):
        if sp.flags & MULTIPLE and sp.line != self.realline:
            self.vpError(b"symbol '%s' previously defined at line %d", sp.name, sp.line)
            if not isblanc(self.char()) and held != self.equ_operand(1):
                self.vpError(b"symbol '%s' redefined at line %d", sp.name, self.realline)
        if sp.flags & FORWARD:
            self.vpWarning(b"symbol '%s' is forward referenced from line %d",
                           sp.name, sp.first_reference)

    def DoOrg(self):
        self.resetLabel()
        operand = Operand()
        if self.ppexpr(operand, 1):
            return -1
        if self.forwardref:
            self.Error(b"Forward reference")
            return -1
        self.putout()
        self.LC = self.listLC = u32(operand.value)
        if not self.default_entry_seen:
            self.defaultentryLC = self.LC
            self.default_entry_seen = 1
        self.outrecinit(self.record_type, self.LC)
        self.define_label_here()
        return 2

    def DoEnd(self):
        if not self.Pass2 or isblanc(self.char()):
            self.endflag = 1
            return 1
        name = leading_run(self.text[self.Col_Ptr:], is_symbol_char)[:MAX_NAME]
        if not name:
            # Quirk (end-operand): the final pass goes on after this line.
            return 1
        sp = self.getsym(name)
        if sp is None or sp.flags & UNDEFINED:
            self.vpWarning(b"start symbol '%s' is defined", name)
        elif not self.entry_is_defined:
            self.entryLC = sp.value
            self.entry_is_defined = 1
        elif sp.value != self.entryLC:
            self.Warning(b"Program entry defined, END <address> ignored")
        self.endflag = 1
        return 1

    # Conditional assembly

    def is_true_level(self):
        return self.skipping == 0

    def is_conditional_macro_directive(self, p):
        """The token of the conditional word at p, or 0, and the position behind the word."""
        if not self.O_directive_style_pure or at(self.Line, p) != ord("#"):
            return 0, p
        p = skipblanc(self.Line, p + 1)
        word = word_at(self.Line, p)
        return MACRO_PURE.get(word.lower(), 0), p + len(word)

    def DoCond(self, token):
        column = self.Col_Ptr
        rest = self.Line[column:][:512]
        start = skipblanc(rest, 0)
        self.word, self.word_column = word_at(rest, start), column + start
        start = skipblanc(rest, start + len(self.word))
        self.value_word, self.value_column = word_at(rest, start), column + start
        {44: self.do_if, 45: self.do_else, 46: self.do_endif, 47: self.do_elif,
         48: self.do_ifdef, 49: self.do_define, 50: self.do_ifndef, 51: self.do_error}[token]()
        return 1

    def start_skipping(self):
        if not self.skipping:
            self.as_write_listline()
        self.skipping = self.ifdepth

    def open_conditional(self, message):
        """Go one deeper; whether the test is to be made."""
        self.ifdepth += 1
        if self.ifdepth > 19:
            self.Error(message)
            return False
        if self.skipping:
            return False
        self.ifsatisfied[self.ifdepth] = 0
        return True

    def branch_on(self, taken):
        if taken:
            self.ifsatisfied[self.ifdepth] = 1
        else:
            self.start_skipping()

    def conditional_symbol(self):
        """The symbol that the directive names, entered undefined when it is new."""
        sp = self.getsym(self.word)
        if sp is None:
            flags = CONDITIONAL | UNDEFINED
            sp = self.putsym(self.word, 0, self.realline, flags, -1)
        if sp is None:
            self.Error(b"Bad preproc")
        return sp

    def names_defined_symbol(self):
        sp = self.conditional_symbol()
        return sp is not None and sp.flags & DEFINED != 0

    def do_if(self):
        if self.open_conditional(b"#if too deeply nested"):
            self.branch_on(u32(self.evalexp(self.word, 0, self.word_column, 1)) != 0)

    def do_ifdef(self):
        if self.open_conditional(b"#if too deeply nested"):
            self.branch_on(self.names_defined_symbol())

    def do_ifndef(self):
        if self.open_conditional(b"#ifndef too deeply nested"):
            self.branch_on(not self.names_defined_symbol())

    def do_elif(self):
        if self.skipping and self.skipping < self.ifdepth:
            return
        if self.ifdepth == 0:
            self.Error(b"#elif with no #if")
            return
        if self.ifsatisfied.get(self.ifdepth, 0) == 2:
            self.Error(b"#elif after #else")
        if not self.names_defined_symbol():
            self.start_skipping()
        elif self.ifsatisfied.get(self.ifdepth, 0) == 0:
            self.skipping = 0
            self.ifsatisfied[self.ifdepth] = 1
        else:
            self.skipping = self.ifdepth

    def do_else(self):
        if self.skipping and self.skipping < self.ifdepth:
            return
        if self.ifdepth == 0:
            self.Error(b"#else with no #if")
            return
        before = self.ifsatisfied.get(self.ifdepth, 0)
        if before == 2:
            self.Error(b"#else after #else")
        self.ifsatisfied[self.ifdepth] = 2
        self.skipping = self.ifdepth if before else 0

    def do_endif(self):
        if self.skipping:
            self.ifdepth -= 1
            if self.skipping > self.ifdepth:
                self.skipping = 0
        elif self.ifdepth == 0:
            self.Error(b"#endif with no #if")
        else:
            self.ifdepth -= 1

    def do_define(self):
        if self.skipping:
            return
        if b"(" in self.word or b")" in self.word:
            self.Warning(b"Macro Expansions is NOT supported, 'define' igored")
            return
        sp = self.conditional_symbol()
        if sp is None:
            return
        if sp.flags & DEFINED:
            sp.flags |= MULTIPLE
        else:
            sp.flags = sp.flags & ~UNDEFINED | DEFINED | CONDITIONAL
            sp.line = self.realline
            if self.value_word and not self.value_word.startswith(b";"):
                sp.value = s32(self.define_value())
            if not sp.flags & MULTIPLE:
                return
        if sp.line == self.realline:
            return
        self.vpWarning(b"symbol '%s' previously defined at line %d", sp.name, sp.line)
        if self.value_word and sp.value != self.define_value():
            self.vpError(b"symbol '%s' redefined at line %d", sp.name, self.realline)

    def define_value(self):
        return self.evalexp(self.value_word, 0, self.value_column, 1)

    def do_error(self):
        if not self.skipping:
            self.Error(b"Message Directive")

    # Emission

    def ebyte(self, value):
        value &= 0xFF
        if not self.Pass2:
            self.LC = u32(self.LC + 1)
            return
        if len(self.outrec) == 32:
            self.putout1()
            self.outrecinit(self.record_type, self.LC)
        self.outrec.append(value)
        self.LC = u32(self.LC + 1)
        if self.O_cout and self.algofile is not None:
            self.write_c_value(value)
        self.Byte_Extension = 1
        if self.code_i < 120:
            self.Code[self.code_i] = value
            self.code_i += 1

    def write_c_value(self, value):
        self.algofile += (b",0x%02X" if self.algofilecount else b"0x%02X") % value
        self.algofilecount += 1
        if self.algofilecount == 16:
            self.algofile += b",\n"
            self.algofilecount = 0

    def outrecinit(self, kind, address):
        """Begin a record; the address alone decides how wide it is."""
        if not self.Pass2:
            return
        address = u32(address)
        width = 4 if address >> 24 else 3 if address >> 16 else 2
        if kind in (1, 2, 3):
            self.outrec_type = self.record_type = width - 1
        else:
            self.outrec_type = 11 - width
        self.outrec = list(address.to_bytes(width, "big"))

    def putout(self):
        if not self.Pass2:
            return
        if self.outrec_type <= 3 and len(self.outrec) == self.outrec_type + 1:
            return
        self.putout1()

    def putout1(self):
        length = len(self.outrec) + 1
        checksum = ~(length + sum(self.outrec)) & 0xFF
        body = b"".join(b"%02X" % byte for byte in self.outrec)
        self.objectfile += b"S%X%02X%s%02X\n" % (self.outrec_type, length, body, checksum)
        # Quirk (wide-script): the script takes every address for one of two bytes.
        for index, byte in enumerate(self.outrec[2:]):
            address = self.outrec[1] + index & 0xFF
            if self.zirpafile is not None:
                self.zirpafile += b"\n #setMemory  %02X=%02X" % (address, byte)

    # The listing

    def as_write_listline(self):
        if self.O_symdebug and self.isinstruction:
            self.write_exec(self.Line_no, 1, self.listLC)
        if not (self.O_list and self.listing_on and self.Pass2):
            return
        if self.skipping and not self.uncond_listing_on:
            return
        if self.pending_listLC or not self.IsEquDirective:
            self.listfile += b"%02X" % (self.listLC & 0xFF) if self.pending_listLC else b"  "
            self.listfile += self.byte_columns(0)
            self.listfile += b" %4d. %s" % (self.listline, self.Line)
            self.continuation_lines()
        else:
            self.listfile += b"%02X%s" % (self.Code[1], b" " * 18)
            self.listfile += b" %4d. %s" % (self.listline, self.Line)
        if self.newuse:
            self.newuse = 0
            self.listfile += b'---- File: "%s"\n' % self.getCurrentFileInfo().name

    def byte_columns(self, start):
        return b"".join(b" %02X" % self.Code[i] if i < self.code_i else b"   "
                        for i in range(start, start + 6))

    def continuation_lines(self):
        if self.code_i <= 6:
            return
        # Quirk (blank-row): a count of 12, 18, ... bytes is followed by a line of blanks.
        for start in range(6, self.code_i + 1, 6):
            self.listfile += b"    " + self.byte_columns(start) + b"\n"

    # Debug records. No segment is ever current, so its name is empty.

    def write_exec(self, line, count, address):
        self.symdebfile += (b"SY:C:X:%s:%d:%d:%s:%X\n"
                            % (self.source_name(), s32(line), s32(count), b"", u32(address)))

    def source_name(self):
        return self.getCurrentFileInfo().name

    def ProcessStab(self):
        keyword = self.Line[6:]
        for name, handler in ((b"init", self.stab_nothing), (b"func", self.stab_func),
                              (b"dir", self.stab_nothing), (b"file", self.stab_nothing),
                              (b"stmt", self.stab_exec), (b"expr", self.stab_exec),
                              (b"exec", self.stab_exec), (b"type", self.stab_type),
                              (b"sym", self.stab_sym)):
            if keyword.startswith(name):
                handler()
                return
        self.Warning(b"Unrecognized '.stab'-entry")

    def stab_nothing(self):
        """The source's directory and name are accepted, but no record uses them."""

    def stab_operand(self, column):
        """The text from a column on, without leading blanks and without its line end."""
        return without_line_end(self.Line[skipblanc(self.Line, column):])

    def stab_fields(self, column, count):
        """That many fields and the rest, all separated by colons."""
        fields = self.stab_operand(column).split(b":", count)
        return fields + [b""] * (count + 1 - len(fields))

    @staticmethod
    def stab_number(text):
        return s32(decimal_to_number(text) or 0)

    def stab_func(self):
        function, first, second, third, *labels = self.stab_fields(11, 7)[:7]
        values = []
        for label in labels:
            sp = self.getsym(label)
            if sp is None:
                self.vpWarning(b"Debug label '%s' is missing", label)
                return
            values.append(sp.value)
        sp = self.getsym(function)
        self.symdebfile += (
            b"SY:C:f:%s:%s:%s:%d:%d:%d:%s:%s:%s\n"
            % (self.source_name(), b"", sp.name if sp else b"", self.stab_number(first),
               self.stab_number(second), self.stab_number(third), self.wide(values[0]),
               self.wide(values[1]), self.wide(values[2] - 1)))

    @staticmethod
    def wide(value):
        return b"%08X" % (value & 0xFFFFFFFFFFFFFFFF)

    def stab_exec(self):
        start = skipblanc(self.Line, 11)
        comma = self.Line.find(b",", start)
        line = value = 0
        if comma > start and at(self.Line, comma + 1) not in b"\0\r\n":
            line = self.stab_number(self.Line[start:comma])
            value = self.evalexp(self.Line, comma + 1, 0, 1)
        self.write_exec(line, value, self.LC)

    def stab_type(self):
        text = without_line_end(self.Line[11:])
        self.symdebfile += b"ST:%s:%s" % (self.source_name(), text)
        if line_divided(self.Line):
            self.copy_continuation()
        else:
            self.symdebfile += b"\n"

    def copy_continuation(self):
        while line_divided(self.Line) and self.as_read_line():
            self.symdebfile += self.Line

    def stab_sym(self):
        kind = self.Line[10:11] or b"\0"
        if kind == b"L":
            self.stab_local()
        elif kind in b"VFvf":
            self.stab_global(kind)
        else:
            self.vpError(b"Unidentified symbol type '%s'", kind)
        self.copy_continuation()

    def stab_local(self):
        first, second, third, number, rest = self.stab_fields(12, 4)
        self.symdebfile += (b"SY:C:S:L:%s:%s:%s:%s:%s:%d:%s\n"
                            % (self.source_name(), b"", first, second, third,
                               self.stab_number(number), rest))

    def stab_global(self, kind):
        first, name, number, rest = self.stab_fields(12, 3)
        line = ascii_to_number(number)
        if line is None:
            self.Warning(b"Warning: Bad line number in symdebug info")
            line = 0
        place = (kind, self.source_name(), b"", first, name)
        if kind == b"V":
            self.symdebfile += b"SY:C:S:%s:%s:%s:%s:%s:%d:%s\n" % (*place, s32(line), rest)
        if kind not in b"vf":
            return
        sp = self.getsym(name)
        if sp is None:
            self.vpWarning(b"Symbol '%s:%s' is missing", first, name)
        if kind == b"v":
            value = self.wide(sp.value if sp else 0)
            self.symdebfile += (b"SY:C:S:%s:%s:%s:%s:%s:%s:%d:%s\n"
                                % (*place, value, s32(line), rest))


def run(argv, cwd_files, cwd, reservation_limit=MAX_RESERVATION):
    """Assemble in memory. A key of cwd_files that ends in "/" names an empty directory.

    TooLong is raised at a reservation above the limit.
    """
    # Parentheses nest as deep as a line is long, and each takes one call of the evaluator.
    sys.setrecursionlimit(max(sys.getrecursionlimit(), 20000))
    program = Assembler(cwd_files, cwd, reservation_limit)
    status = 0
    try:
        program.main(argv)
    except EndRun as end:
        status = end.status
    files = {name: bytes(data) for name, data in program.outputs.items()}
    return Result(status, bytes(program.stdout), files, program.removed)
