"""The option for all builds, and the golden cases' module."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "golden"))


def pytest_addoption(parser):
    parser.addoption("--all", action="store_true", help="every build, not one beside --program")
