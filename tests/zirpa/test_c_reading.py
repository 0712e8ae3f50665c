"""What zirpa says about C is true: the parentheses that it writes give the value that it names."""

import json
import random
import re
import shutil

import running

OPERATORS = ["+", "-", "*", "/", "%", "<<", ">>", "&", "|", "^", "==", "!=", "<=", ">=", "&&", "||"]
EXPRESSIONS = 2000


def expression(generator, depth=0):
    kind = generator.random()
    if depth > 3 or kind < 0.3:
        return str(generator.randrange(1, 20))
    if kind < 0.4:
        return generator.choice("-~!") + expression(generator, depth + 1)
    if kind < 0.5:
        return "(" + expression(generator, depth + 1) + ")"
    return (
        expression(generator, depth + 1)
        + generator.choice(OPERATORS)
        + expression(generator, depth + 1)
    )


def warned(zirpa, directory, expressions):
    """The diagnostics of constants with these values, by line."""
    source = "".join(f"n{number} EQU {text}\n" for number, text in enumerate(expressions))
    (directory / "c.szirpa").write_text(source)
    process = running.run(directory, zirpa, "check", "--format", "json", "c.szirpa")
    diagnostics = json.loads(process.stdout)["files"][0]["diagnostics"]
    return {each["line"]: each for each in diagnostics if each["id"] == "unlike-c"}


def test_the_parentheses_give_the_value_of_c(zirpa, tmp_path):
    generator = random.Random(4)
    expressions = [expression(generator) for _ in range(EXPRESSIONS)]
    first = warned(zirpa, tmp_path, expressions)
    assert len(first) > EXPRESSIONS // 10
    written = [each["hint"].removeprefix("as in C: ") for each in first.values()]
    again = warned(zirpa, tmp_path, written)
    assert not again, [(written[line - 1], each["message"]) for line, each in again.items()][:5]


def test_the_value_of_c_is_what_a_compiler_computes(zirpa, tmp_path):
    assert shutil.which("cc"), "cc is missing: install Debian's gcc"
    generator = random.Random(5)
    expressions = [expression(generator) for _ in range(EXPRESSIONS)]
    named = {
        re.match("'(.*)' is .*, but (-?[0-9]+) ", each["message"]).groups()
        for each in warned(zirpa, tmp_path, expressions).values()
    }
    # Two signs in a row are one operator in C; here they are not.
    long_values = [
        (re.sub("([0-9]+)", r"\1L", text).replace("-", "- "), value)
        for text, value in sorted(named)
    ]
    lines = "".join(f'printf("%ld\\n", (long)({text}));\n' for text, _ in long_values)
    (tmp_path / "c.c").write_text("#include <stdio.h>\nint main(void) {\n" + lines + "}\n")
    running.printed_by("cc", "-w", "-fwrapv", "-o", "c", "c.c", cwd=tmp_path)
    assert running.printed_by(tmp_path / "c").split() == [value for _, value in long_values]
