// The language server, apart from where its messages come from and go to: it takes messages and
// gives messages, and does nothing by itself.
//
// Taking a message is quick: edits change the text at once, and requests wait. Work is done in
// pieces, one answer or the analysis of one document each, so that whoever drives the server looks
// for further messages in between; an edit that has come meanwhile makes waiting requests
// pointless, and a row of edits is analysed once.
#pragma once

#include "zirpa/lsp/openDocument.h"
#include "zirpa/lsp/rpc.h"
#include "zirpa/lsp/view.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lsp {

// What the server needs of its surroundings.
struct Surroundings {
    std::function<void(const std::string &message)> send;
    // The text of a file; nothing where there is none.
    std::function<std::optional<std::string>(const std::string &path)> read;
    std::string chapters; // address of the page that explains diagnostics; may be empty
};

class Server {
  public:
    explicit Server(Surroundings surroundings) : surroundings_(std::move(surroundings)) {}

    // A message without its header; whatever it is, the server goes on.
    void take(std::string_view text);

    // Does a piece of work; false where there is none.
    bool work();

    // The exit status, when the client has asked for the end.
    std::optional<int> status() const { return status_; }
    bool is_shut_down() const { return is_shut_down_; }

  private:
    // The methods that are known, a row each.
    struct Row {
        std::string_view method;
        Json (Server::*answer)(OpenDocument &document, const Json &params); // null: of no document
        Json (Server::*answer_all)(const Json &params) = nullptr;
    };
    struct NoticeRow {
        std::string_view method;
        void (Server::*take)(const Json &params);
    };
    struct Waiting {
        Json id;
        const Row *row;
        Json params;
        std::string uri;           // empty: of no document
        std::uint64_t changes = 0; // that the document had
    };

    static const std::vector<Row> &rows();
    static const std::vector<NoticeRow> &notice_rows();

    // ---- Messages ----
    void send(const Json &json) const;
    void take_request(Message message);
    void take_notification(Message message);
    void take_response(const Message &message);
    void take_document_request(const Row &row, Message message);
    void answer(const Waiting &waiting);
    Json result_of(const Waiting &waiting);

    // ---- Life ----
    Json initialize(const Json &params);
    void initialized(const Json &params);
    void cancel(const Json &params);
    void exit(const Json &params);

    // ---- Documents ----
    void open(const Json &params);
    void change(const Json &params);
    void save(const Json &params);
    void close(const Json &params);
    OpenDocument *find(const std::string &uri);
    Settings settings_of(const OpenDocument &document) const;
    View view_of(OpenDocument &document);
    void read_project_file(OpenDocument &document);
    void publish(OpenDocument &document);

    // ---- Settings ----
    void configure(const Json &params);
    void files_changed(const Json &params);
    void ask_for_settings();
    void take_settings(const Json &settings);
    void analyse_all_again();
    void warn(const std::string &text) const;

    // ---- Requests ----
    Json answer_diagnostics(OpenDocument &document, const Json &params);
    Json answer_code_actions(OpenDocument &document, const Json &params);
    Json answer_hover(OpenDocument &document, const Json &params);
    Json answer_hints(OpenDocument &document, const Json &params);
    Json answer_definition(OpenDocument &document, const Json &params);
    Json answer_references(OpenDocument &document, const Json &params);
    Json answer_highlights(OpenDocument &document, const Json &params);
    Json answer_prepare_rename(OpenDocument &document, const Json &params);
    Json answer_rename(OpenDocument &document, const Json &params);
    Json answer_symbols(OpenDocument &document, const Json &params);
    Json answer_folding(OpenDocument &document, const Json &params);
    Json answer_selection(OpenDocument &document, const Json &params);
    Json answer_tokens(OpenDocument &document, const Json &params);
    Json answer_tokens_delta(OpenDocument &document, const Json &params);
    Json answer_tokens_range(OpenDocument &document, const Json &params);
    Json answer_completion(OpenDocument &document, const Json &params);
    Json answer_signature(OpenDocument &document, const Json &params);
    Json answer_lenses(OpenDocument &document, const Json &params);
    Json answer_formatting(OpenDocument &document, const Json &params);
    Json answer_range_formatting(OpenDocument &document, const Json &params);
    Json answer_listing(OpenDocument &document, const Json &params);
    Json answer_map(OpenDocument &document, const Json &params);
    Json answer_workspace_symbols(const Json &params);

    Surroundings surroundings_;
    std::optional<int> status_;
    bool is_initialized_ = false;
    bool is_shut_down_ = false;
    Json capabilities_; // of the client
    Encoding encoding_ = Encoding::kUtf16;
    bool is_pulling_ = false; // the client asks for diagnostics, and so gets none unasked
    ClientSettings settings_;
    std::map<std::string, OpenDocument> documents_; // by URI
    std::deque<Waiting> waiting_;
    int last_request_ = 0;         // of the server
    int request_for_settings_ = 0; // the last one
};

} // namespace lsp
