"""Expressions of several operators, to which every language gives the same value.

HXzirpa takes operators in the order in which they stand, products first; others have ranks. They
agree where ranks fall from left to right: a sum of products, then shifts, then `&`, then `^`, then
`|`. Only the GNU assembler has another rank for `+` and `-`, so the sum stands between braces,
which are parentheses there and nothing elsewhere. The first `&` makes a byte of any value, also of
one that is wrong since a name is not known yet.
"""

from languages import IMMEDIATE, INDEXED
from large import WORDS, pick

SHIFTS = ("<<", ">>")
MASKS = "&^|"


class Expressions:
    """Draws expressions, worth a byte each, as lists of names, numbers and operators."""

    def __init__(self, rng):
        self.rng = rng

    def draw(self, operators, grouped, atom):
        """One of so many operators, with or without parentheses; atom() draws an operand."""
        group = []
        if grouped:
            inner = self.rng.randint(1, operators - 2)
            group = self.group(inner, atom)
            operators -= inner
        added = self.rng.randint(0, operators - 1)
        shifted = self.rng.randint(0, min(1, operators - added - 1))
        masks = self.rng.choices(MASKS, k=operators - added - shifted - 1)
        signs = [*self.sum_signs(added), *self.rng.sample(SHIFTS, shifted), "&",
                 *sorted(masks, key=MASKS.index)]
        return self.joined(signs, added, group, atom)

    def group(self, operators, atom):
        """A sum, or an expression that is worth a byte and may have another group in it."""
        if self.rng.random() < 0.5:
            inner = self.joined(self.sum_signs(operators), operators, [], atom)
        else:
            inner = self.draw(operators, operators > 3 and self.rng.random() < 0.2, atom)
        return ["(", *inner, ")"]

    def sum_signs(self, count):
        """Products have three factors at most; a quotient is of one operand by one number."""
        signs = ""
        while len(signs) < count:
            signs += self.rng.choice("+-" if signs.endswith(("**", "/")) else
                                     "+-*/" if signs.endswith(("+", "-")) else "+-*")
        return list(signs)

    def joined(self, signs, added, group, atom):
        """Signs with operands between them, of which the group is one."""
        operands = [[atom()], *([self.operand(sign, atom)] for sign in signs)]
        if group:
            operands[self.rng.choice(group_places(signs, "&" in group))] = group
        pieces = operands[0]
        braced = not {"+", "-"}.isdisjoint(signs[:added])
        for i, (sign, operand) in enumerate(zip(signs, operands[1:])):
            if i == added and braced:
                pieces = ["{", *pieces, "}"]
            pieces = [*pieces, sign, *operand]
        return pieces

    def operand(self, sign, atom):
        return self.number(3 if sign in SHIFTS else 9) if sign in ("/", *SHIFTS) else atom()

    def number(self, most):
        notation = self.rng.choice(("decimal", "decimal", "hex", "hex", "binary"))
        return (notation, self.rng.randint(1, most))


def group_places(signs, is_byte):
    """Operands that may be a group: all languages take them for the same."""
    return [0, *(i for i, sign in enumerate(signs, 1)
                 if is_byte and sign in MASKS
                 or sign in "+-" and signs[i] not in "*/")]


class ExpressionLines:
    """Data, operands and constants, each an expression of 5 to 10 operators."""

    # In a hundred.
    FORMS = {"constant": 1, "bytes": 32, "immediate": 45, "direct x": 22}
    # Constants and offsets need their value at once in some of the languages, the others may name
    # what is defined further down.
    LATE_FORMS = ("bytes", "immediate")

    def __init__(self, rng, names, ahead):
        self.rng = rng
        self.expressions = Expressions(rng)
        self.share_ahead = ahead * 100 / sum(self.FORMS[form] for form in self.LATE_FORMS)
        self.ahead = [f"{rng.choice(WORDS)}_{i + 100}" for i in range(names)]
        self.known = []

    def define(self, count):
        """The next of the plain constants."""
        names, self.ahead = self.ahead[:count], self.ahead[count:]
        self.known += names
        return [("constant", name, self.expressions.number(255)) for name in names]

    def line(self, number):
        form = pick(self.rng, self.FORMS)
        value = self.expression(form)
        if form == "constant":
            self.known.append(f"result_{number}")
            return (form, self.known[-1], value)
        if form == "bytes":
            return (form, "", [value])
        row = self.rng.choice(IMMEDIATE if form == "immediate" else INDEXED)
        return ("instruction", "", row, (form, value), "")

    def expression(self, form):
        share_ahead = self.share_ahead if form in self.LATE_FORMS else 0

        def atom():
            if self.rng.random() < 0.5:
                return self.expressions.number(99)
            return self.rng.choice(self.ahead if self.rng.random() < share_ahead else self.known)

        grouped = self.rng.random() < 1 / 3
        value = self.expressions.draw(self.rng.randint(5, 10), grouped, atom)
        # Some of the others would take a parenthesis that comes first for indirection.
        return self.expression(form) if form == "direct x" and "(" in value[:2] else value


def expressions(rng, lines, ahead):
    """Lines of expressions among the constants that they name; a share of these is yet to come."""
    drawn = ExpressionLines(rng, 600, ahead)
    yield ("title", "Expressions as people fear them")
    yield from drawn.define(200)
    for i in range(0, lines, 100):
        yield ("origin", ("page", 0x10))
        if i % (lines // 10) == 0:
            yield from drawn.define(20)
        yield from (drawn.line(i + j) for j in range(100))
    yield from drawn.define(200)
    yield ("end", "")
