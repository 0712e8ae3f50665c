"""The page in a browser: scenarios/ holds what a user does and sees.

The site is what ./dev web has made. Pictures of it and what was measured are left in build/page. With
PAGE_PICTURES set to a directory, the picture of the README is written there."""

import gzip
import json
import os
import pathlib
import re
import shutil

import pytest
from running import need, need_npm_registry, printed_by

HERE = pathlib.Path(__file__).parent
ROOT = HERE.parents[1]
PAGE = ROOT / "web" / "page"
SITE = ROOT / "build" / "web"
RESULTS = ROOT / "build" / "page"
# Bytes of all files, each compressed as a web server does it.
MOST_COMPRESSED = 600_000
SCENARIO = re.compile(r'^exports\["(.+)"\]', re.MULTILINE)


def names():
    return [
        name
        for path in sorted((HERE / "scenarios").glob("*.js"))
        for name in SCENARIO.findall(path.read_text())
    ]


@pytest.fixture(scope="module")
def seen(tmp_path_factory):
    need("chromium", "chromium")
    need_npm_registry()
    assert (SITE / "index.html").exists(), "./dev web makes the site that is tested here"
    tests = shutil.copytree(
        HERE, tmp_path_factory.mktemp("page") / "web", ignore=shutil.ignore_patterns("node_modules")
    )
    shutil.rmtree(RESULTS, ignore_errors=True)
    RESULTS.mkdir(parents=True)
    printed_by("npm", "ci", "--silent", cwd=tests)
    printed_by("node", "drive.js", SITE, RESULTS, cwd=tests)
    return json.loads((RESULTS / "seen.json").read_text())


@pytest.mark.parametrize("name", names())
def test_page(seen, name):
    assert seen[name] is None, seen[name]


def test_it_has_been_drawn(seen):
    del seen
    picture = (RESULTS / "page.png").read_bytes()
    assert picture.startswith(b"\x89PNG")
    if directory := os.environ.get("PAGE_PICTURES"):
        pathlib.Path(directory, "page.png").write_bytes(picture)


def files_of_the_site():
    """All but the npm package, which is made there, too."""
    return [path for path in SITE.iterdir() if path.is_file() and path.suffix != ".tgz"]


def test_the_site_is_small(seen):
    del seen
    sizes = {path.name: len(gzip.compress(path.read_bytes(), 9)) for path in files_of_the_site()}
    assert sum(sizes.values()) < MOST_COMPRESSED, sizes


def test_everything_is_kept_for_use_without_a_network(seen):
    del seen
    worker = (SITE / "offline.js").read_text()
    for path in files_of_the_site():
        assert path.name == "offline.js" or f'"{path.name}"' in worker, path.name


def test_the_policy_allows_nothing_unsafe_but_webassembly(seen):
    del seen
    for path in SITE.glob("*.html"):
        (policy,) = re.findall(r'Content-Security-Policy" content="([^"]*)"', path.read_text())
        assert policy.startswith("default-src 'none'; "), path.name
        assert "unsafe" not in policy.replace("'wasm-unsafe-eval'", ""), path.name
        assert "http" not in policy and "*" not in policy and "data:" not in policy, path.name


def test_licences_of_all_packages_are_listed(seen):
    del seen
    notices = (SITE / "NOTICES.txt").read_text()
    lock = json.loads((PAGE / "package-lock.json").read_text())["packages"]
    for name in ("@codemirror/view", "@codemirror/state", "@lezer/highlight", "style-mod"):
        assert f"{name} {lock[f'node_modules/{name}']['version']} (MIT)" in notices
    assert "in hxzirpa.wasm" in notices


@pytest.mark.parametrize("directory", [PAGE, HERE])
def test_packages_are_exact_and_name_no_registry(directory):
    package = json.loads((directory / "package.json").read_text())["devDependencies"]
    lock = json.loads((directory / "package-lock.json").read_text())["packages"]
    for name, version in package.items():
        assert lock[f"node_modules/{name}"]["version"] == version
    for name, entry in lock.items():
        assert "resolved" not in entry, name
