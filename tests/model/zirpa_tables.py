"""The tables of the model, and its small functions on characters, numbers and paths."""

PROGRAM = b"HXzirpa"
BANNER = b"HXzirpa - ZIRPA Absolute crossassembler, Version 1.3"
NOTICE = b"Free software under the MIT License."

USAGE = (
    BANNER + b"\n" + NOTICE + b"\n\n"
    b"HXzirpa creates a S-record format file named 'file.s19'\n"
    b'from an assembly source file e.g. "file.szirpa"\n'
    b"Usage: HXzirpa [ options ] file\n"
    b'options: -L Create list file "file.lst"\n'
    b"         -w Print warnings\n"
    b"         -S Print symbol table\n"
    b"         -g Generate source level debug information\n"
    b"         -o [FILENAME] Rename output file\n"
    b"         -d [DIRECTORY] Set directory for source (debugger info)\n"
    b"         -D SYMBOL Enter 'SYMBOL' as defined in symbol table\n"
    b"         -I [FILENAME] Include file\n"
    b"         -S1 Force generation of S1-records\n"
    b"         -S2 Force generation of S2-records\n"
    b"         -S3 Force generation of S3-records\n"
    b"compatibility options: -C option\n"
    b"         nocase - Turn case sensivity OFF\n"
    b"         nopure - Turn recognition of 'pure' assembler directives OFF \n"
    b"         notrad - Turn recognition of 'traditional' assembler directives OFF\n"
)

# Symbol flags.
DEFINED, MULTIPLE, EXTERNAL = 0x1, 0x2, 0x4
SETTABLE, UNDEFINED, CONSTANT = 0x10, 0x20, 0x40
CONDITIONAL, FORWARD = 0x400, 0x2000

# Addressing modes, one bit each.
ADR_IMM, ADR_ABS, ADR_SP_OFF, ADR_X_OFF, ADR_A_X = 0x2, 0x4, 0x10, 0x20, 0x40
ADR_X_POSTINC, ADR_X_POSTDEC, ADR_X_PREINC, ADR_X_PREDEC = 0x80, 0x100, 0x200, 0x400
ADR_Y_OFF, ADR_A_Y = 0x800, 0x1000
ADR_Y_POSTINC, ADR_Y_POSTDEC, ADR_Y_PREINC, ADR_Y_PREDEC = 0x2000, 0x4000, 0x8000, 0x10000
WITH_OPERAND_BYTE = 0x836

# Token codes. Codes below 257 are characters; 0 also ends an expression after a bad digit.
TOK_LC, TOK_EQ, TOK_NE, TOK_LE, TOK_GE, TOK_OROR, TOK_ANDAND = 257, 258, 259, 260, 261, 262, 264
TOK_NOT, TOK_COMPL, TOK_XOR, TOK_MINUS, TOK_PLUS, TOK_MUL, TOK_DIV = range(265, 272)
TOK_SHL, TOK_SHR, TOK_AND, TOK_OR, TOK_NUMBER, TOK_NAME = range(272, 278)
TOK_LT, TOK_GT, TOK_REM, TOK_OPEN, TOK_CLOSE = range(284, 289)
TOK_A, TOK_CC, TOK_X, TOK_Y, TOK_SP = 289, 291, 292, 293, 294

REGISTERS = (TOK_A, TOK_CC, TOK_X, TOK_Y, TOK_SP)
OPERAND_ENDING = (TOK_LC, TOK_NUMBER, TOK_NAME, TOK_CLOSE)
BINARY_OPERATORS = (TOK_EQ, TOK_NE, TOK_LE, TOK_GE, TOK_OROR, TOK_ANDAND, TOK_XOR, TOK_PLUS,
                    TOK_MUL, TOK_DIV, TOK_SHL, TOK_SHR, TOK_AND, TOK_OR, TOK_REM)
UNARY_OPERATORS = (TOK_NOT, TOK_COMPL, TOK_MINUS)
TWO_CHARACTER_TOKENS = {b"==": TOK_EQ, b"!=": TOK_NE, b"<=": TOK_LE, b"<<": TOK_SHL,
                        b">=": TOK_GE, b">>": TOK_SHR, b"||": TOK_OROR, b"&&": TOK_ANDAND}
ONE_CHARACTER_TOKENS = {b"!": TOK_NOT, b"<": TOK_LT, b">": TOK_GT, b"|": TOK_OR, b"&": TOK_AND,
                        b"(": TOK_OPEN, b")": TOK_CLOSE, b"*": TOK_MUL, b"+": TOK_PLUS,
                        b"-": TOK_MINUS, b"/": TOK_DIV, b"^": TOK_XOR, b"~": TOK_COMPL}

# States of the syntax check, and what it reports.
ST_START, ST_OPERATOR, ST_OPERAND = 2001, 2004, 2005
MISSING_PAREN, UNEXPECTED_PAREN, OPERAND_EXPECTED, MISSING_OPERATOR = 3000, 3001, 3002, 3003
UNTERMINATED, ILLEGAL_CHARACTER, RESERVED_WORD = 3004, 3005, 3006
SYNTAX_MESSAGES = {
    MISSING_PAREN: b"Missing Parenthesis",
    UNEXPECTED_PAREN: b"Unexpected Parenthesis",
    OPERAND_EXPECTED: b"Operand expected",
    MISSING_OPERATOR: b"Missing operator",
    UNTERMINATED: b"Unterminated expression",
    ILLEGAL_CHARACTER: b"Illegal character",
    RESERVED_WORD: b"Illegal use of reserved word",
}

# mnemonic: (base opcode, accepted modes, coder)
OPTAB = {
    b"ADCA": (0x05, 0x836, 4),
    b"ADDA": (0x06, 0x836, 4),
    b"ANDA": (0x09, 0x836, 4),
    b"ANDCC": (0x01, 0x2, 1),
    b"ASLA": (0x0B, 0x1, 0),
    b"ASRA": (0x0F, 0x1, 0),
    b"ASL": (0x0B, 0x1874, 3),
    b"ASR": (0x0F, 0x1874, 3),
    b"BSR": (0x20, 0x4, 2),
    b"BRA": (0x21, 0x4, 2),
    b"BMI": (0x22, 0x4, 2),
    b"BPL": (0x23, 0x4, 2),
    b"BEQ": (0x24, 0x4, 2),
    b"BNE": (0x25, 0x4, 2),
    b"BVS": (0x26, 0x4, 2),
    b"BVC": (0x27, 0x4, 2),
    b"BCS": (0x28, 0x4, 2),
    b"BLO": (0x28, 0x4, 2),
    b"BCC": (0x29, 0x4, 2),
    b"BHS": (0x29, 0x4, 2),
    b"BHI": (0x2A, 0x4, 2),
    b"BLS": (0x2B, 0x4, 2),
    b"BGT": (0x2C, 0x4, 2),
    b"BGE": (0x2D, 0x4, 2),
    b"BLE": (0x2E, 0x4, 2),
    b"BLT": (0x2F, 0x4, 2),
    b"BITA": (0x08, 0x836, 4),
    b"CLRA": (0x05, 0x1, 0),
    b"CLR": (0x05, 0x1874, 3),
    b"CMPA": (0x07, 0x836, 4),
    b"COMA": (0x0A, 0x1, 0),
    b"COM": (0x0A, 0x1874, 3),
    b"CMPX": (0x0C, 0x16, 4),
    b"CMPY": (0x0D, 0x16, 4),
    b"CMPSP": (0x0E, 0x6, 4),
    b"DECA": (0x08, 0x1, 0),
    b"DEC": (0x08, 0x1874, 3),
    b"DAA": (0xE0, 0x1, 0),
    b"EORA": (0x0B, 0x836, 4),
    b"EXG": (0x00, 0x1, 6),
    b"INCA": (0x07, 0x1, 0),
    b"INC": (0x07, 0x1874, 3),
    b"JMP": (0x03, 0x1864, 3),
    b"JSR": (0x04, 0x1864, 3),
    b"LSLA": (0x0B, 0x1, 0),
    b"LSRA": (0x0C, 0x1, 0),
    b"LSL": (0x0B, 0x1874, 3),
    b"LSR": (0x0C, 0x1874, 3),
    b"LDA": (0xF0, 0x1FFF6, 1),
    b"LDX": (0x00, 0x836, 4),
    b"LDY": (0x01, 0x836, 4),
    b"LDSP": (0x02, 0x836, 4),
    b"LEAX": (0x0C, 0x30, 7),
    b"LEAY": (0x0D, 0x810, 7),
    b"LEASP": (0x0E, 0x830, 4),
    b"NEGA": (0x06, 0x1, 0),
    b"NEG": (0x06, 0x1874, 3),
    b"NOP": (0x00, 0x1, 0),
    b"ORA": (0x0A, 0x836, 4),
    b"ORCC": (0x02, 0x2, 1),
    b"PSHA": (0x10, 0x1, 0),
    b"PSHX": (0x11, 0x1, 0),
    b"PSHY": (0x12, 0x1, 0),
    b"PSHC": (0x13, 0x1, 0),
    b"PSHCC": (0x13, 0x1, 0),
    b"PULA": (0x14, 0x1, 0),
    b"PULX": (0x15, 0x1, 0),
    b"PULY": (0x16, 0x1, 0),
    b"PULC": (0x17, 0x1, 0),
    b"PULCC": (0x17, 0x1, 0),
    b"ROLA": (0x0D, 0x1, 0),
    b"RORA": (0x0E, 0x1, 0),
    b"ROL": (0x0D, 0x1874, 3),
    b"ROR": (0x0E, 0x1874, 3),
    b"RTS": (0x43, 0x1, 0),
    b"RTI": (0x44, 0x1, 0),
    b"SBCA": (0x03, 0x836, 4),
    b"SUBA": (0x04, 0x836, 4),
    b"STA": (0xE0, 0x1FFF4, 1),
    b"STX": (0x00, 0x1874, 3),
    b"STY": (0x01, 0x1874, 3),
    b"STSP": (0x02, 0x1874, 3),
    b"TFR": (0x00, 0x1, 5),
    b"TSTA": (0x09, 0x1, 0),
    b"TST": (0x09, 0x1874, 3),
}

# What each coder ORs into the base opcode, by mode.
OR_VALUES = {
    1: {ADR_IMM: 0, ADR_ABS: 1, ADR_SP_OFF: 2, ADR_X_OFF: 3, ADR_A_X: 4, ADR_X_POSTINC: 5,
        ADR_X_POSTDEC: 6, ADR_X_PREINC: 7, ADR_X_PREDEC: 8, ADR_Y_OFF: 9, ADR_A_Y: 10,
        ADR_Y_POSTINC: 11, ADR_Y_POSTDEC: 12, ADR_Y_PREINC: 13, ADR_Y_PREDEC: 14},
    3: {ADR_ABS: 0x30, ADR_SP_OFF: 0x40, ADR_X_OFF: 0x50, ADR_A_X: 0x60, ADR_Y_OFF: 0x70,
        ADR_A_Y: 0x80},
    4: {ADR_IMM: 0x90, ADR_ABS: 0xA0, ADR_SP_OFF: 0xB0, ADR_X_OFF: 0xC0, ADR_Y_OFF: 0xD0},
    7: {ADR_SP_OFF: 0xD0, ADR_X_OFF: 0xC0, ADR_Y_OFF: 0xC0},
}

TRANSFERS = {(TOK_A, TOK_CC): 0x18, (TOK_CC, TOK_A): 0x19, (TOK_X, TOK_Y): 0x1A,
             (TOK_Y, TOK_X): 0x1B, (TOK_X, TOK_SP): 0x1C, (TOK_SP, TOK_X): 0x1D,
             (TOK_Y, TOK_SP): 0x1E, (TOK_SP, TOK_Y): 0x1F}
EXCHANGES = {(TOK_A, TOK_CC): 0x9F, (TOK_CC, TOK_A): 0x9F, (TOK_X, TOK_Y): 0xAF,
             (TOK_Y, TOK_X): 0xAF, (TOK_X, TOK_SP): 0xBF, (TOK_SP, TOK_X): 0xBF,
             (TOK_Y, TOK_SP): 0xCF, (TOK_SP, TOK_Y): 0xCF}

PSEUDO_ZIRPA = {b"org": 7, b"equ": 8, b"rmb": 16, b"fcb": 11, b"fcs": 20, b"end": 10}
# Quirk (two-hashes): the first entry holds its own hash, so that an expression is tested by "##if".
MACRO_PURE = {b"#if": 44, b"else": 45, b"endif": 46, b"elif": 47, b"define": 49, b"error": 51,
              b"ifdef": 48, b"ifndef": 50}

# Quirk (vertical-tab): \t in a string is a vertical tab.
STRING_ESCAPES = {ord("b"): 8, ord("n"): 10, ord("r"): 13, ord("t"): 11}
STRING_ESCAPES.update({ord("0") + digit: digit for digit in range(10)})

MAX_SYMBOLS = 199 * 200
MAX_NAME = 128
MAX_DIRECTIVE_WORD = 63
MAX_RESERVATION = 1 << 32


# Numbers and characters

def signed(value, bits):
    """The low bits of a value, read as a signed number."""
    value &= (1 << bits) - 1
    return value - (1 << bits) if value >> (bits - 1) else value


def s8(value):
    return signed(value, 8)


def s32(value):
    return signed(value, 32)


def s64(value):
    return signed(value, 64)


def u32(value):
    return value & 0xFFFFFFFF


def divide(left, right):
    """Division that truncates toward zero."""
    quotient = abs(left) // abs(right)
    return s64(-quotient if (left < 0) != (right < 0) else quotient)


def isblanc(c):
    # Characters are signed: bytes of 128 and more lie below blank and end words.
    return s8(c) < 33


def is_letter(c):
    return 65 <= c <= 90 or 97 <= c <= 122


def is_digit(c):
    return 48 <= c <= 57


def is_symbol_char(c):
    return is_letter(c) or is_digit(c) or c == ord("_")


def is_name_char(c):
    return is_symbol_char(c) or c in b"$."


def is_delimiter(c):
    """Whether a character ends a number."""
    return isblanc(c) or c in b"!%&()*+,-./:;<=>[]^{|}~"


def at(text, position):
    """The character at a position; reading past the end of a text yields NUL."""
    return text[position] if position < len(text) else 0


def skipblanc(text, position):
    """Skip every blank and control character, the newline included."""
    while position < len(text) and isblanc(text[position]):
        position += 1
    return position


def skip_spaces_and_tabs(text, position):
    while at(text, position) in (32, 9):
        position += 1
    return position


def word_at(text, position):
    """The characters above blank from a position on."""
    end = position
    while not isblanc(at(text, end)):
        end += 1
    return text[position:end]


def leading_run(text, accepts):
    """The leading characters of a text that a test accepts."""
    end = 0
    while end < len(text) and accepts(text[end]):
        end += 1
    return text[:end]


def without_line_end(text):
    return leading_run(text, lambda c: c not in b"\r\n")


def line_divided(text):
    """Whether a debugger line goes on in the next line."""
    return len(text) >= 2 and text.endswith(b"+\n")


def copyquotedopt(text):
    if text.startswith(b'"'):
        return text[1:].split(b'"')[0]
    return word_at(text, 0)


# Numbers in debugger lines

DIGIT_VALUES = {c: int(chr(c), 16) for c in b"0123456789abcdefABCDEF"}


def ends_number_field(c):
    return s8(c) <= 32 or c == ord(":")


def field_digits(text, base):
    """The value of a field of digits, or None when it holds anything else."""
    value = 0
    for c in text:
        if ends_number_field(c):
            break
        if DIGIT_VALUES.get(c, base) >= base:
            return None
        value = value * base + DIGIT_VALUES[c]
    return u32(value)


def decimal_to_number(text):
    """base_to_number in base 10; None for a fault."""
    if not text:
        return None
    if text.startswith(b"-"):
        value = field_digits(text[1:], 10)
        return None if value is None else u32(-value)
    return field_digits(text, 10)


def ascii_to_number(text):
    """The value of a number that names its own base; None for a fault."""
    if text.startswith(b"-"):
        return decimal_to_number(text)
    if text.startswith(b"0x"):  # "0X" is no prefix here and fails as a decimal number.
        return field_digits(text[2:], 16)
    if text.startswith(b"$"):
        return field_digits(text[1:], 16)
    return field_digits(text, 10) if is_digit(at(text, 0)) else None


# Paths

def FilenameFromPath(path):
    return path[max(path.rfind(b"/"), path.rfind(b"\\")) + 1:]


def RemoveExtension(name):
    dot = name.rfind(b".")
    return name[:dot] if dot > 0 else name


def winfilename(path):
    """Separators as backslashes; the second slash of every pair is dropped."""
    return path.replace(b"\\", b"/").replace(b"//", b"/").replace(b"/", b"\\")


def PathCanonicalizeA(path):
    if not path:
        return b"\\"
    root = b"\\" if path.startswith(b"\\") else b""
    kept = []
    parts = path[len(root):].split(b"\\")
    for index, part in enumerate(parts):
        if part == b"." and index < len(parts) - 1:
            continue
        if part == b".." and (root or index > 0):
            del kept[-1:]
            continue
        kept.append(part)
    return root + b"\\".join(kept)


def makePathAbsoluteUX(cwd, path):
    joined = path if path.startswith(b"/") else cwd + b"/" + path
    return PathCanonicalizeA(winfilename(joined)).replace(b"\\", b"/")
