"""The option for the instruction table that the manual's pages are held against."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))


def pytest_addoption(parser):
    parser.addoption("--instruction-table", help="the built tools/instruction_table.cpp")
