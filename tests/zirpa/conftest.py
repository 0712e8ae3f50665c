"""zirpa is built beside HXzirpa, which the option --program names."""

import pathlib

import pytest

# Tests that take golden cases one by one.
OF_CASES = ["test_alarms.py", "test_dis.py", "test_golden_build.py"]


def pytest_collection_modifyitems(config, items):
    of_cases = [
        item
        for item in items
        if item.path.name in OF_CASES and {"case", "path"} & set(item.fixturenames)
    ]
    left_out = set(of_cases) - set(of_cases[:: config.option.every])
    items[:] = [item for item in items if item not in left_out]
    config.hook.pytest_deselected(items=list(left_out))


@pytest.fixture(scope="session")
def zirpa(program):
    return str(pathlib.Path(program).with_name("zirpa"))
