#include "zirpa/lsp/clientSettings.h"

namespace lsp {

namespace {

constexpr std::size_t kLastColumn = 200;

void read_flag(const Json &json, const char *pointer, bool &flag) {
    if (const Json *value = find_member(json, pointer); value != nullptr && value->is_boolean()) {
        flag = value->get<bool>();
    }
}

void read_column(const Json &json, const char *pointer, std::size_t &column) {
    const Json *value = find_member(json, pointer);
    if (value != nullptr && value->is_number_unsigned() && *value <= kLastColumn) {
        column = value->get<std::size_t>();
    }
}

} // namespace

std::optional<std::string> read_settings(const Json &json, ClientSettings &settings) {
    ClientSettings read;
    if (auto failure = read_project(json, true, read.project); failure) {
        return failure;
    }
    read_flag(json, "/inlayHints/bytes", read.are_bytes_shown);
    read_flag(json, "/inlayHints/values", read.are_values_shown);
    read_column(json, "/format/operation", read.columns.operation);
    read_column(json, "/format/operand", read.columns.operand);
    read_column(json, "/format/comment", read.columns.comment);
    settings = std::move(read);
    return std::nullopt;
}

} // namespace lsp
