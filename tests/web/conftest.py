"""The package as ./dev web has packed it."""

import pathlib

import pytest
from running import need, printed_by

ROOT = pathlib.Path(__file__).resolve().parents[2]
MODULES = ROOT / "build" / "wasm"


@pytest.fixture(scope="session")
def packed():
    (archive,) = (ROOT / "build" / "web").glob("hxzirpa-*.tgz")
    return archive


@pytest.fixture(scope="session")
def installed(packed, tmp_path_factory):
    """A directory that was empty, with the package in it."""
    need("npm", "npm")
    place = tmp_path_factory.mktemp("installed")
    printed_by("npm", "install", "--silent", "--offline", packed, cwd=place)
    return place
