#include "tests/lsp/session.h"

#include <array>

namespace {

constexpr const char *kUri = "untitled:prog.szirpa";
constexpr std::size_t kMostText = 400;

constexpr std::array kPieces = std::to_array<std::string_view>({"\n",
                                                                "\n\t",
                                                                "\r\n",
                                                                "\r",
                                                                " ",
                                                                "\t",
                                                                ";",
                                                                "#",
                                                                "##if 1",
                                                                "#ifdef ",
                                                                "#else",
                                                                "#endif",
                                                                "#define ",
                                                                "#elif ",
                                                                "#error x",
                                                                "LDA",
                                                                "STA",
                                                                "BRA",
                                                                "RTS",
                                                                "TFR",
                                                                "LDXA",
                                                                "EQU",
                                                                "ORG",
                                                                "RMB",
                                                                "FCB",
                                                                "FCS",
                                                                "END",
                                                                "a",
                                                                "b1",
                                                                "loop",
                                                                "A",
                                                                "X",
                                                                "SP",
                                                                ",",
                                                                ",X+",
                                                                "$10",
                                                                "%101",
                                                                "12",
                                                                "'a'",
                                                                "\"",
                                                                "\\t",
                                                                "(",
                                                                ")",
                                                                "+",
                                                                "-",
                                                                "*",
                                                                "/",
                                                                "%",
                                                                "<<",
                                                                "&&",
                                                                "~",
                                                                ":",
                                                                "\xC3\xA4",
                                                                "\xF0\x9D\x84\x9E",
                                                                "\xEF\xBB\xBF",
                                                                "\xC2\xA0",
                                                                ".stabs \"x\",1,2,3,4",
                                                                "+"});

lsp::Json whole_range() { return lsp::Range{{0, 0}, {1000, 0}}; }

} // namespace

Session::Session()
    : server_({[this](const std::string &message) { sent_ += message + "\n"; },
               [](const std::string & /*path*/) { return std::nullopt; },
               {}}) {
    // A client that asks for diagnostics, so that they are answers too.
    const lsp::Json capabilities = {{"textDocument", {{"diagnostic", lsp::Json::object()}}}};
    take(lsp::request(0, "initialize", {{"capabilities", capabilities}}));
    take(lsp::notification("initialized", lsp::Json::object()));
}

void Session::work() {
    while (server_.work()) {
    }
}

void Session::open(const std::string &text) {
    const lsp::Json document = {
        {"uri", kUri}, {"languageId", "szirpa"}, {"version", 1}, {"text", text}};
    take(lsp::notification("textDocument/didOpen", {{"textDocument", document}}));
}

void Session::change(const lsp::Range &range, const std::string &text) {
    const lsp::Json change = {{"range", range}, {"text", text}};
    take(lsp::notification("textDocument/didChange",
                           {{"textDocument", {{"uri", kUri}, {"version", 2}}},
                            {"contentChanges", lsp::Json::array({change})}}));
}

std::string Session::answers(const lsp::Position &position) {
    static constexpr std::array kMethods = std::to_array<const char *>(
        {"textDocument/diagnostic", "textDocument/codeAction", "textDocument/hover",
         "textDocument/inlayHint", "textDocument/definition", "textDocument/references",
         "textDocument/documentHighlight", "textDocument/prepareRename", "textDocument/rename",
         "textDocument/documentSymbol", "textDocument/foldingRange", "textDocument/selectionRange",
         "textDocument/semanticTokens/full", "textDocument/semanticTokens/range",
         "textDocument/completion", "textDocument/signatureHelp", "textDocument/codeLens",
         "textDocument/formatting", "workspace/symbol"});
    const lsp::Json params = {{"textDocument", {{"uri", kUri}}},
                              {"position", position},
                              {"positions", lsp::Json::array({position})},
                              {"range", whole_range()},
                              {"context", {{"includeDeclaration", true}}},
                              {"options", {{"tabSize", 8}, {"insertSpaces", true}}},
                              {"newName", "renamed"},
                              {"query", ""}};
    sent_.clear();
    for (const char *method : kMethods) {
        take(lsp::request(1, method, params));
    }
    work();
    return sent_;
}

std::string_view random_piece(Choices &choices) { return kPieces[choices.below(kPieces.size())]; }

lsp::Position random_position(Choices &choices) {
    return {static_cast<int>(choices.below(12)), static_cast<int>(choices.below(16))};
}

void edit_randomly(Choices &choices, Session &session, lsp::Document &document) {
    lsp::Range range = {random_position(choices), {}};
    const bool is_insertion = choices.below(3) != 0 && document.text().size() < kMostText;
    range.end = is_insertion ? range.start : random_position(choices);
    std::string text;
    for (std::size_t i = choices.below(5); i > 0; --i) {
        text += random_piece(choices);
    }
    document.apply({range, text});
    session.change(range, text);
}
