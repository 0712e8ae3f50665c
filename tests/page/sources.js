// The program that the README shows with its outputs.
"use strict";

exports.SUM = `; Sum the bytes of a table.
        ORG     $10
START   LDX     #TABLE          ; X walks the table
        CLRA                    ; A gathers the sum
NEXT    ADDA    0,X
        LEAX    1,X
        CMPX    #TABLE+4
        BNE     NEXT
HALT    BRA     HALT
TABLE   FCB     1,2,3,4
`;

exports.SUM_RECORDS = "S1140010901D05C600CC019C2125F821FE0102030493\nS9030010EC\n";

exports.SUM_LISTING = [
  "                        1. ; Sum the bytes of a table.",
  '---- File: "sum.szirpa"',
  "10                      2.         ORG     $10",
  "10 90 1D                3. START   LDX     #TABLE          ; X walks the table",
  "12 05                   4.         CLRA                    ; A gathers the sum",
  "13 C6 00                5. NEXT    ADDA    0,X",
  "15 CC 01                6.         LEAX    1,X",
  "17 9C 21                7.         CMPX    #TABLE+4",
  "19 25 F8                8.         BNE     NEXT",
  "1B 21 FE                9. HALT    BRA     HALT",
  "1D 01 02 03 04         10. TABLE   FCB     1,2,3,4",
];

// So many lines, each of a byte but the first; only 256 of them fit into the memory.
exports.longSource = (lines) => `        ORG     0\n${"        NOP\n".repeat(lines - 1)}`;
