"""What the tests of the CMake module share: its tools, and an empty project."""

import pytest
from cmake_project import CMakeProject
from running import need

# Tools and the Debian packages that bring them.
TOOLS = {
    "cmake": "cmake",
    "ctest": "cmake",
    "ninja": "ninja-build",
    "objcopy": "binutils",
    "cc": "gcc",
}


@pytest.fixture(scope="session", autouse=True)
def tools():
    for tool, package in TOOLS.items():
        need(tool, package)


@pytest.fixture
def project(program, tmp_path):
    return CMakeProject(tmp_path, program)
