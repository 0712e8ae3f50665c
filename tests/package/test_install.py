"""`cmake --install` puts every file where Debian's tools look for it, and no other file."""

import gzip
import os
import stat

import pytest
from building import ROOT, build_directory, expected_files, run
from running import VERSION

PROJECT = """\
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES NONE)
find_package(HXzirpa {version} REQUIRED)
if(NOT COMMAND add_hxzirpa_program)
  message(FATAL_ERROR "no add_hxzirpa_program")
endif()
file(WRITE ${{CMAKE_BINARY_DIR}}/executable "${{HXZIRPA_EXECUTABLE}}")
"""


def install(request, *options, **environment):
    command = ["cmake", "--install", str(build_directory(request)), *options]
    run(*command, env={**os.environ, **environment})


def files_below(directory):
    return {str(path.relative_to(directory)) for path in directory.rglob("*") if not path.is_dir()}


@pytest.fixture
def prefix(request, tmp_path):
    install(request, "--prefix", str(tmp_path / "prefix"))
    return tmp_path / "prefix"


def test_every_file_is_in_its_place(prefix):
    assert files_below(prefix) == expected_files()


def test_destdir_goes_ahead_of_the_prefix(request, tmp_path):
    install(request, "--prefix", "/usr", DESTDIR=str(tmp_path))
    assert files_below(tmp_path / "usr") == expected_files()


def test_a_part_is_installed_alone(request, tmp_path):
    install(request, "--prefix", str(tmp_path), "--component", "completions")
    assert files_below(tmp_path) == {
        "share/bash-completion/completions/HXzirpa",
        "share/bash-completion/completions/zirpa",
        "share/fish/vendor_completions.d/zirpa.fish",
        "share/zsh/vendor-completions/_zirpa",
        "share/fish/vendor_completions.d/HXzirpa.fish",
        "share/zsh/vendor-completions/_HXzirpa",
    }


def test_everyone_may_read_what_is_installed(prefix):
    for path in prefix.rglob("*"):
        mode = stat.S_IMODE(path.stat().st_mode)
        is_executable = path.is_dir() or path.name in ("HXzirpa", "zirpa") and path.parent.name == "bin"
        assert mode == (0o755 if is_executable else 0o644), path


def test_man_pages_are_the_source_s(prefix):
    for section in ("1", "5"):
        page = prefix / "share" / "man" / f"man{section}" / f"HXzirpa.{section}.gz"
        source = ROOT / "man" / f"HXzirpa.{section}"
        assert gzip.decompress(page.read_bytes()) == source.read_bytes()


@pytest.mark.parametrize("version", [VERSION, "1.0"])
def test_find_package_finds_module_and_program(prefix, tmp_path, version):
    (tmp_path / "user").mkdir()
    (tmp_path / "user" / "CMakeLists.txt").write_text(PROJECT.format(version=version))
    command = ["cmake", "-S", "user", "-B", "user_build", f"-DCMAKE_PREFIX_PATH={prefix}"]
    run(*command, cwd=tmp_path)
    found = (tmp_path / "user_build" / "executable").read_text()
    assert found == str(prefix / "bin" / "HXzirpa")
