"""zirpa is built beside HXzirpa, which the option --program names; each test has a server."""

import pathlib

import client
import pytest


@pytest.fixture(scope="session")
def zirpa(program):
    return str(pathlib.Path(program).with_name("zirpa"))


@pytest.fixture
def server(zirpa):
    """A server that has just begun, before initialize."""
    session = client.Client(zirpa)
    yield session
    session.stop()


@pytest.fixture
def editor(server):
    """A server that is initialized."""
    server.start()
    return server
