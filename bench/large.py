"""A large program made of small parts, as statements without a language."""

from languages import (ACCESS, BRANCH, DEFINED_WORDS, IMMEDIATE, INDEXED, INHERENT, MEMORY,
                       MISSING_WORDS, STEP_X)

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

# Numbers in names begin here, so that names are of one length however many there are.
FIRST_NUMBER = 10_000

# Longest code of an instruction in any of the languages.
MOST_CODE = 3
BRANCH_REACH = 110
BLOCK_CODE = 200
BLOCK_ORIGIN = ("origin", ("page", 0x10))


def pick(rng, weighted):
    """A key of a table of (weight, ...) tuples or weights."""
    weights = [w[0] if isinstance(w, tuple) else w for w in weighted.values()]
    return rng.choices(list(weighted), weights)[0]


class LargeProgram:
    """Statements of the large mix. `shortage` is the share of names that are left out."""

    UNITS = {"instruction": 39, "label": 15, "constant": 10, "data": 10, "remark": 15, "choice": 2}

    def __init__(self, rng, shortage):
        self.rng = rng
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
        statements = [BLOCK_ORIGIN]
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


def large(rng, lines, shortage=0.0):
    """The large mix in exactly that many lines (the three lines of #define among them)."""
    program = LargeProgram(rng, shortage)
    statements = [("title", "A large program made of small parts")]
    statements += [("define", word) for word in DEFINED_WORDS]
    statements += [BLOCK_ORIGIN, ("label", "begin")]
    while True:
        block = program.block()
        if len(statements) + len(block) >= lines:
            break
        statements += block
    statements += [("comment", "nothing more")] * (lines - 1 - len(statements))
    statements.append(("end", "begin"))
    return statements
