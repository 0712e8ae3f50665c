"""The VS Code extension in VS Code's own editor and extension host, in a page, with zirpa's server.

The page has the extension's code, grammar and settings; only the way to the server is another one. With
EDITOR_PICTURES set to a directory, what it looks like is written there."""

import json
import os
import pathlib
import shutil

import pytest
from running import need_npm_registry, printed_by
from sessions import SOURCE, check_session, need_editor
from sources import EDITORS, ROOT

PAGE = ROOT / "tests" / "editors" / "page"


@pytest.fixture(scope="module")
def built(tmp_path_factory):
    """The pages: with the program's server, and as in a browser, where the extension brings its own."""
    need_editor("chromium", "chromium")
    need_npm_registry()
    place = tmp_path_factory.mktemp("editor")
    package = ROOT / "build" / "web" / "package"
    shutil.copytree(PAGE, place / "page")
    shutil.copytree(EDITORS / "vscode", place / "vscode")
    shutil.copytree(package, place / "vscode" / "hxzirpa")
    (place / "vscode" / "dist").mkdir(exist_ok=True)
    shutil.copy(package / "hxzirpa.wasm", place / "vscode" / "dist")
    (place / "prog.szirpa").write_text(SOURCE)
    printed_by("npm", "ci", "--silent", cwd=place / "page")
    # Under node's optimiser the bundler crashes now and then.
    printed_by("node", "--no-opt", "build.js", cwd=place / "page")
    return place


@pytest.fixture(scope="module", params=["main", "web"])
def script(request):
    return request.param


@pytest.fixture(scope="module")
def results(built, script, zirpa):
    """The directory with what was seen, and two pictures."""
    (built / script).mkdir()
    printed_by("node", "page/drive.js", script, zirpa, "prog.szirpa", script, cwd=built)
    return built / script


@pytest.fixture(scope="module")
def seen(results):
    found = json.loads((results / "seen.json").read_text())
    assert "failure" not in found, found["failure"]
    return found


def test_a_session(seen):
    check_session(seen)
    assert seen["language"] == "szirpa"
    assert seen["hints"] == ["= 5 ($5)", "10: F0 05"]


def test_it_has_been_drawn(seen, results):
    del seen
    mistake, mended = ((results / f"{name}.png").read_bytes() for name in ("mistake", "mended"))
    assert mistake.startswith(b"\x89PNG")
    assert mistake != mended
    if directory := os.environ.get("EDITOR_PICTURES"):
        pathlib.Path(directory, "vscode-mistake.png").write_bytes(mistake)


def test_the_code_is_that_of_the_extension(built):
    texts = {name: (built / "page" / "out" / f"{name}.js").read_text() for name in ("main", "web")}
    mark = "can't be started, so the server that comes with the extension is used"
    assert mark in texts["main"] and mark not in texts["web"]
    assert "zirpa/assemble" in texts["main"] and "zirpa/assemble" in texts["web"]


def test_packages_are_exact_and_name_no_registry():
    package = json.loads((PAGE / "package.json").read_text())["devDependencies"]
    lock = json.loads((PAGE / "package-lock.json").read_text())["packages"]
    for name, version in package.items():
        assert lock[f"node_modules/{name}"]["version"] == version.rpartition("@")[2]
    for name, entry in lock.items():
        assert "resolved" not in entry, name
