#!/usr/bin/env python3
"""Writes the workloads of the benchmark into a directory: always the same bytes.

    bench/generate.py DIRECTORY [WORKLOAD ...]

The large workload is described once, as statements without a language, and written in four: that of
HXzirpa and those of three assemblers for processors of the same kind. So all four read the same
number of lines, labels, constants, expressions, data bytes, comments and conditionals.
"""

import argparse
import dataclasses
import pathlib
import random
import shutil
import sys

HERE = pathlib.Path(__file__).resolve().parent

SEED = 20240229
# Numbers in names begin here, so that names are of one length however many there are.
FIRST_NUMBER = 10_000

# ---- Statements of the large workload ----------------------------------------------------------
#
# A statement is a tuple that begins with its kind:
#   ("comment", text) ("blank",) ("origin",) ("label", name) ("constant", name, expression)
#   ("bytes", label, values) ("text", label, text)
#   ("instruction", label, row, operand, remark)
#   ("define", name) ("ifdef", name) ("ifndef", name) ("if", expression) ("else",) ("endif",)
#   ("end", name)
# Labels may be "". Numbers in operands and values are integers with a base, or names, or
# expressions; all four languages agree on these expressions because parentheses stand wherever
# their ranks could differ.

# Rows: the instruction and its nearest relative on the 6502 and on the 6811.
INHERENT = [
    ("CLRA", "tya", "clra"), ("INCA", "inx", "inca"), ("DECA", "dex", "deca"),
    ("NEGA", "iny", "nega"), ("COMA", "dey", "coma"), ("TSTA", "clc", "tsta"),
    ("ASLA", "sec", "asla"), ("LSRA", "cli", "lsra"), ("RORA", "sei", "rora"),
    ("ROLA", "clv", "rola"), ("PSHA", "pha", "psha"), ("PULA", "pla", "pula"),
    ("PSHX", "php", "pshx"), ("PULX", "plp", "pulx"), ("RTS", "rts", "rts"),
    ("NOP", "nop", "nop"), ("TFR     X,Y", "tax", "tab"), ("TFR     SP,X", "tsx", "tsx"),
    ("EXG     X,Y", "txa", "xgdx"), ("EXG     A,CC", "tay", "tap"),
]
IMMEDIATE = [
    ("LDA", "lda", "ldaa"), ("LDA", "lda", "ldaa"), ("LDX", "ldx", "ldab"), ("LDY", "ldy", "ldab"),
    ("ADDA", "adc", "adda"), ("ADCA", "adc", "adca"), ("SUBA", "sbc", "suba"),
    ("SBCA", "sbc", "sbca"), ("CMPA", "cmp", "cmpa"), ("CMPX", "cpx", "cmpb"),
    ("CMPY", "cpy", "cmpb"), ("ANDA", "and", "anda"), ("ORA", "ora", "oraa"),
    ("EORA", "eor", "eora"), ("BITA", "cmp", "bita"), ("ANDCC", "and", "andb"),
]
MEMORY = [
    ("LDA", "lda", "ldaa"), ("LDA", "lda", "ldaa"), ("STA", "sta", "staa"), ("STA", "sta", "staa"),
    ("LDX", "ldx", "ldx"), ("STX", "stx", "stx"), ("STY", "sty", "sty"), ("ADDA", "adc", "adda"),
    ("SUBA", "sbc", "suba"), ("CMPA", "cmp", "cmpa"), ("BITA", "bit", "bita"),
    ("INC", "inc", "inc"), ("DEC", "dec", "dec"), ("CLR", "stx", "clr"), ("ASL", "asl", "asl"),
    ("ROR", "ror", "ror"), ("JMP", "jmp", "jmp"), ("JSR", "jsr", "jsr"), ("JSR", "jsr", "jsr"),
]
INDEXED = [
    ("LDA", "lda", "ldaa"), ("STA", "sta", "staa"), ("ADDA", "adc", "adda"),
    ("CMPA", "cmp", "cmpa"), ("ORA", "ora", "oraa"), ("EORA", "eor", "eora"),
    ("SUBA", "sbc", "suba"), ("ANDA", "and", "anda"),
]
ACCESS = [("LDA", "lda", "ldaa"), ("STA", "sta", "staa")]
STEP_X = [("LEAX", "inc", "ldx")]
BRANCH = [
    ("BRA", "bvc", "bra"), ("BNE", "bne", "bne"), ("BNE", "bne", "bne"), ("BEQ", "beq", "beq"),
    ("BMI", "bmi", "bmi"), ("BPL", "bpl", "bpl"), ("BCS", "bcs", "bcs"), ("BCC", "bcc", "bcc"),
    ("BLO", "bcc", "blo"), ("BHS", "bcs", "bhs"), ("BHI", "bne", "bhi"), ("BLS", "beq", "bls"),
    ("BGE", "bpl", "bge"), ("BLT", "bmi", "blt"), ("BVS", "bvs", "bvs"),
]

# Operand forms, and the shares of instructions that have them.
FORMS = {
    "branch": (18, BRANCH),
    "immediate": (22, IMMEDIATE),
    "memory": (24, MEMORY),
    "inherent": (14, INHERENT),
    "x": (9, INDEXED),
    "y": (4, INDEXED),
    "sp": (3, INDEXED),
    "a": (2, ACCESS),
    "step": (2, STEP_X),
    "auto": (2, ACCESS),
}

WORDS = (
    "next loop table count value input output buffer pointer sum carry digit text start end flag "
    "port timer byte index limit mask shift line column screen key state error stack frame".split()
)
REMARKS = [
    "one byte at a time", "the carry is clear here", "keep the old value", "until all are done",
    "low half first", "wait for the next one", "see the table below", "back to the caller",
    "nothing else changes", "as long as there is input",
]

# Longest code of an instruction in any of the four languages.
MOST_CODE = 3
BRANCH_REACH = 110
BLOCK_CODE = 200
DEFINED_WORDS = ["WITH_TRACE", "WITH_SCREEN", "WITH_TIMER"]
MISSING_WORDS = ["WITHOUT_STACK", "SMALL_MODEL"]


def pick(rng, weighted):
    """A key of a table of (weight, ...) tuples or weights."""
    weights = [w[0] if isinstance(w, tuple) else w for w in weighted.values()]
    return rng.choices(list(weighted), weights)[0]


class LargeProgram:
    """Statements of the large mix. `shortage` is the share of names that are left out."""

    UNITS = {"instruction": 39, "label": 15, "constant": 10, "data": 10, "remark": 15, "choice": 2}

    def __init__(self, lines, shortage=0.0):
        self.rng = random.Random(SEED + lines)
        self.shortage = shortage
        self.constants = []
        self.labels = []

    def name(self, names):
        """A name nobody has yet."""
        number = FIRST_NUMBER + len(self.labels) + len(self.constants) + len(names)
        return f"{self.rng.choice(WORDS)}_{number}"

    def constant(self):
        """A known constant: mostly one of the last, as in real programs."""
        if not self.constants:
            return "5"
        if self.rng.random() < 0.2:
            return self.rng.choice(self.constants)
        return self.rng.choice(self.constants[-40:])

    def number(self, most):
        """A number from 0 to `most`, in one of the notations."""
        value = self.rng.randint(0, most)
        kind = self.rng.random()
        if kind < 0.45:
            return ("hex", value)
        if kind < 0.8:
            return ("decimal", value)
        if kind < 0.9:
            return ("binary", value)
        return ("character", 65 + value % 26)

    def small_expression(self):
        """An expression of constants with a value from 0 to 127."""
        first, second = self.constant(), self.constant()
        k = self.rng.randint(1, 9)
        return self.rng.choice([
            f"{first}+{k}", f"{first}*2+1", f"{first}+{second}", f"63-{first}", f"{first}|64",
        ])

    def constant_value(self):
        """What defines a constant: a value from 0 to 63."""
        first, second = self.constant(), self.constant()
        k = self.rng.randint(1, 28)
        return self.rng.choice([
            ("decimal", k * 2), ("hex", k * 2), f"{first}", f"({first}&31)+{k}",
            f"({first}+{second})&63", f"({first}*2+{second})/4", f"({first}|{k})&63",
            f"({first}<<1)&62", f"{first}>>1", f"({first}+{k})/2",
        ])

    def value(self):
        """One value of a list of bytes."""
        kind = self.rng.random()
        if kind < 0.8:
            return self.number(255)
        return self.constant() if kind < 0.95 else self.small_expression()

    def address(self):
        """A memory operand, or none if it is to be a label of the block."""
        kind = self.rng.random()
        if kind < 0.6:
            return None
        if kind < 0.75 and self.labels:
            return self.rng.choice(self.labels)
        return self.number(127)

    def immediate(self):
        """An immediate value, or none if it is to be the address of a label of the block."""
        kind = self.rng.random()
        if kind < 0.1:
            return None
        if kind < 0.5:
            return self.number(255)
        return self.constant() if kind < 0.8 else self.small_expression()

    def offset(self):
        return self.number(15) if self.rng.random() < 0.6 else self.constant()

    def operand(self, form):
        """An operand of names that are known so far; none if it waits for the block's labels."""
        if form == "immediate":
            return self.immediate()
        if form == "memory":
            return self.address()
        if form in ("x", "y", "sp", "step"):
            return self.offset()
        return self.rng.choice("XY") if form in ("a", "auto") else None

    def late_operand(self, form, labels):
        """An operand made of a label of the block, also one further down."""
        if not labels:
            return self.number(127)
        name = self.rng.choice(labels)
        if form == "immediate":
            return ("low", name)
        return f"{name}+1" if self.rng.random() < 0.2 else name

    def instruction(self, label="", with_branch=True):
        """A branch has no target yet: what it can reach is known when its block is complete."""
        form = pick(self.rng, FORMS)
        if form == "branch" and not with_branch:
            form = "inherent"
        row = self.rng.choice(FORMS[form][1])
        remark = self.rng.choice(REMARKS) if self.rng.random() < 0.25 else ""
        return ["instruction", label, row, (form, self.operand(form)), remark]

    def choice(self):
        """A conditional with its branches, six lines at most."""
        kind = self.rng.random()
        if kind < 0.4:
            opening = ("ifdef", self.rng.choice(DEFINED_WORDS))
        elif kind < 0.6:
            opening = ("ifndef", self.rng.choice(MISSING_WORDS))
        else:
            opening = ("if", f"{self.constant()}&1")
        body = [self.instruction(with_branch=False) for _ in range(self.rng.randint(1, 2))]
        if self.rng.random() < 0.5:
            return [opening, *body, ("endif",)]
        other = [self.instruction(with_branch=False) for _ in range(self.rng.randint(1, 2))]
        return [opening, *body, ("else",), *other, ("endif",)]

    def data(self, label=""):
        if self.rng.random() < 0.25:
            words = self.rng.sample(WORDS, 2)
            return ("text", label, " ".join(words)[:12].strip())
        return ("bytes", label, [self.value() for _ in range(self.rng.randint(1, 8))])

    def labelled(self, new):
        """A label: alone, with an instruction or with data."""
        if self.rng.random() < self.shortage:
            return self.instruction()
        name = self.name(new)
        new.append(name)
        kind = self.rng.random()
        if kind < 0.4:
            return ("label", name)
        return self.instruction(name) if kind < 0.85 else self.data(name)

    def unit(self, new):
        """The statements of one unit; labels go to `new`."""
        kind = pick(self.rng, self.UNITS)
        if kind == "instruction":
            return [self.instruction()]
        if kind == "label":
            return [self.labelled(new)]
        if kind == "constant":
            if self.rng.random() < self.shortage:
                return [self.data()]
            value = self.constant_value()
            name = self.name(new)
            self.constants.append(name)
            return [("constant", name, value)]
        if kind == "data":
            return [self.data()]
        if kind == "choice":
            return self.choice()
        if self.rng.random() < 0.35:
            return [("blank",)]
        return [("comment", f"{' '.join(self.rng.sample(WORDS, 3))}: {self.rng.choice(REMARKS)}")]

    def block(self):
        """Statements from one origin to the next, their branches resolved."""
        statements = [("origin",)]
        new = []
        code = 0
        while code < BLOCK_CODE:
            unit = self.unit(new)
            statements += unit
            code += sum(code_of(s, 2) for s in unit)
        self.resolve(statements, new)
        self.labels += new
        return statements

    def resolve(self, statements, new):
        """Gives the branches and the other users of the block's labels their operands."""
        places = [0]
        for statement in statements:
            places.append(places[-1] + code_of(statement, MOST_CODE))
        labels = [(places[i], s[1]) for i, s in enumerate(statements)
                  if s[0] in ("label", "bytes", "text", "instruction") and s[1]]
        for i, statement in enumerate(statements):
            if statement[0] != "instruction":
                continue
            form, operand = statement[3]
            if form in ("memory", "immediate") and operand is None:
                statement[3] = (form, self.late_operand(form, new))
            if form != "branch":
                continue
            near = sorted((abs(place - places[i]), name) for place, name in labels)[:6]
            near = [name for distance, name in near if distance < BRANCH_REACH]
            if near:
                statement[3] = (form, self.rng.choice(near))
            else:
                statement[2], statement[3] = self.rng.choice(INHERENT), ("inherent", None)


def code_of(statement, instruction_code):
    """Bytes of a statement, as an upper bound."""
    if statement[0] == "instruction":
        return instruction_code
    if statement[0] in ("bytes", "text"):
        return len(statement[2])
    return 0


def large_statements(lines, shortage=0.0):
    """The large mix in exactly that many lines (the three lines of #define among them)."""
    program = LargeProgram(lines, shortage)
    statements = [("comment", "A large program made of small parts")]
    statements += [("define", word) for word in DEFINED_WORDS]
    statements += [("origin",), ("label", "begin")]
    while True:
        block = program.block()
        if len(statements) + len(block) >= lines:
            break
        statements += block
    statements += [("comment", "nothing more")] * (lines - 1 - len(statements))
    statements.append(("end", "begin"))
    return statements


# ---- Languages ---------------------------------------------------------------------------------


@dataclasses.dataclass(frozen=True)
class Language:
    """How statements are written: lines of a form of their own, and fields in columns."""

    suffix: str
    column: int  # index of the language's mnemonic in an instruction's row
    data_words: dict
    lines: dict
    forms: dict  # of operands
    label: str = "{}"
    prefixes: dict = dataclasses.field(default_factory=lambda: {"hex": "$", "binary": "%"})
    low: str = "{}"  # how the low byte of an address is written

    def atom(self, value):
        if isinstance(value, str):
            return value
        kind, number = value
        if kind == "low":
            return self.low.format(number)
        if kind == "hex":
            return f"{self.prefixes['hex']}{number:02X}"
        if kind == "binary":
            return f"{self.prefixes['binary']}{number:08b}"
        return f"'{chr(number)}'" if kind == "character" else str(number)

    def line(self, statement):
        kind, *given = statement
        if kind == "instruction":
            label, row, operand, remark = given
            text = self.field(label, row[self.column], self.operand(*operand), remark)
        elif kind in self.data_words:
            label, values = given
            listed = f'"{values}"' if kind == "text" else ",".join(map(self.atom, values))
            text = self.field(label, self.data_words[kind], listed)
        elif kind == "label":
            text = self.label.format(*given)
        else:
            text = {**COMMON_LINES, **self.lines}[kind].format(*map(self.atom, given))
        return text.rstrip()

    def field(self, label, operation, operand, remark=""):
        label = label and self.label.format(label)
        text = f"{label:<11} {operation:<7} {operand}"
        return f"{text:<35} ; {remark}" if remark else text

    def operand(self, form, value):
        return "" if value is None else self.forms[form].format(self.atom(value))


COMMON_LINES = {"comment": "; {}", "blank": ""}
DOTTED_CONDITIONS = {"if": ".if {}", "else": ".else", "endif": ".endif", "end": ".end"}
# What the two assemblers for the 6502 have in common.
MOS_LINES = {"constant": "{:<11} = {}", "define": "{} = 1"}
MOS_FORMS = {"branch": "{}", "immediate": "#{}", "memory": "{}", "x": "{},x", "y": "{},y",
             "sp": "({},x)", "a": "($20),y", "step": "{},x", "auto": "($22),y"}

ZIRPA = Language(
    "szirpa", 0, {"bytes": "FCB", "text": "FCS"},
    {"origin": "            ORG     $10", "constant": "{:<11} EQU     {}",
     "define": "#define {} 1", "ifdef": "#ifdef {}", "ifndef": "#ifndef {}", "if": "##if {}",
     "else": "#else", "endif": "#endif", "end": "            END     {}"},
    {"branch": "{}", "immediate": "#{}", "memory": "{}", "x": "{},X", "y": "{},Y",
     "sp": "{},SP", "a": "A,{}", "step": "{},X", "auto": ",{}+"},
)  # fmt: skip
TASS64 = Language(
    "64tass", 1, {"bytes": ".byte", "text": ".text"},
    # Without a word for "not defined" the branch is taken all the same.
    {**MOS_LINES, **DOTTED_CONDITIONS, "origin": "            * = $1000", "ifdef": ".if {}",
     "ifndef": f".if {DEFINED_WORDS[0]}"},
    MOS_FORMS, low="<{}",
)  # fmt: skip
ACME = Language(
    "acme", 1, {"bytes": "!byte", "text": "!text"},
    {**MOS_LINES, "origin": "            * = $1000, overlay", "ifdef": "!ifdef {} {{",
     "ifndef": "!ifndef {} {{", "if": "!if {} {{", "else": "}} else {{", "endif": "}}",
     "end": "!eof"},
    MOS_FORMS, low="<{}",
)  # fmt: skip
# The GNU assembler can't go back to an address: a block begins at the next page.
GNU = Language(
    "s", 2, {"bytes": ".byte", "text": ".ascii"},
    {**DOTTED_CONDITIONS, "origin": "            .p2align 8",
     "constant": "            .equ    {},{}", "define": "            .equ    {},1",
     "ifdef": ".ifdef {}", "ifndef": ".ifndef {}"},
    {"branch": "{}", "immediate": "#{}", "memory": "{}", "x": "{},x", "y": "{},y",
     "sp": "{},x", "a": "0,{}", "step": "{},x", "auto": "1,{}"},
    label="{}:", prefixes={"hex": "0x", "binary": "0b"}, low="%lo({})",
)  # fmt: skip


def write_lines(path, lines):
    path.write_text("".join(f"{line}\n" for line in lines))


def large(path, lines, shortage=0.0, languages=(ZIRPA,)):
    """One file for each language, beside `path`."""
    statements = large_statements(lines, shortage)
    for language in languages:
        write_lines(path.with_suffix("." + language.suffix), map(language.line, statements))


# ---- The other workloads -----------------------------------------------------------------------


def typical(path):
    shutil.copyfile(HERE / "typical.szirpa", path)


def in_blocks(lines, size, origin):
    """The lines, each block of which begins at the origin anew."""
    for number, line in enumerate(lines):
        if number % size == 0:
            yield f"        ORG     {origin}"
        yield line


def symbols(path, names, references):
    """Half of the names are constants at the beginning, half are labels; a reference a line."""
    rng = random.Random(SEED + names)
    known = [f"{rng.choice(WORDS)}_{rng.choice(WORDS)}_{i + FIRST_NUMBER}" for i in range(names)]
    constants, labels = known[: names // 2], known[names // 2:]
    lines = [f"{name:<23} EQU     {i % 256}" for i, name in enumerate(constants)]
    spacing = references / len(labels)

    def labels_and_references():
        waiting = iter(enumerate(labels))
        place, label = next(waiting)
        for i in range(references):
            above = []
            while place <= i / spacing:
                above.append(label)
                place, label = next(waiting, (references, ""))
            name = rng.choice(known)
            use = rng.choice(("LDA     ", "STA     ", "LDX     #", "FCB     "))
            yield "\n".join([*above, f"        {use}{name}"])

    lines += in_blocks(labels_and_references(), 100, "$10")
    write_lines(path, [*lines, "        END"])


def expression(rng, names):
    """An expression of five to ten operators, the last of which keeps the value in a byte."""
    length = rng.randint(5, 10)

    def atom():
        kind = rng.random()
        if kind < 0.5:
            return rng.choice(names)
        value = rng.randint(1, 99)
        return rng.choice([f"{value}", f"${value:X}"])

    text = atom()
    operators = 0
    open_parentheses = 0
    last = ""
    while operators < length - 1 or open_parentheses:
        if open_parentheses and (operators >= length - 1 or rng.random() < 0.4):
            text += ")"
            open_parentheses -= 1
            continue
        # The divisor is the whole product after the sign: it must be a plain number or name.
        choices = ["+", "-", "&", "|", "^", "<<", ">>", "=="]
        if last not in ("/", "%"):
            choices.append("*")
            if last != "*":
                choices += ["/", "%"]
        last = rng.choice(choices)
        operators += 1
        text += last
        if last in ("<<", ">>"):
            text += str(rng.randint(1, 3))
            continue
        if last not in ("/", "%") and operators < length - 2 and rng.random() < 0.2:
            text += "("
            open_parentheses += 1
        elif last not in ("/", "%") and rng.random() < 0.05 and operators < length - 1:
            text += "~"
            operators += 1
        text += atom()
    return text + "&127"


def expressions(path, count):
    """Lines of data, operands and constants, each with a long expression."""
    rng = random.Random(SEED + 2)
    names = [f"{rng.choice(WORDS)}_{i}" for i in range(200)]
    lines = [f"{name:<11} EQU     {rng.randint(1, 63)}" for name in names]
    numbers = iter(range(20_000))

    def uses():
        for _ in range(count):
            kind = rng.random()
            number = next(numbers, None) if kind < 0.1 else None
            if number is not None:
                yield f"{f'result_{number}':<11} EQU     {expression(rng, names)}"
            elif kind < 0.4:
                yield f"            FCB     {expression(rng, names)}"
            elif kind < 0.8:
                yield f"            LDA     #{expression(rng, names)}"
            else:
                yield f"            LDA     {expression(rng, names)},X"

    lines += in_blocks(uses(), 100, "$10")
    write_lines(path, [*lines, "            END"])


def data(path, count):
    """Rows of sixteen values; as many rows at a time as fit into memory."""
    rng = random.Random(SEED + 3)

    def value():
        number = rng.randint(0, 255)
        kind = rng.random()
        if kind < 0.6:
            return f"${number:02X}"
        if kind < 0.9:
            return str(number)
        return f"%{number:08b}" if kind < 0.95 else f"'{chr(97 + number % 26)}'"

    rows = ("        FCB     " + ",".join(value() for _ in range(16)) for _ in range(count))
    write_lines(path, [*in_blocks(rows, 16, "$00"), "        END"])


# The million lines have room for few names in each hundred, so their growth is measured against a
# hundred thousand lines that have as few.
FEW_NAMES = 0.86

WORKLOADS = {
    "typical": typical,
    "large-10k": lambda path: large(path, 10_000),
    "large-100k": lambda path: large(path, 100_000, languages=(ZIRPA, TASS64, ACME, GNU)),
    "sparse-100k": lambda path: large(path, 100_000, FEW_NAMES),
    "sparse-1M": lambda path: large(path, 1_000_000, FEW_NAMES),
    "symbols-4000": lambda path: symbols(path, 4_000, 20_513),
    "symbols": lambda path: symbols(path, 39_000, 200_000),
    "expressions": lambda path: expressions(path, 200_000),
    "data": lambda path: data(path, 100_000),
    "guard": lambda path: large(path, 2_000),
}


def write(directory, names):
    """Writes the named workloads into a directory."""
    directory.mkdir(parents=True, exist_ok=True)
    for name in names:
        WORKLOADS[name](directory / f"{name}.szirpa")


def main():
    parser = argparse.ArgumentParser(description="Writes the workloads of the benchmark.")
    parser.add_argument("directory", type=pathlib.Path)
    parser.add_argument("workloads", nargs="*", metavar="WORKLOAD",
                        help=f"one of {', '.join(WORKLOADS)}; all of them if none is named")
    arguments = parser.parse_args()
    unknown = set(arguments.workloads) - set(WORKLOADS)
    if unknown:
        parser.error(f"no such workload: {', '.join(sorted(unknown))}")
    write(arguments.directory, arguments.workloads or WORKLOADS)
    return 0


if __name__ == "__main__":
    sys.exit(main())
