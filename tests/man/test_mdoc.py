"""The man pages are clean mdoc."""

import pytest
from man_page import mandoc, page

# The pages refer to each other, and mandoc looks for installed pages.
EACH_OTHER = {1: "Xr HXzirpa 5", 5: "Xr HXzirpa 1"}


@pytest.mark.parametrize("section", EACH_OTHER)
def test_mandoc_has_nothing_to_say(section):
    output = mandoc("-T", "lint", str(page(section))).stdout
    missing = "STYLE: referenced manual not found: "
    expected = (missing + EACH_OTHER[section], missing + "Xr zirpa 1")
    unexpected = [line for line in output.splitlines() if not any(text in line for text in expected)]
    assert unexpected == []


@pytest.mark.parametrize("section", EACH_OTHER)
def test_lines_are_short(section):
    assert all(len(line) <= 80 for line in page(section).read_text(encoding="ascii").splitlines())


def test_mandoc_has_nothing_to_say_of_zirpa():
    path = page(1).with_name("zirpa.1")
    output = mandoc("-T", "lint", str(path)).stdout
    others = "STYLE: referenced manual not found: Xr "
    assert [line for line in output.splitlines() if others not in line] == []
    assert all(len(line) <= 80 for line in path.read_text(encoding="ascii").splitlines())
