"""The option that all tests of whole runs share: which program is run."""

import pathlib


def pytest_addoption(parser):
    parser.addoption(
        "--program", type=pathlib.Path, required=True, help="the assembler under test"
    )


def pytest_configure(config):
    # Tests change the working directory of the program, not their own; an absolute path suits both.
    config.option.program = str(config.option.program.resolve())
