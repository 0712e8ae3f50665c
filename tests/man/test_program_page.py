"""HXzirpa.1 holds every option, file and message of the program, and no others."""

import re
import subprocess

import pytest
from man_page import items, page, part, rendered
from program_messages import (
    own_messages,
    pattern_of,
    reported_messages,
    totals,
    unknown_arguments,
)
from program_words import all_options, compatibility_words, value_options, words

OPTION = re.compile(r"-(\w+)( \w+)?")
# Printed behind another message.
SECOND_LINE = "Terminated due to fatal error(s)"


@pytest.fixture(scope="module")
def diagnostics():
    """The texts of the messages on the page."""
    return items(part(1, "DIAGNOSTICS"), 5)


def described_options():
    """The options on the page; an option with a value goes with the value's name."""
    return {item for item in items(part(1, "DESCRIPTION"), 5) if OPTION.fullmatch(item)}


def test_every_option_is_described():
    described = described_options()
    assert {item.partition(" ")[0] for item in described} == all_options()
    assert {item.partition(" ")[0] for item in described if " " in item} == value_options()


def test_synopsis_shows_every_option():
    synopsis = " ".join(part(1, "SYNOPSIS"))
    assert set(re.findall(r"-\w+", synopsis)) == all_options()


def test_compatibility_words_are_described():
    found = set(items(part(1, "DESCRIPTION"), 13))
    assert {word for word in found if re.fullmatch("[a-z]+", word)} == compatibility_words()


def test_every_output_is_described(program, tmp_path):
    (tmp_path / "source.szirpa").write_text(" ORG 0\n NOP\n")
    arguments = [program, *words()["switches"], "source.szirpa"]
    subprocess.run(arguments, cwd=tmp_path, stdout=subprocess.DEVNULL, timeout=60, check=True)
    outputs = {path.name for path in tmp_path.iterdir()} - {"source.szirpa"}
    described = {item for item in items(part(1, "FILES"), 5) if item.startswith("NAME")}
    assert described == {name.replace("source", "NAME") for name in outputs}


def test_exit_status_tells_of_256_errors():
    assert "256" in " ".join(part(1, "EXIT STATUS"))


def test_messages_are_found_in_the_sources():
    assert len(reported_messages()) > 65
    assert len(own_messages()) == 5
    assert SECOND_LINE in totals()
    assert unknown_arguments() == set()


@pytest.mark.parametrize("message", reported_messages() + own_messages())
def test_message_is_described(message, diagnostics):
    assert any(re.fullmatch(pattern_of(message), item) for item in diagnostics)


@pytest.mark.parametrize("text", totals())
def test_total_is_described(text, diagnostics):
    if text == SECOND_LINE:
        assert text in rendered(1)
    else:
        assert any(text in item for item in diagnostics)


def test_no_other_message_is_described():
    """An item of the page that is no message of the program any more."""
    source = page(1).read_text()
    heads = [
        line.removeprefix(".It ")
        for block in re.findall(r"^\.Bl -diag\n(.*?)^\.El$", source, re.DOTALL | re.MULTILINE)
        for line in block.splitlines()
        if line.startswith(".It ")
    ]
    plain = [re.sub(r"\\\(aq", "'", re.sub(r"\\\(dq", '"', head)) for head in heads]
    plain = [head.replace("\\-", "-").replace("\\&", "") for head in plain]
    assert len(plain) > 70
    messages = [pattern_of(message) for message in reported_messages() + own_messages()]
    unknown = [head for head in plain if not any(re.fullmatch(m, head) for m in messages)]
    assert [head for head in unknown if not any(total in head for total in totals())] == []
