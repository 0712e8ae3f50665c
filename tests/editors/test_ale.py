"""Vim with the plugin ALE and zirpa's server: what a user does there, and sees."""

import pathlib

import pytest
from sessions import check_session, need_editor, seen_by

# Where Debian's package has it.
ALE = pathlib.Path("/usr/share/vim-ale")
OPTIONS = ("-N", "-u", "NONE", "-i", "NONE", "-n", "-es", "-S")


def test_a_session(tmp_path, zirpa, monkeypatch):
    need_editor("vim", "vim")
    if not ALE.is_dir():
        pytest.skip("there is no ALE here (Debian's package vim-ale)")
    monkeypatch.setenv("ALE", str(ALE))
    check_session(seen_by(tmp_path, zirpa, "ale.vim", "vim", "vim", *OPTIONS))
