"""The page in a browser: scenarios/ holds what a user does and sees.

The site is what ./dev web has made. Pictures of it are left beside the results."""

import json
import pathlib
import re
import shutil

import pytest
from running import need, need_npm_registry, printed_by

HERE = pathlib.Path(__file__).parent
ROOT = HERE.parents[1]
SITE = ROOT / "build" / "web"
RESULTS = ROOT / "build" / "page"
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
    tests = shutil.copytree(HERE, tmp_path_factory.mktemp("page") / "web")
    shutil.rmtree(RESULTS, ignore_errors=True)
    RESULTS.mkdir(parents=True)
    printed_by("npm", "ci", "--silent", cwd=tests)
    printed_by("node", "drive.js", SITE, RESULTS, cwd=tests)
    return json.loads((RESULTS / "seen.json").read_text())


@pytest.mark.parametrize("name", names())
def test_page(seen, name):
    assert seen[name] is None, seen[name]
