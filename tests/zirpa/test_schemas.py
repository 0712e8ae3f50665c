"""JSON and SARIF keep to their schemas, for all sources of test_formats."""

import pathlib
import shutil
import subprocess

import pytest
import running
from test_formats import reports  # noqa: F401

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCHEMAS = ROOT / "tests" / "zirpa" / "schemas"
SCHEMA = ROOT / "zirpa" / "diagnostics.schema.json"


@pytest.fixture(scope="module")
def tools(tmp_path_factory):
    copy = tmp_path_factory.mktemp("schemas")
    shutil.copytree(SCHEMAS, copy, dirs_exist_ok=True)
    assert shutil.which("npm"), "npm is missing: install Debian's nodejs and npm"
    ping = ["npm", "ping", "--fetch-retries=1", "--fetch-timeout=20000"]
    if subprocess.run(ping, cwd=copy, capture_output=True, check=False).returncode != 0:
        pytest.skip("npm's registry can't be reached, so the validators can't be installed")
    running.printed_by("npm", "ci", "--silent", cwd=copy)
    return copy


def faults(tools, schema, document):
    command = ("node", tools / "validate.js", schema)
    return running.run(tools, *command, input=document).stdout.decode()


def test_json_keeps_to_its_schema(reports, tools):
    assert faults(tools, SCHEMA, reports[1]) == ""


def test_the_schema_refuses_what_is_not_of_it(tools):
    assert "additionalProperties" in faults(tools, SCHEMA, b'{"version":1,"files":[],"more":1}')


def test_sarif_keeps_to_its_schema(reports, tools):
    schema = tools / "node_modules" / "@microsoft" / "sarif-multitool-linux" / "sarif-2.1.0.json"
    assert faults(tools, schema, reports[2]) == ""


PROJECT = ROOT / "zirpa" / "project.schema.json"


def test_settings_keep_to_their_schema(tools):
    settings = (
        b'{"$schema": "x", "define": ["A"], "compatibility": ["nocase"], "include": ["d"],'
        b' "allow": ["unlike-c"], "deny": ["all"], "warn": ["unused-label"], "strict": true}'
    )
    assert faults(tools, PROJECT, settings) == ""


@pytest.mark.parametrize(
    "settings",
    [b"[]", b'{"define": "A"}', b'{"define": [""]}', b'{"compatibility": ["case"]}',
     b'{"strict": 1}', b'{"defines": []}'],
)  # fmt: skip
def test_what_zirpa_refuses_the_schema_refuses_too(settings, tools, zirpa, tmp_path):
    assert faults(tools, PROJECT, settings) != ""
    (tmp_path / "zirpa.json").write_bytes(settings)
    (tmp_path / "prog.szirpa").write_bytes(b"\tORG\t0\n")
    assert running.run(tmp_path, zirpa, "check", "prog.szirpa").returncode == 2
