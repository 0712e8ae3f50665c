"""Statements of the workloads, and the languages of five assemblers that they are written in.

A statement is a tuple that begins with its kind:

    ("title", text) ("comment", text) ("blank",) ("origin", value) ("label", name)
    ("constant", name, value)
    ("bytes", label, values) ("address", label, [name]) ("text", label, text)
    ("instruction", label, row, (form, value), remark)
    ("define", name) ("ifdef", name) ("ifndef", name) ("if", value) ("else",) ("endif",)
    ("end", name)

Labels may be "". A value is None where an operand is missing, a name, a pair of a notation and a
number, or a list of values and operators. Expressions are drawn so that all languages give them the
same value, each by its own ranks.
"""

import dataclasses

# Names that the conditionals ask for: they are defined in all languages, and in none.
DEFINED_WORDS = ["WITH_TRACE", "WITH_SCREEN", "WITH_TIMER"]
MISSING_WORDS = ["WITHOUT_STACK", "SMALL_MODEL"]

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


@dataclasses.dataclass(frozen=True)
class Language:
    """How statements are written: lines of a form of their own, and fields in columns."""

    suffix: str
    column: int  # index of the language's mnemonic in an instruction's row
    data_words: dict
    lines: dict
    forms: dict  # of operands
    label: str = "{}"
    notations: dict = dataclasses.field(default_factory=dict)  # where they differ from the usual
    operators: dict = dataclasses.field(default_factory=dict)  # likewise
    sizes: dict = dataclasses.field(default_factory=dict)  # what a form adds to the mnemonic

    def value(self, value):
        if isinstance(value, str):
            return self.operators.get(value, BRACES.get(value, value))
        if isinstance(value, list):
            return "".join(map(self.value, value))
        notation, number = value
        return {**NOTATIONS, **self.notations}[notation](number)

    def line(self, statement):
        kind, *given = statement
        if kind == "instruction":
            label, row, (form, value), remark = given
            operation = row[self.column] + self.sizes.get(form, "")
            operand = "" if value is None else self.forms[form].format(self.value(value))
            text = self.field(label, operation, operand, remark)
        elif kind in self.data_words:
            label, values = given
            listed = f'"{values}"' if kind == "text" else ",".join(map(self.value, values))
            text = self.field(label, self.data_words[kind], listed)
        elif kind == "label":
            text = self.label.format(*given)
        else:
            text = {**COMMON_LINES, **self.lines}[kind].format(*map(self.value, given))
        return text.rstrip()

    def field(self, label, operation, operand, remark=""):
        label = label and self.label.format(label)
        text = f"{label:<11} {operation:<7} {operand}"
        return f"{text:<35} ; {remark}" if remark else text


# They group what one language has to put into parentheses.
BRACES = {"{": "", "}": ""}
# A page address is one of a byte here; processors that have more memory take a page above.
NOTATIONS = {
    "hex": "${:02X}".format,
    "decimal": str,
    "binary": "%{:08b}".format,
    "character": lambda number: f"'{chr(number)}'",
    "low": "<{}".format,
    "page": "$10{:02X}".format,
}
COMMON_LINES = {"title": "; {}", "comment": "; {}", "blank": ""}
DOTTED_CONDITIONS = {"if": ".if {}", "else": ".else", "endif": ".endif", "end": ".end"}
# What the assemblers for the 6502 have in common.
MOS_LINES = {"constant": "{:<11} = {}", "define": "{} = 1", "origin": "            * = {}"}
MOS_FORMS = {"branch": "{}", "immediate": "#{}", "memory": "{}", "direct": "{}",
             "direct x": "{},x", "x": "{},x", "y": "{},y", "sp": "({},x)", "a": "($20),y",
             "step": "{},x", "auto": "($22),y"}

ZIRPA = Language(
    "szirpa", 0, {"bytes": "FCB", "address": "FCB", "text": "FCS"},
    {"origin": "            ORG     {}", "constant": "{:<11} EQU     {}",
     "define": "#define {} 1", "ifdef": "#ifdef {}", "ifndef": "#ifndef {}", "if": "##if {}",
     "else": "#else", "endif": "#endif", "end": "            END     {}"},
    {"branch": "{}", "immediate": "#{}", "memory": "{}", "direct": "{}", "direct x": "{},X",
     "x": "{},X", "y": "{},Y", "sp": "{},SP", "a": "A,{}", "step": "{},X", "auto": ",{}+"},
    notations={"low": str, "page": "${:02X}".format},
)  # fmt: skip
TASS64 = Language(
    "64tass", 1, {"bytes": ".byte", "address": ".byte", "text": ".text"},
    # Without a word for "not defined" the branch is taken all the same.
    {**MOS_LINES, **DOTTED_CONDITIONS, "ifdef": ".if {}", "ifndef": f".if {DEFINED_WORDS[0]}"},
    MOS_FORMS,
)  # fmt: skip
# acme takes a name that it does not know yet for an address of two bytes, if it is not told.
ACME = Language(
    "acme", 1, {"bytes": "!byte", "address": "!byte", "text": "!text"},
    {**MOS_LINES, "origin": "            * = {}, overlay", "ifdef": "!ifdef {} {{",
     "ifndef": "!ifndef {} {{", "if": "!if {} {{", "else": "}} else {{", "endif": "}}",
     "end": "!eof"},
    MOS_FORMS, operators={"^": " XOR "}, sizes={"direct": "+1", "direct x": "+1"},
)  # fmt: skip
# dasm reports such a name as too large for a byte, so it has two. In its operands parentheses stand
# for indirection, and after some operators % for a remainder, so that binary numbers are octal ones
# of the same length.
DASM = Language(
    "dasm", 1, {"bytes": "dc.b", "address": "dc.b", "text": "dc.b"},
    {**MOS_LINES, "title": " processor 6502 ; {}", "origin": "            org     {}",
     "ifdef": " ifconst {}", "ifndef": " ifnconst {}", "if": " if {}", "else": " else",
     "endif": " endif", "end": " end"},
    MOS_FORMS, sizes={"direct": ".w"}, operators={"(": "[", ")": "]"},
    notations={"binary": "{:09o}".format, "character": lambda number: f"'{chr(number)}"},
)  # fmt: skip
# The GNU assembler can't go back to an address: a block begins at the next page.
GNU = Language(
    "gnu", 2, {"bytes": ".byte", "address": ".2byte", "text": ".ascii"},
    {**DOTTED_CONDITIONS, "origin": "            .p2align 8",
     "constant": "            .equ    {},{}", "define": "            .equ    {},1",
     "ifdef": ".ifdef {}", "ifndef": ".ifndef {}"},
    {"branch": "{}", "immediate": "#{}", "memory": "{}", "direct": "{}", "direct x": "{},x",
     "x": "{},x", "y": "{},y", "sp": "{},x", "a": "0,{}", "step": "{},x", "auto": "1,{}"},
    label="{}:", operators={"{": "(", "}": ")"},
    notations={"hex": "0x{:02X}".format, "binary": "0b{:08b}".format, "low": "%lo({})".format},
)  # fmt: skip
