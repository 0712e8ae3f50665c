"""Mistakes that everyone makes once: the first line says what is wrong, and the caret stands there."""

import pytest
import running

# What is written; where it is wrong (line, column); how the first message begins; what helps.
MISTAKES = {
    "a misspelt word": (" ORG 0\n LAD #5\n", (2, 2), "unknown instruction 'LAD'", "did you mean LDA?"),
    "an unknown register": (" ORG 0\n LDB #5\n", (2, 2), "unknown instruction 'LDB'", "LDA"),
    "no ORG": (" LDA #5\n", (1, 2), "bytes above the first ORG", "write ORG above this line"),
    "a far branch": (" ORG 0\nl NOP\n RMB 150\n BEQ l\n", (4, 6), "-153 (-$99) is out of reach", "JMP"),
    "no closing quote": (' ORG 0\n FCS "abc\n', (2, 6), "the text is not closed", "a '\"' is missing"),
    "single quotes": (" ORG 0\n FCS 'abc'\n", (2, 6), "FCS needs a text in double quotes", ""),
    "a byte-order mark": ("\ufeffstart LDA #5\n", (1, 1), "the source begins with a byte-order mark", "UTF-8"),
    "no blank ahead": (" ORG 0\nLDA #5\n", (2, 1), "'LDA' begins the line", "needs a blank before it"),
    "a blank in an operand": (" ORG 0\n LDA 5, X\n", (2, 6), "'5,' is no operand of LDA", "a blank ends"),
    "a blank in a list": (" ORG 0\n FCB 1, 2\n", (2, 8), "a value is missing here", "a blank ends"),
    "a number of C": (" ORG 0\n LDA #0x10\n", (2, 7), "'x' is no decimal digit", "begins with $"),
    "a number with H": (" ORG 0\n LDA #10H\n", (2, 7), "'H' is no decimal digit", "begins with $"),
    "another case": (" ORG 0\n BRA Start\nstart NOP\n", (2, 6), "'Start' is not defined", "start?"),
    "a large value": (" ORG 0\n LDA #256\n", (2, 7), "256 ($100) does not fit into a byte", ""),
    "a word of others": (" ORG 0\n MOV A,5\n", (2, 2), "unknown instruction 'MOV'", "LDA"),
    "a value to store": (" ORG 0\n STA #5\n", (2, 6), "STA does not take '#5'", "it takes n "),
    "one hash": (" ORG 0\n#if 1\n", (2, 1), "unknown word '#if'", "##if"),
    "two labels alike": (" ORG 0\nl NOP\nl NOP\n", (3, 1), "'l' is defined more than once", ""),
    "a register as a name": (" ORG 0\nX EQU 5\n", (2, 1), "'X' is read as a register", ""),
    "no colon here": (" ORG 0\nl: NOP\n BNE l:\n", (3, 6), "'l:' is no operand of BNE", "the colon"),
    "an equals sign": (" ORG 0\nfive = 5\n", (2, 6), "unknown instruction '='", "EQU"),
    "a comment of C": ("// text\n ORG 0\n", (1, 1), "'//' can't be a label", "begins with ';'"),
    "a comment too near": (" ORG 0\n LDA #5;x\n", (2, 6), "'#5;x' is no operand", "needs a blank"),
    "a dash in a name": (" ORG 0\nmy-label NOP\n", (2, 1), "'my-label' can't be a label", "letters"),
    "too high an address": (" ORG $1000\n NOP\n", (2, 2), "the address $1000 of a byte is above", ""),
    "an open parenthesis": (" ORG 0\n LDA (1+2\n", (2, 6), "'(1+2' is no operand", "is not closed"),
    "a pair that is none": (" ORG 0\n TFR A,X\n", (2, 6), "TFR has no form", "X,Y"),
    "a text among bytes": (' ORG 0\n FCB "abc"\n', (2, 6), "'\"' means nothing", "a text is given by FCS"),
    "a word of C": (' ORG 0\n#include "x"\n', (2, 1), "unknown word '#include'", "a source is one file"),
    "a start address": (" ORG 0\n END $10\n", (2, 6), "this keeps END from ending", "by a label"),
    "an address sign": (" ORG 0\n JMP *\n", (2, 6), "'*' is no operand of JMP", "use a label"),
}


@pytest.mark.parametrize("name", MISTAKES)
def test_the_first_line_says_what_is_wrong(name, zirpa, tmp_path):
    source, (line, column), message, hint = MISTAKES[name]
    (tmp_path / "p.szirpa").write_text(source, encoding="utf-8")
    process = running.run(tmp_path, zirpa, "check", "p.szirpa")
    lines = process.stderr.decode().splitlines()
    assert lines[0].startswith(f"p.szirpa:{line}:{column}: ")
    assert lines[0].partition(": ")[2].partition(": ")[2].startswith(message)
    assert hint in lines[2]
    assert lines[2].index("^") == len("      | ") + column - 1
