"""Options of the tests of files: which program is run."""


def pytest_addoption(parser):
    parser.addoption("--program", required=True, help="the assembler under test")
