"""The pictures of docs/editors.md show what the editors show today."""

import html
import re

import pytest
from pictures import ALE, EDITORS, ROOT, picture
from sessions import need_editor

PAGE = ROOT / "docs" / "editors.md"
PICTURES = ROOT / "docs" / "pictures"


def texts(svg):
    """Each text with its place; colours are a matter of the editor's version."""
    found = re.findall(r'<text x="(\d+)" y="(\d+)"[^>]*>([^<]*)</text>', svg)
    return [(int(y), int(x), html.unescape(text)) for x, y, text in found]


@pytest.mark.parametrize("name", EDITORS)
def test_the_picture_is_that_of_today(name, zirpa):
    need_editor("tmux", "tmux")
    editor = EDITORS[name].command[0]
    need_editor(editor, {"nvim": "neovim", "emacs": "emacs-nox"}.get(editor, editor))
    if editor == "vim" and not ALE.is_dir():
        pytest.skip("there is no ALE here (Debian's package vim-ale)")
    stored = (PICTURES / f"{name}.svg").read_text()
    assert texts(picture(name, zirpa)) == texts(stored), (
        "the picture is out of date: tests/editors/pictures.py build/zirpa docs/pictures"
    )


def test_the_page_shows_every_picture():
    page = PAGE.read_text()
    for name in EDITORS:
        assert f"](pictures/{name}.svg)" in page
    assert {path.stem for path in PICTURES.glob("*.svg")} >= set(EDITORS)
