"""Settings: from the client, in three ways, and from zirpa.json, which all commands read."""

import json
import pathlib

import pytest
import running
from client import URI, Client

TESTED = "#ifdef FAST\n\tLDXA\n#endif\n"
ROOT = pathlib.Path(__file__).resolve().parents[2]


def codes(diagnostics):
    return [each["code"] for each in diagnostics if "code" in each]


def test_names_are_defined_when_the_server_begins(server):
    server.start(options={"define": ["FAST"]})
    server.open(TESTED)
    assert codes(server.diagnostics()) == ["unknown-instruction"]


def test_settings_change(editor):
    editor.open(TESTED)
    assert codes(editor.diagnostics()) == []
    editor.notice("workspace/didChangeConfiguration", settings={"zirpa": {"define": ["FAST"]}})
    assert codes(editor.diagnostics()) == ["unknown-instruction"]
    editor.notice("workspace/didChangeConfiguration", settings={"zirpa": {}})
    assert codes(editor.diagnostics()) == []


def test_settings_are_asked_for(server):
    server.start({"workspace": {"configuration": True}})
    server.open(TESTED)
    server.diagnostics()
    (question,) = [each for each in server.asked if each["method"] == "workspace/configuration"]
    assert question["params"] == {"items": [{"section": "zirpa"}]}
    server.write({"jsonrpc": "2.0", "id": question["id"], "result": [{"define": ["FAST"]}]})
    assert codes(server.diagnostics()) == ["unknown-instruction"]


def test_answers_that_are_none_change_nothing(server):
    server.start({"workspace": {"configuration": True}}, options={"define": ["FAST"]})
    for result in (None, [], [None], [7], {}):
        server.write({"jsonrpc": "2.0", "id": 1, "result": result})
    server.write({"jsonrpc": "2.0", "id": 1, "error": {"code": 1, "message": "no"}})
    server.open(TESTED)
    assert codes(server.diagnostics()) == ["unknown-instruction"]


def test_changes_are_watched_where_the_client_can(server):
    dynamic = {"dynamicRegistration": True}
    server.start(
        {"workspace": {"didChangeConfiguration": dynamic, "didChangeWatchedFiles": dynamic}}
    )
    server.result("workspace/symbol", query="")
    (question,) = server.asked
    methods = {each["method"] for each in question["params"]["registrations"]}
    assert methods == {"workspace/didChangeConfiguration", "workspace/didChangeWatchedFiles"}


@pytest.mark.parametrize(
    "wrong, text",
    [
        ({"define": "FAST"}, "define is no list"),
        ({"define": [7]}, "define has something that is no text"),
        ({"compatibility": ["nocaes"]}, "nocaes is none of nocase, nopure, nonative"),
        ({"allow": ["unlike-d"]}, "no diagnostic is called unlike-d: did you mean unlike-c?"),
        ({"strict": 1}, "strict is neither true nor false"),
    ],
)
def test_wrong_settings_are_told_and_change_nothing(wrong, text, server):
    server.start(options={"define": ["FAST"]})
    server.notice("workspace/didChangeConfiguration", settings={"zirpa": wrong})
    assert text in server.notification("window/showMessage")["message"]
    server.open(TESTED)
    assert codes(server.diagnostics()) == ["unknown-instruction"]


def test_warnings_are_chosen(server):
    server.start(options={"allow": ["bytes-before-org"]})
    server.open("\tNOP\n")
    assert server.diagnostics() == []
    server.notice("workspace/didChangeConfiguration", settings={"zirpa": {"deny": ["all"]}})
    assert [each["severity"] for each in server.diagnostics()] == [1]


# ---- zirpa.json ----


def project(directory, **settings):
    (directory / "zirpa.json").write_text(json.dumps(settings))
    (directory / "prog.szirpa").write_text(TESTED)
    return (directory / "prog.szirpa").as_uri()


def test_the_file_beside_a_source_is_read(editor, tmp_path):
    editor.open(TESTED, project(tmp_path, define=["FAST"]))
    assert codes(editor.diagnostics()) == ["unknown-instruction"]


def test_names_in_the_address_of_a_source_may_be_escaped(editor, tmp_path):
    directory = tmp_path / "a b\u00e4"
    directory.mkdir()
    editor.open(TESTED, project(directory, define=["FAST"]))
    assert codes(editor.diagnostics()) == ["unknown-instruction"]


@pytest.mark.parametrize("event", ["save", "watch"])
def test_the_file_is_read_again(event, editor, tmp_path):
    uri = project(tmp_path)
    editor.open(TESTED, uri)
    assert codes(editor.diagnostics()) == []
    project(tmp_path, define=["FAST"])
    if event == "save":
        editor.notice("textDocument/didSave", textDocument={"uri": uri})
    else:
        editor.notice("workspace/didChangeWatchedFiles", changes=[])
    assert codes(editor.diagnostics()) == ["unknown-instruction"]


def test_a_wrong_file_is_told(editor, tmp_path):
    uri = project(tmp_path, defines=["FAST"])
    editor.open(TESTED, uri)
    message = editor.notification("window/showMessage")["message"]
    assert "there is no setting defines: did you mean define?" in message
    assert codes(editor.diagnostics()) == []


def test_other_addresses_have_no_file(editor):
    editor.open(TESTED, "untitled:prog.szirpa")
    assert codes(editor.diagnostics()) == []


@pytest.mark.parametrize("command", ["check", "build", "map"])
def test_all_commands_read_the_file(command, zirpa, tmp_path):
    project(tmp_path, define=["FAST"])
    process = running.run(tmp_path, zirpa, command, "prog.szirpa")
    assert process.returncode == 1
    assert b"[unknown-instruction]" in process.stderr
    process = running.run("/", zirpa, "check", str(tmp_path / "prog.szirpa"))
    assert process.returncode == 1


def test_the_file_and_the_command_line_are_united(zirpa, tmp_path):
    project(tmp_path, allow=["bytes-before-org"])
    (tmp_path / "prog.szirpa").write_text("\tNOP\n")
    assert running.run(tmp_path, zirpa, "check", "--strict", "prog.szirpa").returncode == 0
    project(tmp_path, strict=True)
    (tmp_path / "prog.szirpa").write_text("\tNOP\n")
    assert running.run(tmp_path, zirpa, "check", "prog.szirpa").returncode == 1


@pytest.mark.parametrize(
    "text, reason",
    [
        ("{", b"it is no JSON"),
        ("[]", b"it holds no object"),
        ('{"defines": []}', b"there is no setting defines: did you mean define?"),
        ('{"deny": ["alll"]}', b"deny: no diagnostic is called alll"),
    ],
)
def test_a_wrong_file_fails_the_commands(text, reason, zirpa, tmp_path):
    project(tmp_path)
    (tmp_path / "zirpa.json").write_text(text)
    process = running.run(tmp_path, zirpa, "check", "prog.szirpa")
    assert process.returncode == 2
    assert b"zirpa.json: error: can't be read: " + reason in process.stderr


def test_a_file_that_cannot_be_read_fails_the_commands(zirpa, tmp_path):
    project(tmp_path)
    (tmp_path / "zirpa.json").unlink()
    (tmp_path / "zirpa.json").mkdir()
    assert running.run(tmp_path, zirpa, "check", "prog.szirpa").returncode == 2


def test_the_schema_knows_the_same_settings(zirpa, tmp_path):
    schema = json.loads((ROOT / "zirpa" / "project.schema.json").read_text())
    for name, rule in schema["properties"].items():
        value = {"string": "x", "array": [], "boolean": False}[rule["type"]]
        project(tmp_path, **{name: value})
        (tmp_path / "prog.szirpa").write_text("\tORG\t0\n")
        assert running.run(tmp_path, zirpa, "check", "prog.szirpa").returncode == 0, name
    for word in schema["properties"]["compatibility"]["items"]["enum"]:
        project(tmp_path, compatibility=[word])
        assert running.run(tmp_path, zirpa, "check", "prog.szirpa").returncode != 2


def test_an_unsaved_source_is_one_of_its_directory(zirpa, tmp_path):
    project(tmp_path, define=["FAST"])
    process = running.run(tmp_path, zirpa, "check", "--stdin-name", "new.szirpa", "-",
                          input=TESTED.encode())  # fmt: skip
    assert process.returncode == 1


def test_a_listing_and_a_map_are_shown(editor):
    editor.open("\tORG\t$10\n\tNOP\n")
    listing = editor.result("zirpa/listing", textDocument={"uri": URI})["text"]
    assert "NOP" in listing
    assert editor.result("zirpa/memoryMap", textDocument={"uri": URI})["svg"].startswith("<svg")


def test_two_servers_do_not_know_of_each_other(zirpa, editor):
    other = Client(zirpa)
    other.start(options={"define": ["FAST"]})
    other.open(TESTED)
    editor.open(TESTED)
    assert codes(editor.diagnostics()) == []
    assert codes(other.diagnostics()) == ["unknown-instruction"]
    other.stop()
