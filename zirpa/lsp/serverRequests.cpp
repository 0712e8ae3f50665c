// The requests: from parameters to what is asked, and from what is found to the result.
#include "zirpa/lsp/completion.h"
#include "zirpa/lsp/diagnostics.h"
#include "zirpa/lsp/formatting.h"
#include "zirpa/lsp/hover.h"
#include "zirpa/lsp/inlayHints.h"
#include "zirpa/lsp/names.h"
#include "zirpa/lsp/outline.h"
#include "zirpa/lsp/sameProgram.h"
#include "zirpa/lsp/server.h"

#include <algorithm>

namespace lsp {

namespace {

Position position_in(const Json &params) { return position_of(member(params, "position")); }

Range range_in(const Json &params) { return range_of(member(params, "range")); }

template <typename Value> Json or_null(const std::optional<Value> &value) {
    return value ? Json(*value) : Json();
}

Blanks blanks_in(const Json &params) {
    Blanks blanks;
    const Json &options = member(params, "options");
    const Json &size = member(options, "tabSize");
    if (!size.is_number_unsigned() || size < 1 || size > 100) {
        throw ResponseError{ErrorCode::kInvalidParams, "tabSize is no number from 1 to 100"};
    }
    blanks.tab_size = size.get<std::size_t>();
    blanks.are_spaces = has_flag(options, "/insertSpaces");
    return blanks;
}

// Whether the kinds that are asked for, if any are, hold quick fixes.
bool wants_fixes(const Json &params) {
    const Json *kinds = find_member(params, "/context/only");
    return kinds == nullptr || !kinds->is_array() ||
           std::any_of(kinds->begin(), kinds->end(), [](const Json &kind) {
               return kind.is_string() &&
                      (kind.get_ref<const std::string &>().empty() || kind == "quickfix");
           });
}

// An outline for clients that know of no ranges within symbols.
Json flat(const std::string &uri, const Symbol &symbol) {
    return {{"name", symbol.name},
            {"kind", static_cast<int>(symbol.kind)},
            {"location", Location{uri, symbol.selection}}};
}

Json nested(const std::vector<Range> &ranges) {
    Json result;
    std::for_each(ranges.rbegin(), ranges.rend(), [&](const Range &range) {
        Json inner = {{"range", range}};
        if (!result.is_null()) {
            inner["parent"] = std::move(result);
        }
        result = std::move(inner);
    });
    return result;
}

std::string_view bytes_of(const TokenData &data) {
    return {reinterpret_cast<const char *>(data.data()), data.size() * sizeof(data[0])};
}

// Edits that leave the program as it is, or none.
Json checked(const OpenDocument &document, const std::vector<TextEdit> &edits,
             const Settings &settings) {
    if (!is_same_program(document.document, edits, settings)) {
        throw ResponseError{ErrorCode::kRequestFailed, "formatting would change what is assembled"};
    }
    return edits;
}

} // namespace

const std::vector<Server::Row> &Server::rows() {
    static const std::vector<Row> kRows = {
        {"textDocument/diagnostic", &Server::answer_diagnostics},
        {"textDocument/codeAction", &Server::answer_code_actions},
        {"textDocument/hover", &Server::answer_hover},
        {"textDocument/inlayHint", &Server::answer_hints},
        {"textDocument/definition", &Server::answer_definition},
        {"textDocument/references", &Server::answer_references},
        {"textDocument/documentHighlight", &Server::answer_highlights},
        {"textDocument/prepareRename", &Server::answer_prepare_rename},
        {"textDocument/rename", &Server::answer_rename},
        {"textDocument/documentSymbol", &Server::answer_symbols},
        {"textDocument/foldingRange", &Server::answer_folding},
        {"textDocument/selectionRange", &Server::answer_selection},
        {"textDocument/semanticTokens/full", &Server::answer_tokens},
        {"textDocument/semanticTokens/full/delta", &Server::answer_tokens_delta},
        {"textDocument/semanticTokens/range", &Server::answer_tokens_range},
        {"textDocument/completion", &Server::answer_completion},
        {"textDocument/signatureHelp", &Server::answer_signature},
        {"textDocument/codeLens", &Server::answer_lenses},
        {"textDocument/formatting", &Server::answer_formatting},
        {"textDocument/rangeFormatting", &Server::answer_range_formatting},
        {"zirpa/listing", &Server::answer_listing},
        {"zirpa/memoryMap", &Server::answer_map},
        {"workspace/symbol", nullptr, &Server::answer_workspace_symbols},
    };
    return kRows;
}

// ---- Diagnostics ----

Json Server::answer_diagnostics(OpenDocument &document, const Json &params) {
    Json items = diagnostics(view_of(document));
    std::string id = name_of_data(items.dump(-1, ' ', false, Json::error_handler_t::replace));
    const Json *previous = find_member(params, "/previousResultId");
    if (previous != nullptr && *previous == id) {
        return {{"kind", "unchanged"}, {"resultId", std::move(id)}};
    }
    return {{"kind", "full"}, {"resultId", std::move(id)}, {"items", std::move(items)}};
}

Json Server::answer_code_actions(OpenDocument &document, const Json &params) {
    if (!wants_fixes(params)) {
        return Json::array();
    }
    return quick_fixes(view_of(document), range_in(params));
}

// ---- What is shown ----

Json Server::answer_hover(OpenDocument &document, const Json &params) {
    return or_null(hover(view_of(document), position_in(params)));
}

Json Server::answer_hints(OpenDocument &document, const Json &params) {
    return inlay_hints(view_of(document), range_in(params));
}

Json Server::answer_lenses(OpenDocument &document, const Json & /*params*/) {
    return code_lenses(view_of(document));
}

// ---- Names ----

Json Server::answer_definition(OpenDocument &document, const Json &params) {
    return definitions(view_of(document), position_in(params));
}

Json Server::answer_references(OpenDocument &document, const Json &params) {
    return references(view_of(document), position_in(params),
                      has_flag(params, "/context/includeDeclaration"));
}

Json Server::answer_highlights(OpenDocument &document, const Json &params) {
    return highlights(view_of(document), position_in(params));
}

Json Server::answer_prepare_rename(OpenDocument &document, const Json &params) {
    const std::optional<Renamable> found = renamable(view_of(document), position_in(params));
    return found ? Json{{"range", found->range}, {"placeholder", found->name}} : Json();
}

Json Server::answer_rename(OpenDocument &document, const Json &params) {
    return rename(view_of(document), position_in(params), text_member(params, "newName"),
                  settings_of(document));
}

Json Server::answer_symbols(OpenDocument &document, const Json & /*params*/) {
    const std::vector<Symbol> all = symbols(view_of(document));
    if (has_flag(capabilities_, "/textDocument/documentSymbol/hierarchicalDocumentSymbolSupport")) {
        return all;
    }
    Json result = Json::array();
    for (const Symbol &symbol : all) {
        result.push_back(flat(document.uri, symbol));
    }
    return result;
}

Json Server::answer_workspace_symbols(const Json &params) {
    const std::string query = text_member(params, "query");
    Json result = Json::array();
    for (auto &[uri, document] : documents_) {
        for (const Symbol &symbol : matching(symbols(view_of(document)), query)) {
            result.push_back(flat(uri, symbol));
        }
    }
    return result;
}

// ---- Structure ----

Json Server::answer_folding(OpenDocument &document, const Json & /*params*/) {
    return folding_ranges(view_of(document));
}

Json Server::answer_selection(OpenDocument &document, const Json &params) {
    const Json &positions = member(params, "positions");
    Json result = Json::array();
    for (const Json &position : positions) {
        result.push_back(nested(selection_ranges(view_of(document), position_of(position))));
    }
    return result;
}

Json Server::answer_tokens(OpenDocument &document, const Json & /*params*/) {
    const View view = view_of(document);
    document.tokens = semantic_tokens(view, 1, view.analysis.line_count());
    document.tokens_id = name_of_data(bytes_of(document.tokens));
    return {{"resultId", document.tokens_id}, {"data", document.tokens}};
}

Json Server::answer_tokens_delta(OpenDocument &document, const Json &params) {
    if (text_member(params, "previousResultId") != document.tokens_id) {
        return answer_tokens(document, params);
    }
    const TokenData earlier = std::move(document.tokens);
    (void)answer_tokens(document, params);
    return {{"resultId", document.tokens_id}, {"edits", token_edits(earlier, document.tokens)}};
}

Json Server::answer_tokens_range(OpenDocument &document, const Json &params) {
    const View view = view_of(document);
    const auto [first, last] = view.lines_in(range_in(params));
    return {{"data", semantic_tokens(view, first, last)}};
}

// ---- Writing ----

Json Server::answer_completion(OpenDocument &document, const Json &params) {
    return completion(view_of(document), position_in(params));
}

Json Server::answer_signature(OpenDocument &document, const Json &params) {
    return or_null(signature_help(view_of(document), position_in(params)));
}

Json Server::answer_formatting(OpenDocument &document, const Json &params) {
    const View view = view_of(document);
    return checked(document, formatting(view, 1, view.analysis.line_count(), blanks_in(params)),
                   settings_of(document));
}

Json Server::answer_range_formatting(OpenDocument &document, const Json &params) {
    const View view = view_of(document);
    const auto [first, last] = view.lines_in(range_in(params));
    return checked(document, formatting(view, first, last, blanks_in(params)),
                   settings_of(document));
}

// ---- Beyond the protocol: what the commands of an editor show ----

Json Server::answer_listing(OpenDocument &document, const Json & /*params*/) {
    Settings settings = settings_of(document);
    settings.options.emplace_back("-L");
    const door::Result result =
        door::run({settings.options, settings.source, document.document.text(),
                   door::Outputs::kMemory, kMostReserved},
                  {});
    for (const door::Output &output : result.outputs) {
        if (output.kind == door::OutputKind::kListing) {
            return {{"text", output.bytes}};
        }
    }
    return {{"text", ""}};
}

Json Server::answer_map(OpenDocument &document, const Json & /*params*/) {
    MemoryMap memory;
    door::Listener listener;
    listener.line = [&](const door::Line &line) { memory.take(line); };
    listener.definition = [&](const door::Definition &definition) { memory.take(definition); };
    const Settings settings = settings_of(document);
    (void)door::run({settings.options, settings.source, document.document.text(),
                     door::Outputs::kNowhere, kMostReserved},
                    listener);
    return {{"svg", svg_of(memory, settings.source)}};
}

} // namespace lsp
