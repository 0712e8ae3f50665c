"""A client that talks to `zirpa lsp` over pipes, one message at a time."""

import json
import subprocess
import threading

URI = "file:///project/prog.szirpa"
TIME_LIMIT_SECONDS = 60


def framed(message):
    body = message if isinstance(message, bytes) else json.dumps(message).encode()
    return b"Content-Length: %d\r\n\r\n" % len(body) + body


class Client:
    def __init__(self, zirpa, cwd=None):
        self.process = subprocess.Popen(
            [zirpa, "lsp"], cwd=cwd, stdin=subprocess.PIPE, stdout=subprocess.PIPE
        )
        self.last_id = 0
        self.version = 0
        self.notices = []  # what the server has sent unasked, and not been looked at
        self.asked = []  # requests of the server

    # ---- Messages ----

    def write(self, *messages):
        """Sends messages at once, so that the server sees all of them before it works."""
        self.process.stdin.write(b"".join(framed(each) for each in messages))
        self.process.stdin.flush()

    def write_bytes(self, text):
        self.process.stdin.write(text)
        self.process.stdin.flush()

    def read(self):
        size = None
        while line := self.process.stdout.readline().strip():
            name, _, value = line.partition(b":")
            assert name == b"Content-Length", line
            size = int(value)
        assert size is not None, "the server has ended"
        return json.loads(self.process.stdout.read(size))

    def notice(self, method, **params):
        self.write({"jsonrpc": "2.0", "method": method, "params": params})

    def request_message(self, method, params):
        self.last_id += 1
        return {"jsonrpc": "2.0", "id": self.last_id, "method": method, "params": params}

    def answer(self, wanted):
        """The response to a request; what comes ahead of it is kept."""
        while True:
            message = self.read()
            if "method" not in message and message["id"] == wanted:
                return message
            (self.asked if "id" in message else self.notices).append(message)

    def ask(self, method, **params):
        message = self.request_message(method, params)
        self.write(message)
        return self.answer(message["id"])

    def result(self, method, **params):
        answer = self.ask(method, **params)
        assert "error" not in answer, answer
        return answer["result"]

    def notification(self, method):
        """The next notification of that method."""
        while True:
            for i, message in enumerate(self.notices):
                if message["method"] == method:
                    return self.notices.pop(i)["params"]
            message = self.read()
            (self.asked if "id" in message else self.notices).append(message)

    # ---- The life of a session ----

    def start(self, capabilities=None, options=None, **others):
        params = {"processId": None, "rootUri": None, "capabilities": capabilities or {}, **others}
        if options is not None:
            params["initializationOptions"] = options
        result = self.result("initialize", **params)
        self.notice("initialized")
        return result

    def end(self):
        self.result("shutdown")
        self.notice("exit")
        return self.process.wait(TIME_LIMIT_SECONDS)

    def stop(self):
        """Ends the input, upon which the server ends by itself and its sanitizers have their say."""
        alarm = threading.Timer(TIME_LIMIT_SECONDS, self.process.kill)
        alarm.start()
        self.process.stdin.close()
        self.process.stdout.read()
        self.process.wait()
        alarm.cancel()
        self.process.stdout.close()

    # ---- Documents ----

    def open(self, text, uri=URI):
        self.version += 1
        self.notice("textDocument/didOpen", textDocument={
            "uri": uri, "languageId": "szirpa", "version": self.version, "text": text})

    def changed(self, *changes, uri=URI):
        self.version += 1
        return {"jsonrpc": "2.0", "method": "textDocument/didChange", "params": {
            "textDocument": {"uri": uri, "version": self.version}, "contentChanges": list(changes)}}

    def change(self, *changes, uri=URI):
        self.write(self.changed(*changes, uri=uri))

    def diagnostics(self):
        return self.notification("textDocument/publishDiagnostics")["diagnostics"]

    def at(self, method, line, character, uri=URI, **params):
        return self.result(f"textDocument/{method}", textDocument={"uri": uri},
                           position={"line": line, "character": character}, **params)

    def of(self, method, uri=URI, **params):
        return self.result(f"textDocument/{method}", textDocument={"uri": uri}, **params)


def span(first_line, first, last_line, last):
    return {"start": {"line": first_line, "character": first},
            "end": {"line": last_line, "character": last}}


def edit(first_line, first, last_line, last, text):
    return {"range": span(first_line, first, last_line, last), "text": text}
