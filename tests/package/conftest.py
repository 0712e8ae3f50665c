"""The Debian package, made once for all tests."""

import pytest
from building import build_directory, run


@pytest.fixture(scope="session")
def package(request, tmp_path_factory):
    directory = tmp_path_factory.mktemp("package")
    config = build_directory(request) / "CPackConfig.cmake"
    run("cpack", "--config", str(config), "-B", str(directory))
    (path,) = directory.glob("*.deb")
    return path
