"""Writers of random sources."""

from source_words import *  # noqa: F403

# How often each kind of line stands in a source of each style.
STYLES = {
    "program": {"instruction": 10, "data": 4, "equ": 3, "org": 2, "label": 2, "comment": 1},
    "mixed": {"instruction": 8, "data": 5, "equ": 4, "org": 2, "label": 2, "comment": 1,
              "condition": 2, "block": 1, "end": 1, "stab": 1, "odd": 1, "byte": 1},
    "expressions": {"equ": 4, "data": 4, "instruction": 5, "org": 1, "condition": 1},
    "conditions": {"condition": 6, "block": 4, "instruction": 3, "equ": 3, "label": 3, "data": 1,
                   "stab": 1},
    "debugger": {"stab": 10, "instruction": 4, "label": 3, "equ": 1, "data": 2, "end": 1},
    "odd": {"odd": 6, "byte": 4, "instruction": 3, "data": 3, "equ": 2, "org": 1, "end": 1,
            "condition": 2, "stab": 1, "label": 1, "long": 0.1},
    "long": {"long": 6, "instruction": 2, "data": 1, "comment": 1},
}
STYLE_NAMES = list(STYLES)
STYLE_WEIGHTS = [3, 5, 4, 4, 2, 3, 0.1]
HOSTILITY = [0.0, 0.05, 0.2, 0.6]


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
            operand = delimiter.join(items)
            return self.statement(self.perhaps_label(), self.any_case(b"FCB"), operand)
        if kind < 4:
            return self.statement(self.perhaps_label(), self.any_case(b"FCS"), self.string())
        size = self.rng.choice([0, 1, 2, 5, 6, 7, 12, 13, 28, 29, 30, 31, 60, 130, 300])
        operand = self.expression(1) if self.odd() else b"%d" % size
        return self.statement(self.perhaps_label(), self.any_case(b"RMB"), operand)

    def string(self):
        rng = self.rng
        pieces = []
        for _ in range(rng.choice([0, 1, 2, 5, 6, 7, 12, 30, 40, 121])):
            plain = self.chance(0.9)
            pieces.append(b"%c" % rng.randrange(35, 92) if plain else rng.choice(STRING_PIECES))
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
        operand = self.rng.choice([b"", b"", self.name(), self.name() + b"+2", b"nosuch", b"*",
                                   b";", self.expression(1)])
        return self.statement(self.perhaps_label(0.1), self.any_case(b"END"), operand)

    def label(self):
        return self.new_name() + self.rng.choice([b"", b":", b" ", b" ; note", b":;x", b": NOP"])

    def comment(self):
        return self.rng.choice([b"; note", b";", b" ; note", b"", b" ", b"\t", b"\t;x", b"* star"])

    def condition(self):
        word = self.rng.choice(WORDS_OF_CONDITIONS)
        if self.odd(0.3):
            word = self.rng.choice(ODD_CONDITIONS)
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

    def byte_place(self):
        return self.rng.choice(BYTE_PLACES).replace(b"@", bytes([self.rng.randrange(256)]))

    def long_line(self):
        """A line about as long as the reader takes at once."""
        rng = self.rng
        length = LINE_LIMIT + rng.randint(-6, 6) + rng.choice([0, 0, 0, 4095])
        start, unit = rng.choice(LONG_LINES)
        line = (start + unit * (length // len(unit)))[:length]
        tail = rng.choice([b"", b"", b"\r", b'"', b"1", b")", b"+", b"\\"])
        return line[:length - len(tail)] + tail

    WRITERS = {"instruction": instruction, "data": data, "equ": equ, "org": org, "end": end,
               "label": label, "comment": comment, "condition": condition, "block": block,
               "stab": stab, "odd": odd_line, "byte": byte_place, "long": long_line}

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
            form = rng.choice([b"%b", b"%b+1", b"%b*1", b"%b&15", b"(%b|1)-1"])
            return form % rng.choice(self.constants)
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
        form = rng.choice(GOOD_INSTRUCTIONS)
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
