"""The base protocol and the life of a server: headers, errors, order, status."""

import json

import pytest
from client import URI, edit, framed

PARSE_ERROR = -32700
INVALID_REQUEST = -32600
METHOD_NOT_FOUND = -32601
INVALID_PARAMS = -32602
NOT_INITIALIZED = -32002
CONTENT_MODIFIED = -32801
CANCELLED = -32800


def code(message):
    return message["error"]["code"]


def test_the_end_that_the_protocol_has_is_success(server):
    server.start()
    assert server.end() == 0


def test_an_exit_without_shutdown_is_a_failure(server):
    server.start()
    server.notice("exit")
    assert server.process.wait(60) == 1


def test_the_end_of_the_input_is_a_failure(server):
    server.start()
    server.process.stdin.close()
    assert server.process.wait(60) == 1


def test_the_end_of_the_input_after_shutdown_is_none(server):
    server.start()
    server.result("shutdown")
    server.process.stdin.close()
    assert server.process.wait(60) == 0


def test_nothing_is_answered_before_initialize(server):
    assert code(server.ask("textDocument/hover")) == NOT_INITIALIZED
    assert code(server.ask("shutdown")) == NOT_INITIALIZED
    server.notice("textDocument/didOpen", textDocument={})
    server.start()


def test_initialize_comes_once(editor):
    assert code(editor.ask("initialize", capabilities={})) == INVALID_REQUEST


def test_nothing_is_answered_after_shutdown(editor):
    editor.result("shutdown")
    assert code(editor.ask("workspace/symbol", query="")) == INVALID_REQUEST


@pytest.mark.parametrize(
    "offered, chosen",
    [(None, "utf-16"), (["utf-16"], "utf-16"), (["utf-32", "utf-16", "utf-8"], "utf-8")],
)
def test_the_encoding_is_negotiated(offered, chosen, server):
    capabilities = {} if offered is None else {"general": {"positionEncodings": offered}}
    assert server.start(capabilities)["capabilities"]["positionEncoding"] == chosen


# ---- Errors ----


@pytest.mark.parametrize(
    "text, error, answered",
    [
        (b"{", PARSE_ERROR, None),
        (b"", PARSE_ERROR, None),
        (b'"\xff"', PARSE_ERROR, None),
        (b"[" * 100_000, PARSE_ERROR, None),
        (b"[]", INVALID_REQUEST, None),
        (b"7", INVALID_REQUEST, None),
        (b'{"jsonrpc":"2.0","id":{},"method":"shutdown"}', INVALID_REQUEST, None),
        (b'{"jsonrpc":"1.0","id":1,"method":"shutdown"}', INVALID_REQUEST, 1),
        (b'{"jsonrpc":"2.0","id":"a"}', INVALID_REQUEST, "a"),
        (b'{"jsonrpc":"2.0","id":2,"method":7}', INVALID_REQUEST, 2),
        (b'{"jsonrpc":"2.0","id":3,"method":"no/such"}', METHOD_NOT_FOUND, 3),
        (b'{"jsonrpc":"2.0","id":4,"method":"$/no/such"}', METHOD_NOT_FOUND, 4),
        (b'{"jsonrpc":"2.0","id":5,"method":"textDocument/hover"}', INVALID_PARAMS, 5),
        (b'{"jsonrpc":"2.0","id":6,"method":"textDocument/hover","params":[]}', INVALID_PARAMS, 6),
    ],
)
def test_what_is_no_message_has_an_error_and_the_server_goes_on(text, error, answered, editor):
    editor.write(text)
    message = editor.read()
    assert (code(message), message["id"]) == (error, answered)
    assert editor.end() == 0


@pytest.mark.parametrize(
    "position",
    [None, 7, {}, {"line": -1, "character": 0}, {"line": 0, "character": "x"}, {"line": 0.5}],
)
def test_wrong_parameters_have_an_error(position, editor):
    editor.open(" NOP\n")
    answer = editor.ask("textDocument/hover", textDocument={"uri": URI}, position=position)
    assert code(answer) == INVALID_PARAMS


def test_a_document_that_is_not_open_has_an_error(editor):
    assert code(editor.ask("textDocument/codeLens", textDocument={"uri": URI})) == INVALID_PARAMS


@pytest.mark.parametrize(
    "garbage",
    [
        b"\r\n",
        b"\n\n\n",
        b"GET / HTTP/1.1\r\nHost: x\r\n\r\n",
        b"Content-Length: -5\r\n\r\n",
        b"Content-Length: 99999999999999999999\r\n\r\n",
        b"Content-Length: five\r\n\r\n",
        b"Content-Length:\r\n\r\n",
        b"\x00\xff\n\n",
        b"x" * 100_000 + b"\n",
    ],
)
def test_garbage_between_messages_is_passed_over(garbage, editor):
    editor.write_bytes(garbage)
    assert editor.end() == 0


@pytest.mark.parametrize(
    "header",
    [
        b"content-length: %d\r\n\r\n",
        b"Content-Type: application/vscode-jsonrpc; charset=utf-8\r\nContent-Length: %d\r\n\r\n",
        b"Content-Length: %d\r\nContent-Type: application/vscode-jsonrpc\r\n\r\n",
        b"CONTENT-LENGTH:%d  \r\n\r\n",
        b"Content-Length: %d\n\n",
    ],
)
def test_headers_have_their_ways(header, editor):
    body = json.dumps({"jsonrpc": "2.0", "id": "x", "method": "shutdown"}).encode()
    editor.write_bytes(header % len(body) + body)
    assert editor.answer("x")["result"] is None


def test_a_message_may_come_byte_by_byte(editor):
    for byte in framed({"jsonrpc": "2.0", "id": "x", "method": "shutdown"}):
        editor.write_bytes(bytes([byte]))
    assert editor.answer("x")["result"] is None


def test_wrong_notifications_are_passed_over(editor):
    editor.notice("textDocument/didChange", textDocument={"uri": URI}, contentChanges=[])
    editor.notice("textDocument/didOpen", textDocument=7)
    editor.notice("no/such")
    editor.notice("$/setTrace", value="off")
    assert editor.end() == 0


# ---- Requests that nobody waits for ----


def test_a_request_for_an_older_text_is_not_answered(editor):
    editor.open(" NOP\n")
    old = editor.request_message("textDocument/codeLens", {"textDocument": {"uri": URI}})
    new = editor.request_message("textDocument/codeLens", {"textDocument": {"uri": URI}})
    editor.write(old, editor.changed(edit(0, 0, 0, 0, " NOP\n")), new)
    assert code(editor.answer(old["id"])) == CONTENT_MODIFIED
    assert editor.answer(new["id"])["result"][0]["command"]["title"] == "2 of 256 bytes used"


def test_a_request_may_be_cancelled(editor):
    editor.open(" NOP\n")
    first = editor.request_message("textDocument/codeLens", {"textDocument": {"uri": URI}})
    second = editor.request_message("textDocument/codeLens", {"textDocument": {"uri": URI}})
    cancel = {"jsonrpc": "2.0", "method": "$/cancelRequest", "params": {"id": second["id"]}}
    editor.write(first, second, cancel)
    assert code(editor.answer(second["id"])) == CANCELLED
    assert editor.answer(first["id"])["result"]


def test_cancelling_what_is_not_known_does_nothing(editor):
    editor.notice("$/cancelRequest", id=77)
    editor.notice("$/cancelRequest")
    assert editor.end() == 0


def test_a_row_of_edits_is_analysed_once(editor):
    editor.open("")
    editor.diagnostics()
    editor.write(*(editor.changed(edit(0, 0, 0, 0, " NOP\n")) for _ in range(100)))
    published = [editor.notification("textDocument/publishDiagnostics")]
    assert editor.end() == 0
    published += [each for each in editor.notices if each["method"].endswith("publishDiagnostics")]
    assert len(published) < 10  # a pipe may hand over the edits in a few pieces
