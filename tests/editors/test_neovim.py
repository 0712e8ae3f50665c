"""Neovim with its own client and zirpa's server: what a user does there, and sees."""

from sessions import LISTED, check_session, seen_by
from sources import EDITORS

# As they are installed: the files of Vim serve Neovim too.
PATHS = f"{EDITORS}/vim,{EDITORS}/neovim"
OPTIONS = ("--headless", "-i", "NONE", "-n", "-u", "NORC", "--cmd", f"set runtimepath^={PATHS}")


def neovim(directory, zirpa):
    return seen_by(directory, zirpa, "neovim.lua", "nvim", "neovim", *OPTIONS, "-S")


def test_a_session(tmp_path, zirpa):
    seen = neovim(tmp_path, zirpa)
    check_session(seen)
    assert seen["filetype"] == "szirpa"
    assert seen["told"] == []


def test_hints_stand_after_their_lines(tmp_path, zirpa):
    seen = neovim(tmp_path, zirpa)
    # ORG takes no byte; a value is shown where its text is no number.
    assert seen["hints"] == {
        "2": "  = 5 ($5)  10: F0 05",
        "3": "  = 22 ($16)  12: E1 16",
        "4": "  = 20 ($14)  14: 21 FE",
        "5": "  16: (1)",
    }
    assert seen["hidden_hints"] == []
    assert any(LISTED.search(line) for line in seen["listing"])


def test_without_the_program_there_is_one_message(tmp_path):
    seen = neovim(tmp_path, None)
    assert seen["told"] == ["zirpa: there is no program no-such-program"]
    assert (seen["clients"], seen["filetype"]) == (0, "szirpa")
