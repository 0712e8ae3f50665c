// What programs in JavaScript are answered when they want a source for bytes.
#include "web/disassembly.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using Json = nlohmann::json;

constexpr const char *kRecords = "S1050010900555\nS9030010EC\n";

Json disassembled(const std::string &content, const std::string &options = "{}") {
    return Json::parse(web::disassemble(options, content).json);
}

std::string source_of(const std::string &content, const std::string &options = "{}") {
    return disassembled(content, options).value("source", std::string());
}

std::string fault_of(const std::string &options) {
    return disassembled(kRecords, options).value("fault", std::string());
}

bool has(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

TEST(Disassembly, ASourceGivesTheSameBytes) {
    const Json told = disassembled(kRecords);
    EXPECT_TRUE(has(told["source"], "LDX   #5")) << told["source"];
    EXPECT_EQ(told["difference"], "");
    EXPECT_TRUE(told["faults"].empty());
    EXPECT_TRUE(has(told["graph"], "digraph"));
    EXPECT_TRUE(has(told["hints"], "code"));
}

TEST(Disassembly, PlainBytesHaveABase) {
    EXPECT_TRUE(has(source_of("\x90\x05", R"({"base":32})"), "ORG   $20"));
    EXPECT_TRUE(has(source_of("\x90\x05", R"({"base":"$30"})"), "ORG   $30"));
    EXPECT_EQ(disassembled("\x90\x05")["faults"][0]["id"], "unknown-format");
}

TEST(Disassembly, AFormatThatIsNamedCounts) {
    EXPECT_TRUE(has(source_of("S1", R"({"format":"image","data":["0-1"],"bytes":true})"), "53 31"));
    EXPECT_FALSE(disassembled(kRecords, R"({"format":"array"})")["faults"].empty());
}

TEST(Disassembly, HintsCount) {
    EXPECT_TRUE(has(source_of(kRecords, R"({"label":["here=$10"]})"), "here"));
    EXPECT_TRUE(has(source_of(kRecords, R"({"hints":"label there=$10\n"})"), "there"));
    EXPECT_TRUE(has(source_of(kRecords, R"({"data":["$10-$11"]})"), "FCB"));
    EXPECT_TRUE(has(source_of("\x05\x90\x05", R"({"base":0,"data":["0-0"],"code":[1]})"), "LDX"));
}

TEST(Disassembly, FaultsHaveTheirPlaces) {
    const Json faults = disassembled("S1050010900554\n", R"({"hints":"code\n"})")["faults"];
    ASSERT_EQ(faults.size(), 2U);
    EXPECT_EQ(faults[0]["input"], "program");
    EXPECT_EQ(faults[0]["line"], 1);
    EXPECT_EQ(faults[0]["column"], 13);
    EXPECT_EQ(faults[0]["endColumn"], 15);
    EXPECT_EQ(faults[1]["input"], "hints");
    EXPECT_FALSE(disassembled("S1050010900554\n").contains("source"));
}

TEST(Disassembly, NamesComeFromSymbolTables) {
    const Json told = disassembled(kRecords, R"({"symbolTable":"no table"})");
    EXPECT_EQ(told["faults"][0]["input"], "symbolTable");
}

TEST(Disassembly, WrongOptionsAreRefused) {
    EXPECT_EQ(fault_of(R"({"format":"tape"})"), "format: tape is not known");
    EXPECT_EQ(fault_of(R"({"base":65536})"), "base: an address up to $FFFF is expected");
    EXPECT_EQ(fault_of(R"({"base":-1})"), "base has something that is no text");
    EXPECT_EQ(fault_of(R"({"code":"$10"})"), "code is no list");
    EXPECT_EQ(fault_of(R"({"colour":true})"), "there is no setting colour");
    EXPECT_TRUE(has(fault_of(R"({"label":["start"]})"), "label: start: "));
}

} // namespace
