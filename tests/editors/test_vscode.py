"""The VS Code extension: its grammar gives every token its scope, and it packs to a .vsix."""

import json
import os
import re
import shutil
import zipfile

import pytest

from reading import assembled_part, is_plain, read_source
from running import need_npm_registry, printed_by, run
from sessions import LISTED, SCRIPTS, SOURCE, check_session
from sources import EDITORS, GOLDEN, ROOT, all_sources, lines_of

EXTENSION = EDITORS / "vscode"
HERE = ROOT / "tests" / "editors"
GRAMMAR = EXTENSION / "syntaxes" / "szirpa.tmLanguage.json"
BUNDLES = [
    *"NOTICES.txt browser.js browserServer.js extension.js hxzirpa.wasm server.js".split()
]
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
    shutil.copytree(ROOT / "build" / "web" / "package", copy / "hxzirpa")
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


# ---- Its code ----


@pytest.fixture(scope="module")
def bundle(extension):
    """The code as it is packed; its types are checked on the way."""
    printed_by("npm", "run", "--silent", "build", cwd=extension, env={**os.environ, **OFFLINE})
    return extension / "dist" / "extension.js"


def test_types_are_checked(extension, bundle):
    source = extension / "src" / "common.ts"
    text = source.read_text()
    assert "ask<{ svg: string }>" in text
    source.write_text(text.replace("ask<{ svg: string }>", "ask<{ png: string }>"))
    process = run(extension, "npm", "run", "--silent", "check")
    source.write_text(text)
    assert b"error TS2339: Property 'svg' does not exist" in process.stdout


@pytest.fixture(scope="module", params=["installed", "own"])
def kind(request):
    """The server: that of the program, or the one that comes with the extension."""
    return request.param


@pytest.fixture(scope="module")
def seen(bundle, zirpa, kind, tmp_path_factory):
    """What a user sees of the extension, in a stand-in for the editor, with a real server."""
    directory = tmp_path_factory.mktemp("session")
    (directory / "prog.szirpa").write_text(SOURCE)
    servers = [zirpa] if kind == "installed" else []
    printed_by("node", SCRIPTS / "extension.js", bundle, *servers, cwd=directory)
    found = json.loads((directory / "seen.json").read_text())
    assert "failure" not in found, found["failure"]
    return found


def test_a_session(seen):
    check_session(seen)
    assert seen["hints"] == ["= 5 ($5)", "10: F0 05"]


def test_who_has_named_a_program_is_told_that_it_is_not_there(seen, kind):
    if kind == "installed":
        assert seen["messages"] == []
    else:
        named, *_ = seen["messages"]
        assert named.startswith("no-such-program can't be started")
        assert sum("no-such-program" in text for text in seen["messages"]) == 1


def test_the_listing_stands_beside_its_source(seen):
    assert any(LISTED.search(line) for line in seen["listing"])
    assert seen["listingName"].endswith("/prog.lst")
    beside = -2
    assert seen["column"] == beside


def test_the_map_is_a_picture_without_scripts(seen):
    assert "<title>Memory map of prog.szirpa</title>" in seen["map"]
    assert "default-src 'none'" in seen["map"]
    assert "<script" not in seen["map"]


def test_assembling_writes_beside_the_source(seen, kind):
    assert seen["written"] == ["prog.fmem", "prog.lst", "prog.s19", "prog.szirpa"]
    if kind == "own":
        assert "prog.s19, prog.lst, prog.fmem: written" in seen["messages"]


def test_assembling_has_the_settings(seen, kind):
    if kind == "installed":
        assert seen["arguments"] == [
            "build", "--listing", "--define", "FAST", "--allow", "unused-label", "prog.szirpa"
        ]


def test_a_mistake_leaves_no_program(seen, kind):
    if kind == "own":
        assert seen["left"] == ["prog.lst", "prog.szirpa"]
        assert seen["messages"][-1] == "prog.szirpa: errors: 1"


def test_licences_are_listed(bundle):
    notices = (bundle.parent / "NOTICES.txt").read_text()
    found = dict(re.findall(r"^(\S+) [\d.]+ \((MIT|ISC)\)$", notices, re.MULTILINE))
    assert found["vscode-languageclient"] == "MIT"
    assert {"vscode-jsonrpc", "vscode-languageserver-protocol", "minimatch", "semver"} <= set(found)
    # Only the packages that the bundle holds, each with its text.
    assert not {"esbuild", "typescript"} & set(found)
    assert notices.count("ermission") >= len(found)


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
            *(f"extension/dist/{name}" for name in BUNDLES),
            "extension/snippets/szirpa.json",
            "extension/snippets/tasks.json",
            "extension/syntaxes/szirpa.tmLanguage.json",
        }
        assert content.read("extension/syntaxes/szirpa.tmLanguage.json") == GRAMMAR.read_bytes()
