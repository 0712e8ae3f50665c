"""Tokens, expressions and operands of the model."""

from zirpa_tables import *  # noqa: F403


class Operand:
    """One operand: the bit of its addressing mode and its value."""

    def __init__(self):
        self.mode = 0
        self.value = 0


class Expressions:
    """The part of the assembler that reads what stands at Col_Ptr."""

    # Tokens

    def valid_sym(self):
        if not (is_letter(self.char()) or self.char() == ord("_")):
            return 0
        end = self.Col_Ptr
        while end - self.Col_Ptr < MAX_NAME and is_name_char(at(self.text, end)):
            end += 1
        self.yytext = self.text[self.Col_Ptr:end]
        if len(self.yytext) < MAX_NAME and at(self.text, end) >= 0x80:
            return 0
        self.Col_Ptr = end
        return 1

    def gettoken(self, operand_mode):
        self.yytext, self.yyval = b"", 0
        token = self.register_token()
        if token:
            return token
        c = self.char()
        if operand_mode:
            if c == ord("*"):
                return self.take(1, TOK_MUL if self.ctoken in OPERAND_ENDING else TOK_LC)
        else:
            here = self.text[self.Col_Ptr:self.Col_Ptr + 2]
            if here in TWO_CHARACTER_TOKENS:
                return self.take(2, TWO_CHARACTER_TOKENS[here])
            if here[:1] in ONE_CHARACTER_TOKENS:
                return self.take(1, ONE_CHARACTER_TOKENS[here[:1]])
        if c == ord("%"):
            if self.ctoken in OPERAND_ENDING:
                return self.take(1, TOK_REM)
            self.Col_Ptr += 1
            return self.number(2, b"Illegal binary digit")
        if c == ord("'") and self.char(2) == ord("'"):
            self.yyval = s8(self.char(1))
            return self.take(3, TOK_NUMBER)
        if c == ord("$"):
            self.Col_Ptr += 1
            return self.number(16, b"Illegal hexadecimal digit")
        if is_digit(c):
            return self.number(10, b"Illegal decimal digit")
        if self.valid_sym():
            return self.take(0, TOK_NAME)
        return self.take(1, c)

    def take(self, length, token):
        self.Col_Ptr += length
        self.ctoken = token
        return token

    def register_token(self):
        """A register's token; 0 for none."""
        if not is_symbol_char(self.char(1)):
            token = {65: TOK_A, 88: TOK_X, 89: TOK_Y}.get(self.char() & ~0x20, 0)
            if token:
                return self.take(1, token)
        if self.char(1) and not is_symbol_char(self.char(2)):
            word = self.text[self.Col_Ptr:self.Col_Ptr + 2].upper()
            token = {b"SP": TOK_SP, b"CC": TOK_CC}.get(word, 0)
            if token:
                return self.take(2, token)
        return 0

    def number(self, base, message):
        value = 0
        while True:
            c = self.char()
            self.Col_Ptr += 1
            if DIGIT_VALUES.get(c, base) >= base:
                self.Error(message)
                return self.take(0, 0)
            value = value * base + DIGIT_VALUES[c]
            if is_delimiter(self.char()):
                self.yyval = s32(value)
                return self.take(0, TOK_NUMBER)

    def lookahead(self, character):
        if self.char() != ord(character):
            return 0
        self.Col_Ptr += 1
        return 1

    # Expressions

    def p00(self):
        """Check an expression's syntax; its status, 0 when it is well formed."""
        entry = self.Col_Ptr
        status, depth = self.walk_tokens()
        if depth > 0:
            status = MISSING_PAREN
        self.Col_Ptr = entry if status else self.token_start
        self.offset = self.text_column + self.token_start
        return status

    def walk_tokens(self):
        """Walk to the end or to the first fault; the status and the open parentheses."""
        state, depth = ST_START, 0
        while True:
            self.token_start = self.Col_Ptr
            token = self.gettoken(0)
            if token in REGISTERS:
                return RESERVED_WORD, depth
            if token in BINARY_OPERATORS:
                if state != ST_OPERAND:
                    return OPERAND_EXPECTED, depth
                state = ST_OPERATOR
            elif token in (TOK_NUMBER, TOK_NAME):
                if state == ST_OPERAND:
                    return MISSING_OPERATOR, depth
                state = ST_OPERAND
            elif token in UNARY_OPERATORS:
                state = ST_OPERATOR
            elif token == TOK_OPEN:
                depth += 1
                if state == ST_OPERAND:
                    return OPERAND_EXPECTED, depth
                state = ST_OPERATOR
            elif token == TOK_CLOSE:
                depth -= 1
                if depth < 0:
                    return UNEXPECTED_PAREN, depth
                state = ST_OPERAND
            elif token < 257 and not is_delimiter(token):
                self.stopping_character = token
                return ILLEGAL_CHARACTER, depth
            else:
                return 0 if state == ST_OPERAND else UNTERMINATED, depth

    def evaluate(self, operand):
        self.end_of_input = self.in_paren = self.forwardref = 0
        value = 0
        while not self.end_of_input:
            value = self.p0(value, 0, operand)
        return value

    def p0(self, T, depth, operand):
        """One step of the evaluation: a sum S, a multiplier M and the current term T."""
        S, M = 0, 1
        while True:
            token = self.gettoken(0)
            if token < 257:
                self.Col_Ptr -= 1
                self.end_of_input = 1
                return s64(S + M * T)
            if token in (TOK_NUMBER, TOK_NAME):
                T = self.yyval if token == TOK_NUMBER else self.symbol_value()
                # Only an operator that stands directly behind the operand binds it tightly.
                if not (self.char() in b"/*" or self.char() == self.char(1) == ord("%")):
                    return s64(S + M * T)
            elif token == TOK_PLUS:
                S, T = s64(S + M * T), 0
            elif token == TOK_MINUS:
                S, M, T = s64(S + M * T), s64(-M), 0
            elif token == TOK_MUL:
                M, T = s64(M * T), 0
            elif token in (TOK_DIV, TOK_REM):
                right = self.p0(0, depth, operand)
                if right == 0:
                    if token == TOK_DIV:
                        self.Error(b"Integer divide by zero")
                    self.status = -1
                    return S
                quotient = divide(T, right)
                return s64(S + (quotient if token == TOK_DIV else T - quotient * right) * M)
            elif token in BINARY_OPERATORS:
                return s64(S + M * self.combine(token, T, self.p0(0, depth, operand)))
            elif token == TOK_NOT:
                return s64(S + M * int(self.p0(0, depth, operand) == 0))
            elif token == TOK_COMPL:
                return s64(S + M * ~self.p0(0, depth, operand))
            elif token == TOK_OPEN:
                self.in_paren += 1
                if self.in_paren <= depth:
                    return s64(S + M * T)
                value = 0
                while self.in_paren > depth and not self.end_of_input:
                    value = self.p0(value, depth + 1, operand)
                return s64(S + M * value)
            elif token == TOK_CLOSE:
                self.in_paren -= 1
                return s64(S + M * T)
            else:
                self.Error(b"Reached unreacheable point in Parser..P0")
                return S
            if self.status < 0:
                return s64(S + M * T)

    @staticmethod
    def combine(token, left, right):
        if token == TOK_SHL:
            return s64(left << (right & 63))
        if token == TOK_SHR:
            return left >> (right & 63)
        return int({TOK_EQ: left == right, TOK_NE: left != right, TOK_LE: left <= right,
                    TOK_GE: left >= right, TOK_ANDAND: left != 0 and right != 0,
                    TOK_OROR: left != 0 or right != 0, TOK_AND: left & right,
                    TOK_OR: left | right, TOK_XOR: left ^ right}[token])

    def symbol_value(self):
        sp = self.refsym(self.yytext)
        if not self.Pass2:
            if sp.flags & UNDEFINED:
                self.forwardref += 1
        elif sp.flags & UNDEFINED or sp.flags & DEFINED and sp.line > self.listline:
            self.forwardref += 1
            self.errorsp = sp
        return sp.value

    def evalexp(self, text, position, column, check):
        """The value of the expression at a position of a text, 0 for one that is ill formed.

        The column is that of the text's first character in the source line.
        """
        before = self.text, self.Col_Ptr, self.text_column
        self.scan(text, position, column)
        self.errorsp = None
        self.status = self.p00()
        if self.status:
            self.vpError(b"%s, Position[%d]", SYNTAX_MESSAGES[self.status], self.offset)
            self.scan(*before)
            return 0
        self.Col_Ptr = position
        value = self.evaluate(None)
        if check and self.Pass2 and self.forwardref:
            if self.errorsp is None:
                self.Error(b"Undefined Symbol")
            elif self.errorsp.flags & UNDEFINED:
                self.vpError(b"Undefined symbol '%s'", self.errorsp.name)
        self.scan(*before)
        return value

    def ppexpr(self, operand, report):
        entry = self.Col_Ptr
        self.errorsp = None
        self.status = self.p00()
        if self.status:
            if report:
                self.vpError(b"%s, Position[%d]", SYNTAX_MESSAGES[self.status], self.offset)
                return 1
            if self.status != ILLEGAL_CHARACTER or is_symbol_char(self.stopping_character):
                return 1
        self.Col_Ptr = entry
        operand.value = self.evaluate(operand)
        if self.Pass2 and self.errorsp is not None and self.errorsp.flags & UNDEFINED:
            self.vpError(b"Undefined symbol '%s'", self.errorsp.name)
        return 0

    # Operands

    def Parse_Operand(self, operand):
        """0 for a well-formed operand; its caller words the message for any other result."""
        if self.lookahead("#"):
            if self.ppexpr(operand, 1):
                return 1
            operand.mode = ADR_IMM
        elif not self.ppexpr(operand, 0):
            operand.mode = ADR_ABS
            if self.lookahead(","):
                operand.mode = {TOK_X: ADR_X_OFF, TOK_Y: ADR_Y_OFF,
                                TOK_SP: ADR_SP_OFF}.get(self.gettoken(1), 0)
        elif not self.lookahead(","):
            if self.gettoken(1) != TOK_A or not self.lookahead(","):
                return -1
            operand.mode = {TOK_X: ADR_A_X, TOK_Y: ADR_A_Y}.get(self.gettoken(1), 0)
        else:
            operand.mode = self.auto_mode()
        if not operand.mode:
            return 1
        return 0 if isblanc(self.char()) else 1

    def auto_mode(self):
        """The mode behind a comma that begins the operand, or 0."""
        if self.lookahead("-"):
            return {TOK_X: ADR_X_PREDEC, TOK_Y: ADR_Y_PREDEC}.get(self.gettoken(1), 0)
        if self.lookahead("+"):
            return {TOK_X: ADR_X_PREINC, TOK_Y: ADR_Y_PREINC}.get(self.gettoken(1), 0)
        register = self.gettoken(1)
        if register not in (TOK_X, TOK_Y):
            return 0
        if self.lookahead("-"):
            return ADR_X_POSTDEC if register == TOK_X else ADR_Y_POSTDEC
        if self.lookahead("+"):
            return ADR_X_POSTINC if register == TOK_X else ADR_Y_POSTINC
        return 0

    def ParseReglist(self):
        """The two registers of a pair, or None."""
        first = self.gettoken(1)
        if first not in REGISTERS or not self.lookahead(","):
            return None
        second = self.gettoken(1)
        return (first, second) if second in REGISTERS else None
