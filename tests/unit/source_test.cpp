// Sources that are made of bytes: what is code, what has a name, how data are written.
#include "dis/graph.h"
#include "dis/source.h"
#include "dis/verification.h"

#include <gtest/gtest.h>

namespace {

using dis::Hints;
using dis::Program;

Program program_of(const std::vector<unsigned> &bytes, std::uint32_t base = 0x10) {
    Program program;
    for (const unsigned byte : bytes) {
        EXPECT_TRUE(program.image.set(base++, static_cast<std::uint8_t>(byte)));
    }
    return program;
}

Hints hints_of(const std::string &text) {
    Hints hints;
    EXPECT_TRUE(dis::read_hints(text, hints).empty());
    return hints;
}

// The statements, with single blanks and without ORG and END.
std::string source_of(const Program &program, const std::string &hints = "",
                      const dis::Comments &comments = {}) {
    const std::string source = dis::source_of(dis::list(program, hints_of(hints)), comments);
    EXPECT_EQ(dis::difference(source, program), "");
    return source;
}

TEST(Sources, FollowTheFlow) {
    // BSR 15; JMP 12 is its own end; 14 is not reached; RTS.
    EXPECT_EQ(source_of(program_of({0x20, 0x03, 0x33, 0x12, 0x00, 0x43})), "          ORG   $10\n"
                                                                           "          BSR   L15\n"
                                                                           "L12       JMP   L12\n"
                                                                           "          RMB   1\n"
                                                                           "L15       RTS\n"
                                                                           "          END\n");
}

TEST(Sources, EndAPathWhereARegisterLeads) {
    // JMP A,X
    EXPECT_EQ(source_of(program_of({0x63, 0x05})), "          ORG   $10\n"
                                                   "          JMP   A,X\n"
                                                   "          FCB   $05\n"
                                                   "          END\n");
    EXPECT_EQ(source_of(program_of({0x63, 0x05}), "code $11"), "          ORG   $10\n"
                                                               "          JMP   A,X\n"
                                                               "          CLRA\n"
                                                               "          END\n");
}

TEST(Sources, HaveTablesOfAddresses) {
    EXPECT_EQ(source_of(program_of({0x63, 0x13, 0x14, 0x05, 0x43}), "table $11-$12"),
              "          ORG   $10\n"
              "          JMP   A,X\n"
              "          FCB   L13,L14\n"
              "L13       CLRA\n"
              "L14       RTS\n"
              "          END\n");
}

TEST(Sources, NameWhatIsInsideAnInstructionByItsBeginning) {
    // BRA 13, into LDA #5; its operand byte 05 is CLRA.
    EXPECT_EQ(source_of(program_of({0xF0, 0x05, 0x21, 0xFD})), "          ORG   $10\n"
                                                               "L10       LDA   #5\n"
                                                               "          BRA   L10+1\n"
                                                               "          END\n");
}

TEST(Sources, BranchBeyondBothEnds) {
    // At 02: BEQ 04+80 back, to -7C; 8 bits make 84 of it.
    EXPECT_EQ(source_of(program_of({0x24, 0x80, 0x43}, 2)), "          ORG   $02\n"
                                                            "          BEQ   -124\n"
                                                            "          RTS\n"
                                                            "          END\n");
    // At FB: BRA 105, which is 05 in 8 bits.
    Program program = program_of({0x21, 0x08}, 0xFB);
    EXPECT_TRUE(program.image.set(5, 0x43));
    program.entry = 0xFB;
    EXPECT_EQ(source_of(program), "          ORG   $05\n"
                                  "L05       RTS\n"
                                  "\n"
                                  "          ORG   $FB\n"
                                  "LFB       BRA   L05+256\n"
                                  "          END   LFB\n");
}

TEST(Sources, WriteCharactersTextsAndZeros) {
    Program program = program_of({0xF0, 0x41, 0x99, 0x41, 0x43, // LDA #'A', ANDA #$41, RTS
                                  'H', 'i', '"', '\\', 10, 0, 0x80, 0, 0, 7});
    EXPECT_EQ(source_of(program), "          ORG   $10\n"
                                  "          LDA   #'A'\n"
                                  "          ANDA  #$41\n"
                                  "          RTS\n"
                                  "          FCS   \"Hi\\\"\\\\\\n\\0\"\n"
                                  "          FCB   $80\n"
                                  "          RMB   2\n"
                                  "          FCB   $07\n"
                                  "          END\n");
}

TEST(Sources, NameAddressesOfData) {
    // LDX #15; LDA 16; STA 15; the label at 15 keeps 15 and 16 apart.
    EXPECT_EQ(source_of(program_of({0x90, 0x17, 0xF1, 0x18, 0xE1, 0x40, 0x43, 1, 2}),
                        "label PORT=$40\nlabel unused=$50"),
              "PORT      EQU   $40\n"
              "\n"
              "          ORG   $10\n"
              "          LDX   #L17\n"
              "          LDA   L18\n"
              "          STA   PORT\n"
              "          RTS\n"
              "L17       FCB   $01\n"
              "L18       FCB   $02\n"
              "          END\n");
}

TEST(Sources, HaveEveryNameOnce) {
    // The name L13 is taken by another address.
    EXPECT_EQ(source_of(program_of({0x24, 0x01, 0x05, 0x43}),
                        "label L13=$10\nlabel go=$10\nlabel go=$12"),
              "          ORG   $10\n"
              "L13\n"
              "go        BEQ   L13_\n"
              "          CLRA\n"
              "L13_      RTS\n"
              "          END\n");
}

TEST(Sources, SayWhereTheyStart) {
    Program program = program_of({1, 0x43});
    program.entry = 0x11;
    EXPECT_EQ(source_of(program), "          ORG   $10\n"
                                  "          FCB   $01\n"
                                  "L11       RTS\n"
                                  "          END   L11\n");
    // END takes letters and digits alone.
    EXPECT_EQ(source_of(program, "label go.1=$11"), "          ORG   $10\n"
                                                    "          FCB   $01\n"
                                                    "go.1\n"
                                                    "L11       RTS\n"
                                                    "          END   L11\n");
    program.entry = 0x20;
    EXPECT_EQ(source_of(program), "entry     EQU   $20\n"
                                  "\n"
                                  "          ORG   $10\n"
                                  "          FCB   $01,$43\n"
                                  "          END   entry\n");
    Program empty;
    empty.entry = 0x20;
    EXPECT_EQ(source_of(empty), "          ORG   $20\n"
                                "          END\n");
}

TEST(Sources, ShowBytesReferencesAndLines) {
    Program program = program_of({0x21, 0xFE});
    program.lines.push_back({0x10, "a\nb", 7});
    EXPECT_EQ(source_of(program, "", {true, true}),
              "          ORG   $10\n"
              "; used at 10\n"
              "L10       BRA   L10                 ; 10  21 FE  a?b:7\n"
              "          END\n");
}

TEST(Sources, AreNotTheSameForOtherBytes) {
    const Program program = program_of({0x00, 0x43});
    const std::string source = source_of(program);
    EXPECT_EQ(dis::difference(source, program_of({0x05, 0x43})), "at 10 it has 00, not 05");
    EXPECT_EQ(dis::difference(source, program_of({0x00})), "at 11 it has 43, not nothing");
    EXPECT_EQ(dis::difference(source, program_of({0x00, 0x43, 0})), "at 12 it has nothing, not 00");
    Program other = program;
    other.entry = 0x11;
    EXPECT_EQ(dis::difference(source, other), "it starts at 10, not 11");
    EXPECT_EQ(dis::difference(" FROB\n", program), "line 1: Illegal mnemonic");
}

TEST(Graphs, HaveABoxForEachBlock) {
    // BEQ 14; BSR 15; RTS; RTI
    EXPECT_EQ(dis::graph_of(dis::list(program_of({0x24, 0x02, 0x20, 0x01, 0x43, 0x44}), {})),
              "digraph flow {\n"
              "    node [shape=box, fontname=\"monospace\", fontsize=10];\n"
              "    edge [fontname=\"monospace\", fontsize=9];\n"
              "    n10 [label=\"10  BEQ   L14\\l\", penwidth=2];\n"
              "    n10 -> n14;\n"
              "    n10 -> n12;\n"
              "    n12 [label=\"12  BSR   L15\\l\"];\n"
              "    n12 -> n15 [style=dashed];\n"
              "    n12 -> n14;\n"
              "    n14 [label=\"L14\\l14  RTS\\l\"];\n"
              "    n15 [label=\"L15\\l15  RTI\\l\"];\n"
              "}\n");
}

} // namespace
