"""Program, Debian package and extension are the same bytes whoever builds them, where and when.

The shipped program is compared with that of a copy of the sources: in another directory, with other
times of the files, in another time zone, a year later.
"""

import os
import pathlib
import shutil

import pytest
from building import ROOT, run
from running import need, need_npm_registry

OLD = 1_000_000_000
LATER = ["faketime", "-f", "+400d"]
ZONE = {"TZ": "Asia/Tokyo"}


def copy_sources(directory, file_time):
    names = run("git", "-C", str(ROOT), "ls-files", "-co", "--exclude-standard", "-z")
    for name in filter(None, names.split("\0")):
        source, target = ROOT / name, directory / name
        if source.is_file():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)
            os.utime(target, (file_time, file_time))
    return directory


def assert_same_bytes(ours, theirs):
    # Without a comparison of their contents, which would fill the screen.
    same = ours.read_bytes() == theirs.read_bytes()
    assert same, f"{ours} and {theirs} differ: diffoscope shows where"


def made(directory, pattern):
    (path,) = (directory / "build").glob(pattern)
    return path


@pytest.fixture(scope="module", name="rebuilt")
def rebuilt_elsewhere(tmp_path_factory):
    need("faketime", "faketime")
    directory = copy_sources(tmp_path_factory.mktemp("another_longer_directory"), OLD)
    run(*LATER, "./dev", "package", cwd=directory, env={**os.environ, **ZONE})
    return directory


def test_program(request, rebuilt):
    program = pathlib.Path(request.config.getoption("--program"))
    assert_same_bytes(program, rebuilt / "build" / "HXzirpa")


def test_debian_package(package, rebuilt):
    assert_same_bytes(package, made(rebuilt, "package/*.deb"))


def test_extension(tmp_path):
    need_npm_registry()
    first = copy_sources(tmp_path / "first", OLD)
    second = copy_sources(tmp_path / "second", OLD + 90_000_000)
    package = {"HXZIRPA_PACKAGE": str(ROOT / "build" / "web" / "package")}
    run("./dev", "vsix", cwd=first, env={**os.environ, **package})
    # The clock has gone on; certificates would not let npm work with a clock that is wrong.
    run("sh", "-c", "umask 077; chmod -R go= .; ./dev vsix", cwd=second,
        env={**os.environ, **package, **ZONE})
    assert_same_bytes(made(first, "*.vsix"), made(second, "*.vsix"))
