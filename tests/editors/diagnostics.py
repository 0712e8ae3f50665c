"""A plain reading of what the program prints and lists: which lines are diagnostics of a place.

The texts around a diagnostic's fields are cut off one after the other; nothing here is a pattern.
"""

import collections

from sources import expected_listings, expected_outputs, lines_of

Diagnostic = collections.namedtuple("Diagnostic", "file line severity message")

# What stands between file, line number and message, by form and severity.
PRINTED = {
    "error": ("", " (", ") Error: "),
    "warning": ("", " (", ") Warning: "),
    "fatal": ("", " (", ")Fatal error: "),
}
LISTED = {
    "error": ('"', '" line ', ", ERROR: "),
    "warning": ('"', '" LINE: ', ",WARNING: "),
    "fatal": ('"', '" (', ") Fatal error: "),
}


def read_as(text, severity, opening, before_line, before_message):
    head, mark, message = text.partition(before_message)
    file, separator, line = head.rpartition(before_line)
    if not mark or not separator or not line.isdecimal() or not file.startswith(opening):
        return None
    return Diagnostic(file.removeprefix(opening), int(line), severity, message)


def read_diagnostic(text, forms):
    for severity, pieces in forms.items():
        found = read_as(text, severity, *pieces)
        if found is not None:
            return found
    return None


def is_printed(text):
    """Printed places are absolute paths."""
    return text.startswith("/")


def expected_lines():
    """All different lines of the expected outputs: text, form and diagnostic or None."""
    found = {}
    for path in expected_outputs():
        for text in lines_of(path):
            forms = PRINTED if is_printed(text) else {}
            found[text] = (text, "printed", read_diagnostic(text, forms))
    for path in expected_listings():
        for text in lines_of(path):
            forms = LISTED if text.startswith('"') else {}
            found[text] = (text, "listed", read_diagnostic(text, forms))
    return list(found.values())
