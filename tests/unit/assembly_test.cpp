// What programs in JavaScript are answered when they assemble: as they would read it.
#include "web/assembly.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using Json = nlohmann::json;

Json assembled(const std::string &source, const std::string &options = "{}") {
    return Json::parse(web::assemble(options, source).json);
}

std::string fault_of(const std::string &options) {
    return assembled("", options).value("fault", std::string());
}

// The bytes of an output, by its kind.
std::string output(const std::string &kind, const std::string &source,
                   const std::string &options = "{}") {
    const web::Answer answer = web::assemble(options, source);
    std::size_t begin = 0;
    const Json told = Json::parse(answer.json);
    for (const Json &each : told["outputs"]) {
        const auto size = each["size"].get<std::size_t>();
        if (each["kind"] == kind) {
            return answer.bytes.substr(begin, size);
        }
        begin += size;
    }
    return "there is none";
}

TEST(Assembly, LinesHaveAddressAndBytes) {
    const Json lines = assembled("; one\n ORG $10\nA LDX #5\n RMB 2\n")["lines"];
    EXPECT_EQ(lines[0],
              Json::parse(R"({"line":1,"kind":"comment","address":0,"size":0,"bytes":[]})"));
    EXPECT_EQ(
        lines[2],
        Json::parse(R"({"line":3,"kind":"instruction","address":16,"size":2,"bytes":[144,5]})"));
    EXPECT_EQ(lines[3],
              Json::parse(R"({"line":4,"kind":"directive","address":18,"size":2,"bytes":[]})"));
}

TEST(Assembly, LinesBelowTheEndAreNotTold) {
    EXPECT_EQ(assembled(" END\n CLRA\n")["lines"].size(), 1U);
}

TEST(Assembly, SymbolsHavePlacesAndUses) {
    const Json symbols =
        assembled("N EQU 5\n LDX #N\n#ifdef FAST\n#endif\n", R"({"define":["FAST"]})")["symbols"];
    EXPECT_EQ(symbols[0], Json::parse(
                              R"({"name":"FAST","kind":"option","value":0,
                                  "uses":[{"kind":"test","line":3,"column":8,"endColumn":12}]})"));
    EXPECT_EQ(symbols[1], Json::parse(
                              R"({"name":"N","kind":"constant","value":5,
                                  "line":1,"column":1,"endColumn":2,
                                  "uses":[{"kind":"value","line":2,"column":7,"endColumn":8}]})"));
    EXPECT_EQ(symbols.size(), 2U);
}

TEST(Assembly, ColumnsCountCharacters) {
    const Json told = assembled(" ORG 0\n FCS \"\xC3\xA4\"\n");
    ASSERT_EQ(told["diagnostics"].size(), 1U);
    EXPECT_EQ(told["diagnostics"][0]["column"], 7);
    EXPECT_EQ(told["diagnostics"][0]["endColumn"], 8);
}

TEST(Assembly, NamesThatAreNotDefinedAreNoSymbols) {
    EXPECT_TRUE(assembled(" LDX #N\n")["symbols"].empty());
}

TEST(Assembly, DiagnosticsHaveFixes) {
    const Json told = assembled(" ORG 0\n LDXA #5\n");
    EXPECT_EQ(told["status"], 1);
    EXPECT_EQ(told["errors"], 1);
    EXPECT_EQ(told["warnings"], 0);
    const Json &diagnostic = told["diagnostics"][0];
    EXPECT_EQ(diagnostic["id"], "unknown-instruction");
    EXPECT_EQ(diagnostic["line"], 2);
    EXPECT_EQ(diagnostic["fixes"][0],
              Json::parse(
                  R"({"title":"Replace by LDX","line":2,"column":2,"endColumn":6,"text":"LDX"})"));
}

TEST(Assembly, AFixThatAddsALineReplacesNothing) {
    const Json told = assembled(" CLRA\n");
    const Json &fix = told["diagnostics"][0]["fixes"][0];
    EXPECT_EQ(told["status"], 0);
    EXPECT_EQ(told["warnings"], 1);
    EXPECT_EQ(fix["text"], "\tORG\t0\n");
    EXPECT_EQ(fix["line"], 1);
    EXPECT_EQ(fix["column"], 1);
    EXPECT_EQ(fix["endColumn"], 1);
}

TEST(Assembly, OutputsAreThoseAskedFor) {
    const std::string source = " ORG $10\n LDX #5\n";
    EXPECT_EQ(output("records", source), "S1050010900555\nS9030010EC\n");
    EXPECT_EQ(output("listing", source), "there is none");
    EXPECT_NE(output("listing", source, R"({"listing":true})").find("10 90 05"), std::string::npos);
    EXPECT_NE(output("script", source).find("#setMemory  11=05"), std::string::npos);
    EXPECT_NE(output("array", source, R"({"listing":true,"array":true})").find("0x90"),
              std::string::npos);
}

TEST(Assembly, OutputsAreNamedAfterTheSource) {
    const auto name = [](const char *options) {
        return assembled(" ORG 0\n", options)["outputs"][0]["name"].get<std::string>();
    };
    EXPECT_EQ(name("{}"), "source.s19");
    EXPECT_EQ(name(R"({"name":"a/b.szirpa"})"), "b.s19");
    EXPECT_EQ(name(R"({"name":"-L"})"), "-L.s19");
    EXPECT_EQ(name(R"({"output":"x.hex"})"), "x.hex");
}

TEST(Assembly, AFailureLeavesTheListing) {
    const Json outputs = assembled(" ORG 0\n X\n", R"({"listing":true})")["outputs"];
    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_EQ(outputs[0]["kind"], "listing");
}

TEST(Assembly, TheSymbolTableIsAsItIsPrinted) {
    EXPECT_NE(assembled("N EQU 5\n", R"({"symbols":true})")["symbolTable"].get<std::string>().find(
                  "0005\tN"),
              std::string::npos);
    EXPECT_EQ(assembled("N EQU 5\n")["symbolTable"], "");
}

TEST(Assembly, SourcesAreAnyBytes) {
    const Json told = assembled(std::string(" ORG 0\n FCS \"\xFF\"\n \xFE\n") + '\0');
    EXPECT_EQ(told["lines"][1]["bytes"], Json::parse("[255]"));
    EXPECT_EQ(told["status"], 1);
}

TEST(Assembly, NoLineReservesWithoutBound) {
    EXPECT_EQ(assembled(" ORG 0\n RMB 1048576\n")["status"], 0);
    EXPECT_EQ(assembled(" ORG 0\n RMB 1048577\n")["status"], 1);
}

TEST(Assembly, SettingsOfAProjectAreOptions) {
    EXPECT_EQ(assembled(" CLRA\n", R"({"allow":["bytes-before-org"]})")["warnings"], 0);
    EXPECT_EQ(assembled(" CLRA\n", R"({"strict":true})")["status"], 1);
    EXPECT_EQ(assembled("n EQU 1\n FCB N\n", R"({"compatibility":["nocase"]})")["errors"], 0);
}

TEST(Assembly, WrongOptionsAreRefused) {
    EXPECT_EQ(fault_of("["), "the options are no object");
    EXPECT_EQ(fault_of("[]"), "the options are no object");
    EXPECT_EQ(fault_of(R"({"listing":1})"), "listing is neither true nor false");
    EXPECT_EQ(fault_of(R"({"name":[]})"), "name has something that is no text");
    EXPECT_EQ(fault_of(R"({"listings":true})"), "there is no setting listings");
    EXPECT_EQ(fault_of(R"({"define":"A"})"), "define is no list");
    EXPECT_EQ(fault_of(R"({"listing":null,"name":null})"), "");
}

} // namespace
