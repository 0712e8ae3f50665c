"""Pictures of editors for docs/editors.md: each is the screen of a real editor in a terminal, as SVG.

    /usr/bin/python3 tests/editors/pictures.py build/zirpa docs/pictures

writes them anew.
"""

import collections
import html
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCENES = ROOT / "tests" / "editors" / "scenes"
ALE = pathlib.Path("/usr/share/vim-ale")
SECONDS = 30

COLUMNS, LINES = 92, 14
CELL, ROW, BASE = 8, 18, 13
FONT = "ui-monospace,Menlo,Consolas,'DejaVu Sans Mono',monospace"
WHITE, BLACK = "#d8d8d8", "#1c1c1c"
# The sixteen colours of a terminal.
COLOURS = (
    "#1c1c1c", "#e06c75", "#98c379", "#e5c07b", "#61afef", "#c678dd", "#56b6c2", "#d8d8d8",
    "#7f848e", "#ff7b86", "#b5e890", "#ffd68a", "#82c4ff", "#dd9af5", "#7ad9e5", "#ffffff",
)  # fmt: skip

SOURCE = """\
; Counts down, and shows each number.
        ORG     $10
start   {word:8}#speed*2
loop    STA     lamps
        DECA
        BNE     loop
done    BRA     done
lamps   RMB     1
speed   EQU     5
"""

# What is typed once the first text is there, and what must be there then.
Scene = collections.namedtuple("Scene", "word command first keys last")

NVIM = ("nvim", "-i", "NONE", "-n", "-u", str(SCENES / "neovim.lua"), "count.szirpa")
VIM = ("vim", "-N", "-i", "NONE", "-n", "-u", str(SCENES / "ale.vim"), "count.szirpa")
EMACS = ("emacs", "-nw", "-q", "-l", str(SCENES / "emacs.el"), "count.szirpa")

FIXED = ("12: E1 19",)
MISTAKE = ("unknown instruction 'LDAA'",)
EDITORS = {
    "neovim-mistake": Scene("LDAA", NVIM, MISTAKE, (), ()),
    "neovim-hover": Scene("LDA", NVIM, FIXED, ("3G", "19|", "K"), ("10 ($A)",)),
    "vim-mistake": Scene("LDAA", VIM, ("E>",), ("3G", "9|"), MISTAKE),
    "emacs-mistake": Scene("LDAA", EMACS, ("[1",), ("M-g", "n"), MISTAKE),
}


# ---- A terminal ----


class Terminal:
    """A screen without a window, of a server of its own."""

    def __init__(self, directory, command, zirpa):
        self.tmux = ("tmux", "-f", "/dev/null", "-S", str(directory / "tmux"))
        environment = {
            "HOME": str(directory), "ZIRPA": str(zirpa), "EDITOR_FILES": str(ROOT / "editors"),
            "ALE": str(ALE), "LC_ALL": "C.UTF-8", "TERM": "xterm-256color", "PATH": os.environ["PATH"],
        }  # fmt: skip
        size = ("-x", str(COLUMNS), "-y", str(LINES))
        subprocess.run(
            [*self.tmux, "new-session", "-d", *size, *command],
            cwd=directory, env=environment, check=True,
        )  # fmt: skip

    def shown(self, *options):
        command = [*self.tmux, "capture-pane", "-p", *options]
        return subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True).stdout

    def wait_for(self, *texts):
        end = time.monotonic() + SECONDS
        while not all(text in self.shown() for text in texts):
            assert time.monotonic() < end, f"waited in vain for {texts}:\n{self.shown()}"
            time.sleep(0.1)

    def settled(self):
        """The screen with its colours, once it has stayed the same for a while."""
        last = None
        while last != (now := self.shown("-e", "-N")):
            last = now
            time.sleep(0.7)
        return now

    def type(self, key):
        subprocess.run([*self.tmux, "send-keys", key], check=True)

    def close(self):
        subprocess.run([*self.tmux, "kill-server"], check=False)


def screen(name, zirpa):
    scene = EDITORS[name]
    with tempfile.TemporaryDirectory() as place:
        directory = pathlib.Path(place)
        (directory / "count.szirpa").write_text(SOURCE.format(word=scene.word))
        terminal = Terminal(directory, scene.command, zirpa)
        try:
            terminal.wait_for(*scene.first)
            for key in scene.keys:
                terminal.type(key)
            terminal.wait_for(*scene.last)
            return terminal.settled()
        finally:
            terminal.close()


# ---- From a screen to a picture ----

Style = collections.namedtuple("Style", "ink paper bold italic underline reverse")
PLAIN = Style(WHITE, BLACK, False, False, False, False)
SWITCHES = {
    1: {"bold": True}, 3: {"italic": True}, 4: {"underline": True}, 7: {"reverse": True},
    22: {"bold": False}, 23: {"italic": False}, 24: {"underline": False}, 27: {"reverse": False},
    39: {"ink": WHITE}, 49: {"paper": BLACK},
}  # fmt: skip
SIXTEEN = ((30, "ink", 0), (40, "paper", 0), (90, "ink", 8), (100, "paper", 8))


def colour_of(number):
    """One of 256: sixteen by name, a cube, and greys."""
    if number < 16:
        return COLOURS[number]
    if number < 232:
        steps = (0, 95, 135, 175, 215, 255)
        red, rest = divmod(number - 16, 36)
        return "#" + "".join(f"{steps[part]:02x}" for part in (red, rest // 6, rest % 6))
    return "#" + f"{8 + 10 * (number - 232):02x}" * 3


def after(style, codes):
    """The style after the numbers of one escape sequence."""
    numbers = [int(code.split(":")[0] or 0) for code in codes.split(";")]
    while numbers:
        number = numbers.pop(0)
        if number == 0:
            style = PLAIN
        elif number in (38, 48):
            field = "ink" if number == 38 else "paper"
            if numbers.pop(0) == 5:
                style = style._replace(**{field: colour_of(numbers.pop(0))})
            else:
                parts = [numbers.pop(0) for _ in range(3)]
                style = style._replace(**{field: "#" + "".join(f"{part:02x}" for part in parts)})
        elif number in SWITCHES:
            style = style._replace(**SWITCHES[number])
        else:
            for first, field, base in SIXTEEN:
                if first <= number < first + 8:
                    style = style._replace(**{field: COLOURS[number - first + base]})
    return style


def runs(line, style):
    """Texts of one style in a line, with their columns; and the style at its end."""
    found = []
    column = 0
    for piece in re.split(r"(\x1b\[[0-9;:]*m)", line):
        if piece.startswith("\x1b"):
            style = after(style, piece[2:-1])
        elif piece:
            found.append((column, piece, style))
            column += len(piece)
    return found, style


def run_svg(row, column, text, style):
    ink, paper = (style.paper, style.ink) if style.reverse else (style.ink, style.paper)
    x, y, width = column * CELL, row * ROW, len(text) * CELL
    parts = []
    if paper != BLACK:
        parts.append(f'<path fill="{paper}" d="M{x} {y}h{width}v{ROW}h-{width}z"/>')
    if text.strip():
        lead = len(text) - len(text.lstrip())
        body = text.strip()
        looks = f' fill="{ink}"' if ink != WHITE else ""
        looks += ' font-weight="bold"' if style.bold else ""
        looks += ' font-style="italic"' if style.italic else ""
        looks += ' text-decoration="underline"' if style.underline else ""
        parts.append(
            f'<text x="{x + lead * CELL}" y="{y + BASE}" textLength="{len(body) * CELL}"{looks}>'
            # Several blanks count as one where they are not of this kind.
            f"{html.escape(body, quote=False).replace('  ', chr(0xA0) * 2)}</text>"
        )
    return parts


def svg_of(text, title):
    width, height = COLUMNS * CELL, LINES * ROW
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" role="img" viewBox="0 0 {width} {height}" '
        f'width="{width}" height="{height}">',
        f"<title>{title}</title>",
        f'<path fill="{BLACK}" d="M0 0h{width}v{height}H0z"/>',
        f'<g font-family="{FONT}" font-size="13" fill="{WHITE}">',
    ]
    style = PLAIN
    for row, line in enumerate(text.split("\n")[:LINES]):
        found, style = runs(line, style)
        for run in found:
            parts += run_svg(row, *run)
    return "\n".join([*parts, "</g>", "</svg>", ""])


def picture(name, zirpa):
    return svg_of(screen(name, zirpa), name.replace("-", ", ").capitalize())


if __name__ == "__main__":
    program, target = (pathlib.Path(word).resolve() for word in sys.argv[1:])
    target.mkdir(exist_ok=True)
    for each in EDITORS:
        (target / f"{each}.svg").write_text(picture(each, program))
