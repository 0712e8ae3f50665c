"""Random sources for the comparison of the program with the model.

A case is a source with its options and the other files of its directory. A seed and an index
name one case, always the same one as long as the golden sources do not change.

    python3 generate.py --seed S --index N DIRECTORY    writes the case and prints its arguments
"""

import argparse
import os
import random
import sys
from dataclasses import dataclass
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))

from zirpa_tables import OPTAB  # noqa: E402

GOLDEN = Path(__file__).resolve().parent.parent / "golden"
LARGEST_GOLDEN_SOURCE = 4000

LINE_LIMIT = 4093

BRANCHES = [word for word, (_, _, coder) in OPTAB.items() if coder == 2]
INHERENT = [word for word, (_, _, coder) in OPTAB.items() if coder == 0]
WITH_OPERAND = [word for word, (_, _, coder) in OPTAB.items() if coder in (1, 3, 4, 7)]
MNEMONICS = list(OPTAB)

NAMES = [b"L", b"L1", b"L2", b"loop", b"Loop", b"LOOP", b"AB", b"BA", b"_t", b"n$", b"p.q", b"W",
         b"x1", b"CC1", b"SPX", b"sp_", b"A$", b"X.1", b"Y", b"A", b"cc", b"main", b"equ", b"nop",
         b"if", b"Q" * 127, b"Q" * 128, b"Q" * 129 + b"R", b"z" * 126]
REGISTERS = [b"A", b"X", b"Y", b"SP", b"CC", b"a", b"x", b"y", b"sp", b"Sp", b"cc", b"cC"]
REGISTER_PAIRS = [b"A,CC", b"CC,A", b"X,Y", b"Y,X", b"X,SP", b"SP,X", b"Y,SP", b"SP,Y"]

BYTE_BOUNDS = [0, 1, 2, 5, 7, 9, 10, 15, 16, 31, 32, 33, 63, 64, 65, 100, 127, 128, 200, 254, 255]
WIDE_BOUNDS = [256, 257, 300, 0x7FFF, 0x8000, 0xFFFF, 0x10000, 0xFFFFFF, 0x1000000, 0x7FFFFFFF,
               0x80000000, 0xFFFFFFFE, 0xFFFFFFFF, 0x100000000, 0x180000005, 0x7FFFFFFFFFFFFFFF,
               0x8000000000000000, 0xFFFFFFFFFFFFFFFF, 0x1FFFFFFFFFFFFFFFF, 10 ** 30]
ADDRESSES = [0, 0x10, 0x80, 0xF0, 0xFE, 0xFF, 0x100, 0x101, 0x7FFF, 0xFFF0, 0xFFFE, 0xFFFF,
             0x10000, 0x10001, 0xFFFFE0, 0xFFFFFF, 0x1000000, 0x12345678, 0x7FFFFFFF, 0x80000000,
             0x80000001, 0xFFFFFFE0, 0xFFFFFFFF]

BINARY = b"+ - * / % %% == != <= >= && || & | ^ << >>".split()
UNARY = b"- ! ~ -- !! ~~ -~ !-".split()
ODD_TOKENS = (b"< > = => =< ! ~ : ; . , ? @ # \" ' '' ''' $ % %2 %% ( ) () (( )) [ ] { } \\ ` ** "
              b"12AB $G $1G %102 0x10 0b1 'ab' 1(2) (1+) 10/0 10%0 5%%101 1<2 1>2 A X SP CC ,X #").split()

GOOD_OPERANDS = [b"#%b", b"%b", b"%b,SP", b"%b,X", b"%b,Y", b"%b", b"#%b"]
FIXED_OPERANDS = [b"A,X", b"A,Y", b",X+", b",X-", b",+X", b",-X", b",Y+", b",Y-", b",+Y", b",-Y"]
ODD_OPERANDS = [b"", b"#", b"#,", b",", b",X", b",Y", b"X+", b"X", b"A", b"SP", b"CC", b"5,A",
                b"A,SP", b"A,A", b",SP+", b",-SP", b"%b,", b"%b,,X", b"%b,X+", b"%b,XX", b"%b,S",
                b"*", b"*+2", b"**", b"*,X", b"#*", b"#%b,X", b"%b;x", b"%b:", b"%b)", b"(%b",
                b"%b ,X", b"%b, X", b"# %b", b"A,%b", b"A ,X", b",%b", b"%b\"", b"%b.5", b"%b\x80"]

WORDS_OF_CONDITIONS = b"##if #ifdef #ifndef #elif #else #endif #define #error".split()
STAB_WORDS = [b"init", b"func", b"dir", b"file", b"stmt", b"expr", b"exec", b"type", b"sym L",
              b"sym V", b"sym F", b"sym v", b"sym f", b"sym Q", b"symV", b"sym", b"Exec", b"stm", b"x"]
STAB_FIELDS = [b"1", b"12", b"-3", b"0x1F", b"0X1F", b"$20", b"-$5", b"007", b"", b"x", b"9z", b"-",
               b"4294967297", b"-2147483648", b"1 2", b"\"a b\"", b"$", b"0x", b"5\x81"]
SEPARATORS = [b" ", b" ", b" ", b" ", b"\t", b"  ", b" \t "]
ODD_SEPARATORS = [b"\x01", b"\x0b", b"\x80", b"\xff ", b"\r", b"", b"\xa0"]
ODD_BYTES = [b"\0", b"\r", b"\x01", b"\x0c", b"\x1b", b"\x7f", b"\x80", b"\xa0", b"\xe9", b"\xff",
             b"\"", b"'", b"\\", b"#", b"%", b"$", b"(", b")", b",", b";", b":", b"+", b"-", b"*",
             b"/", b"<", b">", b"=", b"&", b"|", b"^", b"~", b"!", b"@", b"?", b"_", b".", b" ",
             b"\t", b"\n", b"\r\n", b"0", b"1", b"9", b"A", b"x", b"Y", b"SP"]

# "{cwd}" stands for the directory in which the program runs.
SOURCE_NAMES = [b"{cwd}/p.szirpa", b"{cwd}/sub/./p.szirpa", b"./" * 123 + b"p.szirpa",
                b"./" * 124 + b"p.szirpa", b"sub", b"./p.szirpa", b"sub/p.szirpa", b"sub//p.szirpa", b"sub/../p.szirpa", b"a.b.szirpa",
                b"p", b".p", b"p.", b"p q.szirpa", b"a\\p.szirpa", b"p.s19", b"p.lst",
                b"\xe9.szirpa", b"~\\..\\p", b"dir.x\\p"]
OUTPUT_NAMES = [b"out.s19", b"out", b"sub/out.s19", b"sub/", b"sub", b"none/out.s19", b".out",
                b"a.b.c", b"p.szirpa", b"p.fmem", b"p.lst", b"p_cout.c", b"", b"a b.s19",
                b"\"a b.s19\"", b"\"open", b"./p.s19", b"sub/../p.lst", b"o\\ut.s19", b"\"\"",
                b"d.x/out", b"x" * 250 + b".s19", b"x" * 253, b"x" * 256, b"{cwd}/out.s19",
                b"{cwd}/none/out.s19", b"{cwd}/sub/../p.szirpa", b"sub\\out.s19"]
BLOCKING_DIRECTORIES = [b"p.s19/", b"p.lst/", b"p_cout.c/", b"p.fmem/"]
ODD_OPTIONS = [[b"-x"], [b"-"], [b"--"], [b"-l"], [b"-LS"], [b"-S4"], [b"-ofoo"], [b"-ddir"],
               [b"-o\"q r.s19\""], [b"-o\"q\"r"], [b"-d\"d e\""], [b"-d", b"dir"], [b"-C", b"notrad"],
               [b"-Cnotrad"], [b"-C", b""], [b"-Cnonative"], [b"-C", b"nonative"], [b"-C", b"NOCASE"],
               [b"-I", b"inc"], [b"-Iinc"], [b"-I\"a b\""], [b"-I", b""], [b"-w2"], [b"-%s%d"]]
ODD_DEFINES = [b"", b"SIZE=5", b"a b", b"L,1", b"1", b"\xe9", b"L:", b"A", b"-L", b" L", b"L\x01"]

# How often each kind of line stands in a source of each style.
STYLES = {
    "program": {"instruction": 10, "data": 4, "equ": 3, "org": 2, "label": 2, "comment": 1},
    "mixed": {"instruction": 8, "data": 5, "equ": 4, "org": 2, "label": 2, "comment": 1,
              "condition": 2, "block": 1, "end": 1, "stab": 1, "odd": 1},
    "expressions": {"equ": 4, "data": 4, "instruction": 5, "org": 1, "condition": 1},
    "conditions": {"condition": 6, "block": 4, "instruction": 3, "equ": 3, "label": 3, "data": 1,
                   "stab": 1},
    "debugger": {"stab": 10, "instruction": 4, "label": 3, "equ": 1, "data": 2, "end": 1},
    "odd": {"odd": 8, "instruction": 3, "data": 3, "equ": 2, "org": 1, "end": 1, "condition": 2,
            "stab": 1, "label": 1, "long": 0.1},
    "long": {"long": 6, "instruction": 2, "data": 1, "comment": 1},
}
STYLE_NAMES = list(STYLES)
STYLE_WEIGHTS = [3, 5, 4, 4, 2, 3, 0.1]
HOSTILITY = [0.0, 0.05, 0.2, 0.6]


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


class SourceWriter:
    """Writes the lines of one source in one style."""

    def __init__(self, rng, style, hostility):
        self.rng = rng
        self.hostility = hostility
        self.kinds = list(STYLES[style])
        self.weights = list(STYLES[style].values())
        self.names = rng.sample(NAMES[:24], rng.randint(2, 6))
        if self.odd(0.3):
            self.names.append(rng.choice(NAMES[24:]))
        self.fresh_names = []

    # Chances

    def chance(self, probability):
        return self.rng.random() < probability

    def odd(self, share=1.0):
        return self.rng.random() < self.hostility * share

    def pick(self, *lists):
        return self.rng.choice(self.rng.choice(lists))

    def any_case(self, word):
        return word if self.chance(0.7) else self.rng.choice([word.lower(), word.title()])

    # Words

    def name(self):
        if self.fresh_names and self.chance(0.5):
            return self.rng.choice(self.fresh_names[-8:])
        return self.rng.choice(self.names)

    def new_name(self):
        """A name to be defined: mostly one that has no definition yet."""
        if self.odd(0.5) or self.chance(0.3):
            return self.rng.choice(self.names)
        self.fresh_names.append(b"v%d" % len(self.fresh_names))
        return self.fresh_names[-1]

    def number(self):
        rng = self.rng
        bounds = WIDE_BOUNDS if self.chance(0.15 + self.hostility / 4) else BYTE_BOUNDS
        value = rng.choice(bounds) if self.chance(0.8) else rng.randrange(256)
        form = rng.randrange(8)
        if form < 3:
            return b"%d" % value
        if form < 5:
            return b"$%X" % value if self.chance(0.8) else b"$%04x" % value
        if form == 5:
            return b"%" + format(value, "b").encode()
        if form == 6:
            character = rng.randrange(256) if self.odd() else rng.randrange(33, 127)
            return b"'%c'" % (character if character != 10 else 39)
        return b"00%d" % value

    def expression(self, depth=3):
        if self.odd(0.3):
            return self.token_soup()
        roll = self.rng.random()
        if depth == 0 or roll < 0.40:
            return self.number()
        if roll < 0.58:
            return self.name()
        if roll < 0.68:
            return self.rng.choice(UNARY) + self.expression(depth - 1)
        if roll < 0.78:
            return b"(" + self.expression(depth - 1) + b")"
        left, right = self.expression(depth - 1), self.expression(depth - 1)
        return left + self.rng.choice(BINARY) + right

    def token_soup(self):
        """A text of tokens in no order."""
        tokens = []
        for _ in range(self.rng.randint(1, 6)):
            tokens.append(self.rng.choice([self.number(), self.name(), self.pick(BINARY, UNARY),
                                           self.pick(ODD_TOKENS, REGISTERS)]))
        return b"".join(tokens)

    def operand(self):
        if self.odd(0.6):
            form = self.rng.choice(ODD_OPERANDS)
        else:
            form = self.pick(GOOD_OPERANDS, GOOD_OPERANDS, FIXED_OPERANDS)
        if b"%b" in form:
            form = form % self.expression(2)
        return form if self.chance(0.8) else form.swapcase()

    def separator(self):
        return self.rng.choice(ODD_SEPARATORS if self.odd(0.1) else SEPARATORS)

    def statement(self, label, operation, operand):
        colon = self.rng.choice([b"", b"", b":", b"::" if self.odd() else b""])
        text = (label + colon if label else b"") + self.separator() + operation
        if operand:
            text += self.separator() + operand
        return text + self.rng.choice([b"", b"", b"", b" ; note", b" note", b"\t;x", b";x"]
                                      if self.chance(0.3) else [b""])

    def perhaps_label(self, probability=0.3):
        return self.new_name() if self.chance(probability) else b""

    # Kinds of lines

    def instruction(self):
        rng, roll = self.rng, self.rng.random()
        if roll < 0.15:
            word, operand = rng.choice(INHERENT), rng.choice([b"", b"", b"", b"FOO"])
        elif roll < 0.35:
            word, operand = rng.choice(BRANCHES), self.branch_target()
        elif roll < 0.45:
            word = rng.choice([b"TFR", b"EXG"])
            operand = b",".join(rng.choices(REGISTERS, k=rng.choice([1, 2, 2, 2, 2, 3])))
            operand = operand if self.odd() else rng.choice(REGISTER_PAIRS)
        else:
            word = rng.choice(MNEMONICS if self.odd() else WITH_OPERAND)
            operand = self.operand()
        if self.odd(0.1):
            word = rng.choice([word + b"X", word[:-1], word + b",", b"ZZZ", word + b"\x80", b"_X"])
        return self.statement(self.perhaps_label(), self.any_case(word), operand)

    def branch_target(self):
        return self.operand() if self.odd() else self.rng.choice([self.name(), self.expression(1)])

    def data(self):
        kind = self.rng.randrange(5)
        if kind < 2:
            items = [self.expression(2) for _ in range(self.rng.choice([1, 1, 2, 3, 6, 7, 12, 13]))]
            delimiter = self.rng.choice([b", ", b";", b",,", b":"]) if self.odd(0.3) else b","
            return self.statement(self.perhaps_label(), self.any_case(b"FCB"), delimiter.join(items))
        if kind < 4:
            return self.statement(self.perhaps_label(), self.any_case(b"FCS"), self.string())
        size = self.rng.choice([0, 1, 2, 5, 6, 7, 12, 13, 28, 29, 30, 31, 60, 130, 300])
        operand = self.expression(1) if self.odd() else b"%d" % size
        return self.statement(self.perhaps_label(), self.any_case(b"RMB"), operand)

    def string(self):
        rng = self.rng
        pieces = []
        for _ in range(rng.choice([0, 1, 2, 5, 6, 7, 12, 30, 40, 121])):
            pieces.append(b"%c" % rng.randrange(35, 92) if self.chance(0.9)
                          else rng.choice([b"\\t", b"\\n", b"\\0", b"\\65", b"\\q", b"\\\\", b"\\\"",
                                           b" ", b"'", b";", b"\xe9", b"\\\xe9", b"\x01"]))
        text = b'"' + b"".join(pieces) + b'"'
        if self.odd():
            text = rng.choice([text[:-1], text[1:], text[:-1] + b"\\", b'""', b'"""', b"'ab'", b'"',
                               text + b"x", text + b',"b"', b'"\\'])
        return text

    def equ(self):
        return self.statement(self.perhaps_label(1.0 - self.hostility * 0.1),
                              self.any_case(b"EQU"), self.expression())

    def org(self):
        operand = b"$%X" % self.rng.choice(ADDRESSES) if self.chance(0.8) else self.expression(2)
        return self.statement(self.perhaps_label(0.2), self.any_case(b"ORG"), operand)

    def end(self):
        operand = self.rng.choice([b"", b"", self.name(), self.name() + b"+2", b"nosuch", b"*", b";",
                                   self.expression(1)])
        return self.statement(self.perhaps_label(0.1), self.any_case(b"END"), operand)

    def label(self):
        return self.new_name() + self.rng.choice([b"", b":", b" ", b" ; note", b":;x", b": NOP"])

    def comment(self):
        return self.rng.choice([b"; note", b";", b" ; note", b"", b" ", b"\t", b"\t;x", b"* star"])

    def condition(self):
        word = self.rng.choice(WORDS_OF_CONDITIONS)
        if self.odd(0.3):
            word = self.rng.choice([b"#if", b"# #if", b"#  ifdef", b"#IFDEF", b"#", b"##", b"#elsif",
                                    b".if", b"#\x01else", b"# endif", b"#endif;", b"##IF"])
        operand = self.expression(2) if word == b"##if" else self.name()
        if word in (b"#define", b"#error") and self.chance(0.6):
            operand += b" " + self.expression(2)
        if self.odd(0.3):
            operand = self.rng.choice([b"", operand + b",1", b"F(a)", operand + b" ;x", b"\x80W",
                                       self.token_soup(), operand + b"\t" + operand])
        indent = self.rng.choice([b"", b"", b"", b" ", b"\t", b"\x01"])
        return indent + self.any_case(word) + self.separator() + operand

    def block(self):
        """A conditional that is closed again."""
        lines = [b"##if " + self.expression(2) if self.chance(0.4)
                 else self.rng.choice([b"#ifdef ", b"#ifndef "]) + self.name()]
        for word in (b"#elif " + self.name(), b"#else", b"#endif"):
            kinds = self.rng.choices(self.kinds, self.weights, k=self.rng.randint(0, 2))
            lines += [self.line(kind) for kind in kinds]
            if word == b"#endif" or self.chance(0.5):
                lines.append(word)
        return b"\n".join(lines)

    def stab(self):
        word = self.rng.choice(STAB_WORDS)
        fields = [self.pick(STAB_FIELDS, self.names) for _ in range(self.rng.randint(0, 8))]
        operand = b":".join(fields)
        if word in (b"stmt", b"expr", b"exec") and self.chance(0.7):
            operand = self.pick(STAB_FIELDS) + b"," + self.expression(2)
        gap = self.rng.choice([b" ", b" ", b" ", b"", b"  ", b"\t", b",", b"\x80"])
        text = b".stab" + self.rng.choice([b" ", b"s", b"d", b"\t"]) + word + gap + operand
        if self.odd(0.2):
            text = text[:self.rng.randint(4, 14)]
        if self.chance(0.2):
            text += self.rng.choice([b"+", b"+\nmore+\nlast", b"+\n NOP+", b"+\r", b"++"])
        return text

    def odd_line(self):
        line = bytearray(self.line(self.rng.choice(["instruction", "data", "equ", "condition"])))
        for _ in range(self.rng.randint(1, 3)):
            edit_bytes(self.rng, line)
        return bytes(line)

    def long_line(self):
        """A line about as long as the reader takes at once."""
        rng = self.rng
        length = LINE_LIMIT + rng.randint(-6, 6) + rng.choice([0, 0, 0, 4095])
        start, unit = rng.choice([
            (b";", b"x"), (b" ", b" "), (b" FCS \"", b"s"), (b" FCB ", b"1,"), (b" FCB 1", b"+1"),
            (b"L1 EQU ", b"("), (b"L1 EQU ", b"-"), (b"", b"Q"), (b" LDA #1", b"+(1"),
            (b" LDA #", b"0"), (b" LDA #$", b"1"), (b"##if ", b"1"), (b"#define W ", b"1+"),
            (b".stab type ", b"t"), (b".stab sym L ", b":"), (b" NOP ", b"n"), (b" ORG ", b"~"),
            (b"L2", b" "), (b" LDA #", b"8/"), (b"1", b"\0"), (b" FCB 1", b"%%1"), (b" ", b"\x80")])
        line = (start + unit * (length // len(unit)))[:length]
        tail = rng.choice([b"", b"", b"\r", b'"', b"1", b")", b"+", b"\\"])
        return line[:length - len(tail)] + tail

    WRITERS = {"instruction": instruction, "data": data, "equ": equ, "org": org, "end": end,
               "label": label, "comment": comment, "condition": condition, "block": block, "stab": stab,
               "odd": odd_line, "long": long_line}

    def line(self, kind):
        return self.WRITERS[kind](self)

    def text(self, lines):
        kinds = self.rng.choices(self.kinds, self.weights, k=lines)
        return b"".join(self.line(kind) + b"\n" for kind in kinds)


class ProgramWriter:
    """Writes programs without faults, so that every byte of every output is compared."""

    def __init__(self, rng):
        self.rng = rng
        self.labels = rng.sample(range(100), rng.randint(3, 20))
        self.constants = []

    def value(self):
        rng = self.rng
        if self.constants and rng.random() < 0.4:
            return rng.choice([b"%b", b"%b+1", b"%b*1", b"%b&15", b"(%b|1)-1"]) % rng.choice(self.constants)
        return rng.choice([b"%d", b"$%02x", b"'%c'", b"%d-1"]) % rng.randrange(48, 91)

    def operation(self, near):
        rng = self.rng
        roll = rng.random()
        if roll < 0.15:
            return rng.choice(INHERENT)
        if roll < 0.3:
            return rng.choice(BRANCHES) + b" " + near
        if roll < 0.4:
            return rng.choice([b"TFR ", b"EXG "]) + rng.choice(REGISTER_PAIRS)
        if roll < 0.5:
            return b"FCB " + b",".join(self.value() for _ in range(rng.randint(1, 14)))
        if roll < 0.6:
            return b'FCS "' + b"text of a string\\n"[:rng.randint(1, 16)] + b'"'
        if roll < 0.65:
            return b"RMB %d" % rng.randint(1, 20)
        if roll < 0.7:
            return rng.choice([b"LDA ", b"STA "]) + rng.choice(FIXED_OPERANDS)
        form = rng.choice([b"LDA %b,X", b"STA %b,Y", b"ADCA #%b", b"CLR %b,SP", b"LEAX %b,SP", b"LDX %b",
                           b"JMP %b", b"CMPSP #%b", b"LEASP %b,Y", b"ORCC #%b", b"ASL %b"])
        return form % self.value()

    def text(self):
        rng = self.rng
        lines = [b"; a program without faults"]
        for number in range(rng.randint(0, 4)):
            lines.append(b"C%d\tEQU %b" % (number, self.value()))
            self.constants.append(b"C%d" % number)
        if rng.random() < 0.8:
            lines.append(b" ORG $%X" % rng.choice(ADDRESSES))
        for label in self.labels:
            name = b"M%d" % label
            lines.append(name + rng.choice([b" NOP", b":", b"", b": RTS"]))
            lines += [b"\t" + self.operation(name) for _ in range(rng.randint(0, 4))]
        if rng.random() < 0.5:
            lines.append(b" END" + rng.choice([b"", b" M%d" % self.labels[0]]))
        return b"\n".join(lines) + b"\n"


class DebuggerWriter(SourceWriter):
    """Writes debugger lines in sources without errors, whose records are therefore kept."""

    def __init__(self, rng):
        super().__init__(rng, "debugger", 0.0)
        self.names = [b"L%d" % number for number in range(6)]

    def number_field(self):
        return self.rng.choice(STAB_FIELDS + [b"1", b"2", b"300"])

    def symbol_field(self):
        return self.rng.choice(self.names + [b"nosuch", b"L1 ", b"L2,x", b"", b" L3", b"L4\x80"])

    def good_stab(self):
        rng, number, symbol = self.rng, self.number_field, self.symbol_field
        word = rng.choice([b"func", b"stmt", b"expr", b"exec", b"type", b"sym L", b"sym V",
                           b"sym F", b"sym v", b"sym f", b"init", b"dir", b"file", b"junk"])
        if word == b"func":
            fields = [symbol(), number(), number(), number(), *rng.choices(self.names, k=3)]
            fields[rng.randrange(4, 7)] = symbol()
            operand = b":".join(fields)
        elif word in (b"stmt", b"expr", b"exec"):
            operand = number() + rng.choice([b","] * 8 + [b", ", b" ,", b"", b",,"])
            operand += rng.choice([rng.choice(self.names), self.number(), b"L1+1", b"-L2", b"1-2"])
        elif word == b"sym L":
            operand = b":".join([b"a", symbol(), b"c", number(), b"rest:of it"])
        else:
            operand = b":".join([b"type", symbol(), number(), b"rest:of it"])
        gap = rng.choice([b" "] * 6 + [b"  ", b"", b"\t"])
        return self.shorten(b".stab" + rng.choice([b"s", b" "]) + word + gap + operand)

    def shorten(self, text):
        if self.chance(0.05):
            text = text[:self.rng.randint(6, 20)]
        end = self.rng.choice([b""] * 12 + [b"+", b"+\n; more+\n; last", b"+\n; more", b"\r", b" "])
        return text + end

    def text(self, lines):
        written = [b" ORG $%X" % self.rng.choice(ADDRESSES)] if self.chance(0.5) else []
        names = list(self.names)
        for _ in range(lines):
            roll = self.rng.random()
            if roll < 0.6:
                written.append(self.good_stab())
            elif roll < 0.8 and names:
                written.append(names.pop() + self.rng.choice([b"", b" EQU -1", b" EQU $80000000",
                                                              b" NOP", b" FCB 1,2"]))
            else:
                written.append(self.rng.choice([b" LDA #1", b" RTS", b" FCB 1", b"; note"]))
        written += [name + b" NOP" for name in names]
        return b"\n".join(written) + b"\n"


def many_names(rng):
    """A source that fills the table of names and shows it in its order."""
    start = rng.randrange(10000)
    count = rng.choice([150, 199, 200, 201, 400, 600, 1100, 2100])
    return b"".join(b"n%o EQU %d\n" % (start + number, number & 255) for number in range(count))


# Golden sources, spliced and edited

def golden_sources():
    paths = sorted(GOLDEN.glob("*/*.szirpa"))
    return [path.read_bytes() for path in paths if path.stat().st_size <= LARGEST_GOLDEN_SOURCE]


def edit_bytes(rng, text):
    """One small edit of a bytearray."""
    place = rng.randint(0, len(text))
    kind = rng.randrange(4)
    if kind == 0 and text:
        del text[place:place + rng.choice([1, 1, 1, 2, 5])]
    elif kind == 1:
        text[place:place] = rng.choice(ODD_BYTES)
    elif kind == 2:
        text[place:place + 1] = rng.choice(ODD_BYTES)
    else:
        start = rng.randint(0, place)
        text[place:place] = text[start:place][:20]


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
        text = self.line_ends(rng, self.text(rng, writer))
        odd_names = rng.random() < 0.06
        source = rng.choice(SOURCE_NAMES) if odd_names else b"p.szirpa"
        options = self.options(rng, writer, odd_names)
        if odd_names and rng.random() < 0.02:
            return Case(tuple(options), None, {})
        files = self.other_files(rng)
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
        if rng.random() < 0.03:
            chosen.append(rng.choice(ODD_OPTIONS))
        if odd_names and rng.random() < 0.6:
            chosen.append([b"-o", rng.choice(OUTPUT_NAMES)])
        rng.shuffle(chosen)
        return [word for option in chosen for word in option]


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


def main():
    parser = argparse.ArgumentParser(description="Write one random case into a directory.")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--index", type=int, default=0)
    parser.add_argument("directory")
    arguments = parser.parse_args()
    case = Generator(arguments.seed).case(arguments.index)
    directory = os.path.abspath(os.fsencode(arguments.directory))
    os.makedirs(directory, exist_ok=True)
    write_case(case, directory)
    print(*(repr(word)[1:] for word in case.argv(directory)))


if __name__ == "__main__":
    main()
