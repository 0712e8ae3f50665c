"""What the tests of the CMake module share: its tools, and an empty project."""

import shutil

import pytest
from cmake_project import CMakeProject

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
        assert shutil.which(tool), f"these tests need {tool}, of Debian's package {package}"


@pytest.fixture
def project(program, tmp_path):
    return CMakeProject(tmp_path, program)
