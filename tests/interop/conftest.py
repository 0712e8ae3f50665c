"""What the interoperability tests are run on."""

import functools

import pytest


@pytest.fixture(scope="session")
def outputs(program, tmp_path_factory):
    """The files that a subject's run leaves; every subject is run once for all tests."""

    @functools.cache
    def files_after(subject):
        process, files = subject.run(program, tmp_path_factory.mktemp("run"))
        assert process.returncode == 0, process.stdout
        return files

    return files_after
