"""The options that tests share: which program is run, and what prints its words."""

import pathlib
import sys

import program_words
import pytest


def pytest_addoption(parser):
    parser.addoption(
        "--program", type=pathlib.Path, required=True, help="the assembler under test"
    )
    parser.addoption("--topic", help="run the golden cases of one topic only")
    parser.addoption("--all", action="store_true", help="inject every fault, compare every build")
    parser.addoption("--node", action="store_true", help="the assembler is the one under node")
    parser.addoption("--every", type=int, default=1, help="of many cases, one in so many")
    parser.addoption("--words", type=pathlib.Path, help="the built tools/program_words.cpp")


def pytest_configure(config):
    # Tests change the working directory of the program, not their own; an absolute path suits both.
    config.option.program = str(config.option.program.resolve())
    program_words.tool = config.option.words and config.option.words.resolve()


def pytest_collection_modifyitems(config, items):
    if config.option.node:
        sys.path.append(str(pathlib.Path(__file__).with_name("web")))
        import differences

        differences.mark(items)
        items[:] = items[:: config.option.every]


@pytest.fixture(scope="session")
def program(request):
    return request.config.getoption("--program")
