"""The npm package, packed and installed from its file: in node, in pages and workers, with TypeScript.

What its README shows is carried out in that directory, too."""

import contextlib
import functools
import http.server
import json
import os
import pathlib
import queue
import shutil
import subprocess
import threading

import pytest
import shown
from conftest import MODULES, ROOT
from running import TIME_LIMIT_SECONDS, VERSION, need, need_npm_registry, printed_by, run

HERE = pathlib.Path(__file__).resolve().parent
USES = HERE / "uses"


def printed_by_use(installed, name):
    shutil.copy(USES / name, installed)
    return printed_by("node", name, cwd=installed)


def test_readme(installed, tmp_path):
    reader = shown.Reader(tmp_path / "nowhere", tmp_path / "reader")
    # What npm says of a user's own settings is of no interest.
    reader.environment["npm_config_loglevel"] = "error"
    shutil.copytree(installed, reader.directory, dirs_exist_ok=True, symlinks=True)
    reader.play(installed / "node_modules" / "hxzirpa" / "README.md")


def test_worker_of_node(installed):
    size = len("S104001005E6\nS9030010EC\n")
    assert printed_by_use(installed, "worker.mjs") == f"source.s19 {size}\n"


def test_contents_are_bytes(installed):
    assert printed_by_use(installed, "bytes.mjs") == "[ 255, 254 ] true\n" * 3


def test_after_a_failure_the_next_call_works(installed):
    assert printed_by_use(installed, "memory.mjs").splitlines() == [
        "out of memory 0 1",
        "Error: assemble has failed 0 2",
        "Error: disassemble has failed 0 3",
        "TypeError: there is no setting listin 0 3",
        "TypeError: a text or bytes are expected 0 3",
    ]


def test_server(installed):
    assert printed_by_use(installed, "server.mjs").splitlines() == [
        "unknown-instruction https://example.org/pages#unknown-instruction",
        "null",
        "the server has ended",
    ]


# ---- TypeScript ----


@pytest.fixture(scope="module")
def typed(installed, tmp_path_factory):
    need_npm_registry()
    place = tmp_path_factory.mktemp("typed")
    for name in ("package.json", "package-lock.json"):
        shutil.copy(HERE / name, place)
    printed_by("npm", "ci", "--silent", cwd=place)
    shutil.copytree(installed / "node_modules" / "hxzirpa", place / "node_modules" / "hxzirpa")
    return place


def complaints_of_tsc(typed, name):
    shutil.copy(USES / name, typed)
    options = "--strict --noEmit --module node16 --target es2022 --lib es2022,dom".split()
    return run(typed, "node_modules/.bin/tsc", *options, name).stdout.decode()


@pytest.mark.parametrize("name", ["typed.mts", "typed.cts"])
def test_types_hold(typed, name):
    assert complaints_of_tsc(typed, name) == ""


def test_types_refuse_what_is_unknown(typed):
    complaint = "'listings' does not exist in type 'AssembleOptions'"
    assert complaint in complaints_of_tsc(typed, "wrong.mts")


# ---- Browsers ----

POLICY = (
    "default-src 'none'; script-src 'self' 'wasm-unsafe-eval'; connect-src 'self'; worker-src 'self'"
)


class Handler(http.server.SimpleHTTPRequestHandler):
    def end_headers(self):
        self.send_header("Content-Security-Policy", self.policy)
        super().end_headers()

    def do_POST(self):
        self.told.put(self.rfile.read(int(self.headers["Content-Length"])).decode())
        self.send_response(204)
        self.end_headers()

    def guess_type(self, path):
        return self.types.get(pathlib.Path(path).suffix, "application/octet-stream")

    def log_message(self, *words):
        del words


@contextlib.contextmanager
def served(place, **members):
    """The address of the directory's pages."""
    handler = functools.partial(type("Served", (Handler,), members), directory=place)
    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        yield f"http://127.0.0.1:{server.server_port}"
        server.shutdown()


@contextlib.contextmanager
def browser(address, profile):
    need("chromium", "chromium")
    command = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", address]
    options = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
    with subprocess.Popen([*command, f"--user-data-dir={profile}"], **options) as process:
        yield
        process.terminate()


def told_by_page(installed, tmp_path, policy=POLICY, wasm_type="application/wasm"):
    """The three texts that the page and its worker have to tell."""
    for name in ("page.html", "page.mjs", "pageWorker.mjs"):
        shutil.copy(USES / name, tmp_path)
    shutil.copytree(installed / "node_modules" / "hxzirpa", tmp_path / "package")
    types = {".html": "text/html", ".mjs": "text/javascript", ".wasm": wasm_type}
    told = queue.Queue()
    with served(tmp_path, policy=policy, types=types, told=told) as address:
        with browser(f"{address}/page.html", tmp_path / "profile"):
            return sorted(told.get(timeout=TIME_LIMIT_SECONDS) for _ in range(3))


@pytest.mark.parametrize("wasm_type", ["application/wasm", "application/octet-stream"])
def test_page_and_worker_with_a_strict_policy(installed, tmp_path, wasm_type):
    found = told_by_page(installed, tmp_path, wasm_type=wasm_type)
    assert found == ["page: 5", "server: true", "worker: 5"]


def test_the_policy_counts(installed, tmp_path):
    found = told_by_page(installed, tmp_path, POLICY.replace(" 'wasm-unsafe-eval'", ""))
    assert all("Content Security Policy" in text for text in found), found


# ---- Packing ----


def test_what_is_packed(installed):
    place = installed / "node_modules" / "hxzirpa"
    assert {path.name for path in place.iterdir()} == {
        *"LICENSE README.md package.json index.mjs index.cjs node.mjs core.mjs program.mjs".split(),
        *"core.d.mts index.d.mts index.d.cts hxzirpa.wasm program.wasm".split(),
    }
    assert json.loads((place / "package.json").read_text())["version"] == f"{VERSION}.0"
    assert (place / "LICENSE").read_bytes() == (ROOT / "LICENSE").read_bytes()


def test_the_same_bytes_wherever_it_is_packed(packed, tmp_path):
    copy = tmp_path / "sources"
    shutil.copytree(ROOT / "web", copy / "web", ignore=shutil.ignore_patterns("page"))
    (copy / "as").mkdir()
    for name in ("as/asOptions.h", "LICENSE"):
        shutil.copyfile(ROOT / name, copy / name)
    for path in copy.rglob("*"):
        os.utime(path, (1_000_000_000, 1_000_000_000))
    command = f"umask 077; web/pack.sh {MODULES} elsewhere"
    printed_by("sh", "-c", command, cwd=copy, env={**os.environ, "TZ": "Asia/Tokyo"})
    (again,) = (copy / "elsewhere").glob("*.tgz")
    same = again.read_bytes() == packed.read_bytes()
    assert same, f"{again} and {packed} differ"
