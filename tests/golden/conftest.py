"""The golden tests run once for each case, of all topics or of one."""


def pytest_addoption(parser):
    parser.addoption("--topic", default=None, help="run the cases of one topic only")


def pytest_generate_tests(metafunc):
    if "case" in metafunc.fixturenames:
        from golden_case import find_cases

        cases = find_cases(metafunc.config.getoption("--topic"))
        metafunc.parametrize("case", cases, ids=[case.identifier for case in cases])
