"""The messages of the program, read from its sources: here alone, and the only thing that is.

A message's format stands where it is raised, so that whoever looks for a text finds the rule; no
table holds them all that the program could print. Documents and expected outputs are held against
what is found, so that nothing can be added to the program and left out there. A format holds `%s`
and its like for values.
"""

import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[1]
MODULES = ("as", "target", "expr", "symtab", "util")

LITERAL = r'"((?:[^"\\]|\\.)*)"'
# open_conditional hands its text on.
ERROR_CALL = r"\b(?:Error|vpError|fail|open_conditional)\(\s*"
WARNING_CALL = r"\b(?:Warning|vpWarning|ExtendedWarning)\(\s*"
FATAL_CALL = r"\bvpFatal\(\s*"
REPORTER = r"\b(?:Error|vpError|Warning|vpWarning|ExtendedWarning|vpFatal|fail)"
# Parameters by which a text is handed on to a reporter.
HANDED_ON = {"too_deep", "text", "text.c_str()"}
# Functions that choose a text.
TEXT_FUNCTION = re.compile(r"^const char \*(\w+_text)\(.*?^\}", re.DOTALL | re.MULTILINE)
# Faults of expressions are reported with their place.
PLACED_FORMAT = "%s, Position[%d]"
# What is printed without a reporter: texts that begin with the program's name, and totals.
OWN_TEXT = re.compile(r'\{kProgramName,\s*(": [^{}]*)\}')
TOTAL = re.compile(r'\bput\("((?:[^"\\]|\\.)*(?:rror|arning)(?:[^"\\]|\\.)*)"\)')
OVERFLOW = re.compile(r'put\("(\(F1010\)[^"\\]*)')
PLACEHOLDERS = re.compile(r"(?:%[0-9.]*[a-zA-Z])+")


def sources():
    return "\n".join(
        path.read_text() for module in MODULES for path in sorted((ROOT / module).glob("*.cpp"))
    )


def unescaped(literal):
    return literal.replace('\\"', '"').replace("\\n", "\n").strip()


def texts_of(call):
    """The formats that stand in the calls."""
    return {unescaped(text) for text in re.findall(call + LITERAL, sources())}


def chosen_texts(name=r"\w+"):
    """What the functions of that name choose from."""
    return {
        unescaped(text)
        for function in TEXT_FUNCTION.finditer(sources())
        if re.fullmatch(name, function[1])
        for text in re.findall(r"\breturn " + LITERAL, function[0])
    }


def expression_faults():
    return chosen_texts("status_text")


def errors():
    return (texts_of(ERROR_CALL) | chosen_texts()) - {PLACED_FORMAT}


def warnings():
    return texts_of(WARNING_CALL)


def fatal_errors():
    return texts_of(FATAL_CALL)


def reported_messages():
    """The formats of all errors, warnings and fatal errors, those of expressions with their place."""
    placed = {PLACED_FORMAT.replace("%s", text) for text in expression_faults()}
    plain = (errors() | warnings() | fatal_errors()) - expression_faults()
    return sorted(plain | placed)


def unknown_arguments():
    """First arguments of reporters that are neither a text nor known to be one of those above."""
    found = re.findall(REPORTER + r'\(([^"\s][^,;{]*)\)', sources())
    names = {argument for argument in found if not argument.startswith("const char *")}
    return {name for name in names - HANDED_ON if not re.match(r"\w+_text\(", name)}


def own_messages():
    """What the program prints about itself."""
    messages = set()
    for call in OWN_TEXT.findall(sources()):
        pieces = re.findall(LITERAL + r"|([^\s,\"][^,]*)", call)
        messages.add("HXzirpa" + "".join("%s" if word else text for text, word in pieces))
    return sorted(unescaped(message) for message in messages)


def overflow_messages():
    return {unescaped(text) for text in OVERFLOW.findall(sources())}


def messages():
    """The formats of everything that the program reports or prints about itself."""
    everything = errors() | warnings() | fatal_errors() | overflow_messages()
    return sorted(everything | set(own_messages()))


def totals():
    """Pieces of the lines that end a run."""
    return sorted({line for text in TOTAL.findall(sources()) for line in unescaped(text).split("\n")})


def pattern_of(message, value=".+?"):
    """A regular expression for the texts of a format; value is what stands for its values."""
    return value.join(re.escape(piece) for piece in PLACEHOLDERS.split(message))
