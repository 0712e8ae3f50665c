"""The server and a client of the protocol's own library: they understand each other, and each message
has the type that the protocol demands, with no member that it does not know."""

import pathlib
import re
import shutil

import pytest
import running

HERE = pathlib.Path(__file__).resolve().parent / "protocol"
COMPILE = ("node", "node_modules/typescript/bin/tsc", "--strict", "--noEmit", "--skipLibCheck",
           "--module", "commonjs", "--target", "es2020")  # fmt: skip


@pytest.fixture(scope="module")
def tools(tmp_path_factory):
    copy = tmp_path_factory.mktemp("protocol") / "protocol"
    shutil.copytree(HERE, copy)
    running.need_npm_registry()
    running.printed_by("npm", "ci", "--silent", cwd=copy)
    return copy


@pytest.fixture(scope="module")
def messages(tools, zirpa):
    """A module that holds all messages of two sessions."""
    running.printed_by("node", "session.js", zirpa, "messages.ts", cwd=tools)
    return (tools / "messages.ts").read_text(encoding="utf-8")


def faults(tools, module):
    (tools / "checked.ts").write_text(module, encoding="utf-8")
    return running.run(tools, *COMPILE, "checked.ts").stdout.decode()


def test_every_message_has_its_type(tools, messages):
    assert faults(tools, messages) == ""


def test_every_request_has_been_answered(messages):
    answered = set(re.findall(r"typeof protocol\.(\w+)\.type", messages))
    assert len(answered) == 22
    for kind in ("PublishDiagnosticsParams", "RegistrationParams", "ConfigurationParams",
                 "ShowMessageParams"):  # fmt: skip
        assert f"protocol.{kind} = " in messages


@pytest.mark.parametrize(
    "right, wrong",
    [
        ('"kind": "markdown"', '"kind": "html"'),
        ('"severity": 1', '"severity": 7'),
        ('"newText":', '"text":'),
        ('"character": ', '"column": '),
        ('"selectionRange":', '"selection":'),
        ('"paddingLeft": true', '"padding": true'),
    ],
)
def test_another_shape_is_noticed(right, wrong, tools, messages):
    assert right in messages
    assert "error TS" in faults(tools, messages.replace(right, wrong, 1))
