"""The place of a test: a directory of its own, with the program to be run there."""

import pytest
from stream_runs import Place


@pytest.fixture(name="place")
def place_of_the_test(program, tmp_path):
    return Place(tmp_path, program)
