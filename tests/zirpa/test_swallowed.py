"""What the assembler swallows after a second phase error is shown, and where the trouble begins."""

import running

# The reservation has no size when addresses are laid out, so all labels move by one byte then.
SOURCE = "\tORG\t0\n\tRMB\tfar\none\ntwo\n\tNOP\nfar\tNOP\n\tLDXA\n\tLDA\t#none\n"


def test_errors_after_phase_errors_are_shown(zirpa, program, tmp_path):
    (tmp_path / "p.szirpa").write_text(SOURCE)
    assert running.run(tmp_path, program, "p.szirpa").stdout.count(b"Error: ") == 1
    lines = running.run(tmp_path, zirpa, "check", "p.szirpa").stderr.decode().splitlines()
    assert [line for line in lines if ": error: " in line] == [
        "p.szirpa:3:1: error: 'one' has moved since addresses were laid out [phase-error]",
        "p.szirpa:7:2: error: unknown instruction 'LDXA' [unknown-instruction]",
        "p.szirpa:8:7: error: 'none' is not defined [undefined-name]",
    ]
    assert "p.szirpa:2: note: this line has another length now than it had then" in lines
