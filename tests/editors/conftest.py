"""zirpa is built beside HXzirpa, which the option --program names."""

import pathlib

import pytest


@pytest.fixture(scope="session")
def zirpa(program):
    return str(pathlib.Path(program).with_name("zirpa"))
