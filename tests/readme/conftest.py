"""Options of the README's test: which program is run."""


def pytest_addoption(parser):
    parser.addoption("--program", required=True, help="the assembler under test")
