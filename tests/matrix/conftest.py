"""Options of the opcode matrix: which program is run."""


def pytest_addoption(parser):
    parser.addoption("--program", required=True, help="the assembler under test")
