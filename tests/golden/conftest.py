"""Options of the golden tests: which program is run."""


def pytest_addoption(parser):
    parser.addoption("--program", required=True, help="the assembler under test")
    parser.addoption("--topic", default=None, help="run the cases of one topic only")


def pytest_generate_tests(metafunc):
    if "case" in metafunc.fixturenames:
        from golden_case import find_cases

        cases = find_cases(metafunc.config.getoption("--topic"))
        metafunc.parametrize("case", cases, ids=[case.identifier for case in cases])
