"""The same input gives the same bytes, whoever built the program and wherever it runs.

Every golden case is run once with --program; each test runs all of them again with one thing
changed and compares standard output, standard error, status and all files.
"""

import concurrent.futures
import os
import shutil

import pytest
import variants
from golden_case import find_cases
from running import printed_by

RUNNERS = 2
CASES = find_cases()
# With these rules i and I are no pair, and a comma separates the fraction.
OTHER_LOCALE = "tr_TR.UTF-8"


def environment(**changes):
    """The caller's environment with no locale but that of the changes."""
    kept = {
        name: value
        for name, value in os.environ.items()
        if name not in ("LANG", "LANGUAGE") and not name.startswith("LC_")
    }
    return kept | {"LC_ALL": "C"} | changes


class Result:
    """Everything that a run leaves behind."""

    def __init__(self, process, files):
        self.parts = files | {
            "standard output": process.stdout,
            "standard error": process.stderr,
            "status": str(process.returncode).encode(),
        }

    def moved(self, old, new):
        """The same as if the run had taken place in another directory."""
        for name in self.parts:
            self.parts[name] = self.parts[name].replace(bytes(old), bytes(new))
        return self


def run_case(case, program, base, **options):
    directory = base / case.identifier
    shutil.rmtree(directory, ignore_errors=True)
    directory.mkdir(parents=True)
    process, files = case.run(program, directory, **options)
    result = Result(process, files)
    shutil.rmtree(directory)
    return result


def run_all(program, base, **options):
    with concurrent.futures.ThreadPoolExecutor(RUNNERS) as pool:
        return list(pool.map(lambda case: run_case(case, program, base, **options), CASES))


@pytest.fixture(name="base", scope="session")
def base_directory(tmp_path_factory):
    """Paths are printed, so all runs of a case take place in the same directory below this one."""
    return tmp_path_factory.mktemp("same").resolve()


@pytest.fixture(name="first", scope="session")
def first_results(program, base):
    results = run_all(program, base, env=environment(), umask=0o022)
    assert len(results) > 100
    return results


def assert_same(first, second):
    different = []
    for case, one, two in zip(CASES, first, second, strict=True):
        for part in sorted(one.parts.keys() | two.parts.keys()):
            if one.parts.get(part) != two.parts.get(part):
                different.append(f"{case.identifier}: {part}")
    assert not different, "\n".join(["these differ:", *different])


def pytest_generate_tests(metafunc):
    if "variant" in metafunc.fixturenames:
        chosen = variants.FULL if metafunc.config.getoption("--all") else variants.SHORT
        metafunc.parametrize("variant", chosen, ids=["_".join(variant) for variant in chosen])


def test_two_runs_are_the_same(first, program, base):
    assert_same(first, run_all(program, base, env=environment()))


def test_builds_are_the_same(first, base, variant):
    program = variants.build(*variant)
    # --program is found by a path with directories, and so must this one be.
    assert_same(first, run_all(str(program), base, env=environment()))


@pytest.mark.parametrize("name", ["C.UTF-8", OTHER_LOCALE])
def test_locales_are_the_same(first, program, base, name):
    locale = variants.locale_environment(name)
    assert_same(first, run_all(program, base, env=environment(**locale)))


@pytest.mark.parametrize("umask", [0o000, 0o077], ids=["000", "077"])
def test_umasks_are_the_same(first, program, base, umask):
    assert_same(first, run_all(program, base, env=environment(), umask=umask))


def test_directories_are_the_same_but_for_their_path(first, program, base, tmp_path_factory):
    other = tmp_path_factory.mktemp("another directory, with blanks").resolve()
    results = run_all(program, other, env=environment())
    assert_same(first, [result.moved(other, base) for result in results])


def test_environment_and_time_leave_no_trace(first, program, base):
    changed = environment(TZ="Pacific/Auckland", TMPDIR="/nonexistent", COLUMNS="20")
    assert_same(first, run_all(program, base, env=changed))


def test_locale_has_other_rules():
    """Else the test with this locale would show nothing."""
    locale = variants.locale_environment(OTHER_LOCALE)
    assert printed_by("locale", "decimal_point", env=environment(**locale)).strip() == ","
