"""The VS Code extension: its grammar gives every token its scope, and it packs to a .vsix."""

import json
import os
import re
import shutil
import zipfile

import pytest

from reading import assembled_part, is_plain, read_source
from running import need_npm_registry, printed_by
from sources import EDITORS, GOLDEN, ROOT, all_sources, lines_of

EXTENSION = EDITORS / "vscode"
HERE = ROOT / "tests" / "editors"
GRAMMAR = EXTENSION / "syntaxes" / "szirpa.tmLanguage.json"
# Nothing may be fetched once the packages are there.
OFFLINE = {"npm_config_offline": "true", "https_proxy": "http://127.0.0.1:9"}

ERROR = re.compile(r" \((\d+)\) Error: (.*)")
# What a message says of its line's tokens.
SCOPES_OF_MESSAGES = {
    "Illegal mnemonic": ("illegal.mnemonic", "illegal.conditional"),
    "Illegal label": ("illegal.label", "illegal.conditional"),
    "Illegal decimal digit": ("illegal.number", "illegal.operand"),
    "Illegal hexadecimal digit": ("illegal.number", "illegal.operand"),
    "Illegal binary digit": ("illegal.number", "illegal.operand"),
    "Illegal use of reserved word": ("illegal.reserved-word",),
    "Illegal character": ("illegal.character",),
    "Reached unreacheable point": ("illegal.operator",),
}


@pytest.fixture(scope="module")
def extension(tmp_path_factory):
    """A copy of the extension with the packages that its tools need."""
    copy = tmp_path_factory.mktemp("vscode")
    shutil.copytree(EXTENSION, copy, dirs_exist_ok=True)
    shutil.copy(ROOT / "LICENSE", copy)
    need_npm_registry()
    printed_by("npm", "ci", "--silent", cwd=copy)
    return copy


@pytest.fixture(scope="module")
def tokens(extension):
    """The tokens of all sources, by path."""
    paths = json.dumps([str(path) for path in all_sources()])
    command = ["node", HERE / "tokenize.js", GRAMMAR]
    return json.loads(printed_by(*command, cwd=extension, input=paths, stderr=None))


def test_scopes_are_those_stated(extension):
    stated = sorted((HERE / "scopes").glob("*.szirpa"))
    assert stated
    printed_by("npm", "run", "--silent", "test-grammar", "--", *stated, cwd=extension)


def scopes_at(line_tokens, column):
    return [
        scope
        for start, end, scopes in line_tokens
        if start <= column < end
        for scope in scopes
    ]


def has_scope(scopes, wanted):
    return any(f"{scope}.".startswith(f"{wanted}.") for scope in scopes)


def wrong_tokens(path, line_tokens):
    lines = lines_of(path)
    for number, expected in enumerate(read_source(lines)):
        for column, wanted in expected or []:
            found = scopes_at(line_tokens[number], column)
            if not has_scope(found, wanted):
                yield f"{path.name}:{number + 1}:{column + 1}: {wanted}, not {found}"


def test_first_tokens_of_every_line_are_those_of_a_plain_reading(tokens):
    wrong = [text for path in all_sources() for text in wrong_tokens(path, tokens[str(path)])]
    assert not wrong, "\n".join(wrong)


def test_plain_reading_covers_nearly_all_lines():
    readings = [line for path in all_sources() for line in read_source(lines_of(path))]
    assert sum(line is None for line in readings) < 200
    assert sum(line is not None for line in readings) > 20000


def invalid_scopes(line_tokens):
    return {
        scope.removeprefix("invalid.").removesuffix(".szirpa")
        for _, _, scopes in line_tokens
        for scope in scopes
        if scope.startswith("invalid.")
    }


def messages_of(path):
    """The expected error messages, by line number."""
    found = {}
    for line in lines_of(path.with_suffix(".out")):
        match = ERROR.search(line)
        if match and f"/{path.name} (" in line:
            found.setdefault(int(match[1]), []).append(match[2])
    return found


def is_judged(path):
    """Golden cases with the usual conditional words and no lines that the program divides."""
    arguments = path.with_suffix(".args")
    return (
        path.with_suffix(".out").exists()
        and "nopure" not in (arguments.read_text() if arguments.exists() else "")
        and all(len(line) < 4000 for line in lines_of(path))
    )


def is_told(path):
    """Whether the expected output tells every fault of a source."""
    text = "\n".join(lines_of(path.with_suffix(".out")))
    ended = re.search(r"No errors|error\(s\)", text)
    return ended and not re.search(r"Fatal|Phase error|\(F1010\)", text)


def judged_lines():
    """All plain lines of golden cases: path, line number, text and messages."""
    for path in filter(is_judged, sorted(GOLDEN.glob("*/*.szirpa"))):
        messages = messages_of(path)
        for number, text in enumerate(lines_of(path), 1):
            if is_plain(text):
                yield path, number, text, messages.get(number, [])


def complaint(path, number, text, what):
    return f"{path.name}:{number}: {what}: {text}"


def test_nothing_is_invalid_in_the_examples(tokens):
    for path in sorted((ROOT / "examples").glob("*.szirpa")):
        for number, line_tokens in enumerate(tokens[str(path)], 1):
            assert not invalid_scopes(line_tokens), f"{path.name}:{number}"


def test_what_is_invalid_draws_a_message(tokens):
    assembled = {path: assembled_part(lines_of(path)) for path in all_sources()}
    wrong = []
    for path, number, text, messages in judged_lines():
        found = invalid_scopes(tokens[str(path)][number - 1])
        if found and not messages and number <= assembled[path] and is_told(path):
            wrong.append(complaint(path, number, text, found))
    assert not wrong, "\n".join(wrong)


def test_what_draws_a_message_is_invalid(tokens):
    checked = 0
    wrong = []
    for path, number, text, messages in judged_lines():
        found = invalid_scopes(tokens[str(path)][number - 1])
        for message, scopes in SCOPES_OF_MESSAGES.items():
            if messages and messages[0].startswith(message):
                checked += 1
                if not found.intersection(scopes):
                    wrong.append(complaint(path, number, text, message))
    assert checked > 1000
    assert not wrong, "\n".join(wrong)


def test_everything_valid_has_a_scope(tokens):
    wrong = []
    for path in all_sources():
        for number, text in enumerate(lines_of(path), 1):
            line_tokens = tokens[str(path)][number - 1]
            bare = [text[start:end] for start, end, scopes in line_tokens if not scopes]
            if is_plain(text) and not invalid_scopes(line_tokens) and "".join(bare).strip():
                wrong.append(complaint(path, number, text, bare))
    assert not wrong, "\n".join(wrong)


def test_extension_packs_without_the_network(extension):
    printed_by("npm", "run", "--silent", "pack", cwd=extension, env={**os.environ, **OFFLINE})
    (archive,) = extension.glob("*.vsix")
    with zipfile.ZipFile(archive) as content:
        names = set(content.namelist())
        assert names == {
            "[Content_Types].xml",
            "extension.vsixmanifest",
            "extension/LICENSE.txt",
            "extension/language-configuration.json",
            "extension/package.json",
            "extension/README.md",
            "extension/snippets/szirpa.json",
            "extension/snippets/tasks.json",
            "extension/syntaxes/szirpa.tmLanguage.json",
        }
        assert content.read("extension/syntaxes/szirpa.tmLanguage.json") == GRAMMAR.read_bytes()
