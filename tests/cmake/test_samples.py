"""The sample projects are built and give the bytes that their sources stand for."""

from expected import intel_hex, s_records, script_of_bytes
from running import BANNER

ORIGIN = 0x10

#              CLRA  STA $F0 COMA BRA show
BLINK = bytes.fromhex("05  E1F0  0A  21FB")
BLINK_LISTING = BANNER + b"""\


File: blink.lst
                        1. ; blink - switch all lamps on and off for ever
---- File: "blink.szirpa"
                        2. 
F0                      3. LAMPS     EQU   $F0           ; where the lamps are
                        4. 
10                      5.           ORG   $10
10 05                   6. start     CLRA                ; off
11 E1 F0                7. show      STA   LAMPS
13 0A                   8.           COMA                ; on becomes off, off becomes on
14 21 FB                9.           BRA   show
                       10. 
16                     11.           END   start
"""

# start, STA $F0, LDX #PAUSE, LEAX -1,X, CMPX #0, BNE wait, COMA, BRA show
PULSES = {
    "pulse_slow": bytes.fromhex("05    E1F0  9064  CCFF  9C00  25FA  0A  21F3"),
    "pulse_fast": bytes.fromhex("05    E1F0  900A  CCFF  9C00  25FA  0A  21F3"),
    "pulse_fast_lit": bytes.fromhex("F0FF  E1F0  900A  CCFF  9C00  25FA  0A  21F3"),
}

# The table, FCB 1,2,3,4, stands behind the instructions.
SUM = bytes.fromhex("901D  05  C600  CC01  9C21  25F8  21FE  01020304")


def test_plain(project):
    project.make(project.copy_sample("plain"))
    assert project.outputs("blink") == {"blink.s19", "blink.fmem", "blink.lst"}
    assert project.output("blink", "blink.s19") == s_records(ORIGIN, BLINK)
    assert project.output("blink", "blink.fmem") == script_of_bytes("blink.fmem", [(ORIGIN, BLINK)])
    assert project.output("blink", "blink.lst") == BLINK_LISTING


def test_plain_is_installed(project, tmp_path):
    project.make(project.copy_sample("plain"))
    process = project.run("cmake", "--install", project.binary, "--prefix", tmp_path / "root")
    assert process.returncode == 0, process.stdout
    installed = tmp_path / "root" / "firmware" / "blink.s19"
    assert installed.read_bytes() == s_records(ORIGIN, BLINK)


def test_variants(project):
    project.make(project.copy_sample("variants"))
    for target, data in PULSES.items():
        assert project.output(target, "pulse.s19") == s_records(ORIGIN, data), target
    assert project.output("pulse_fast_lit", "pulse.bin") == PULSES["pulse_fast_lit"]
    assert project.output("pulse_fast_lit", "pulse.hex") == intel_hex(
        ORIGIN, PULSES["pulse_fast_lit"]
    )


def test_c_array(project):
    project.make(project.copy_sample("carray"))
    assert project.output("sum", "sum.s19") == s_records(ORIGIN, SUM)
    assert project.output("sum", "sum_cout.c") == (
        b"const unsigned char algo[] = {\n"
        b"0x90,0x1D,0x05,0xC6,0x00,0xCC,0x01,0x9C,0x21,0x25,0xF8,0x21,0xFE,0x01,0x02,0x03,\n"
        b"0x04\n"
        b"};\n"
    )
    process = project.run("ctest", "--test-dir", project.binary, "--verbose")
    assert process.returncode == 0, process.stdout
    assert "17 bytes as expected" in process.stdout

    # The C program is linked again when the source changes, and finds what has changed.
    source = (project.source / "sum.szirpa").read_text()
    project.change("sum.szirpa", source.replace("1,2,3,4", "1,2,3,5"))
    process = project.build()
    assert process.returncode == 0, process.stdout
    process = project.run(project.binary / "check")
    assert (process.returncode, process.stdout) == (1, "byte 16 is 05, not 04\n")
