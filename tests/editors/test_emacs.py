"""Emacs with Eglot and zirpa's server: what a user does there, and sees."""

import pathlib

import pytest
import running
from sessions import LISTED, check_session, need_editor, seen_by
from sources import EDITORS

MODE = EDITORS / "emacs" / "szirpa-mode.el"
# Where Debian's packages have it.
PACKAGES = pathlib.Path("/usr/share/emacs/site-lisp/elpa")
STRICT = '(setq byte-compile-error-on-warn t byte-compile-dest-file-function (lambda (_) "mode.elc"))'


def test_a_session(tmp_path, zirpa):
    need_editor("emacs", "emacs-nox")
    if not list(PACKAGES.glob("eglot-*")):
        pytest.skip("there is no Eglot here (Debian's package elpa-eglot)")
    seen = seen_by(tmp_path, zirpa, "emacs.el", "emacs", "emacs-nox", "--batch", "-q", "-l")
    check_session(seen)
    assert seen["mode"] == "szirpa-mode"
    assert seen["faces"][:2] == ["font-lock-function-name-face", "font-lock-keyword-face"]
    assert any(LISTED.search(line) for line in seen["listing"])


def test_the_mode_compiles_without_a_warning(tmp_path):
    need_editor("emacs", "emacs-nox")
    options = ("--batch", "-Q", "--eval", STRICT, "-f", "batch-byte-compile")
    running.printed_by("emacs", *options, str(MODE), cwd=tmp_path)
