"""The option for the instruction table that the editors' files are written from."""

import pathlib
import sys

# The second implementation has an instruction table of its own.
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "model"))


def pytest_addoption(parser):
    parser.addoption("--table-program", help="the built tools/instruction_table.cpp")
