// The documents of the server, its settings, and what it says of them unasked.
#include "zirpa/lsp/diagnostics.h"
#include "zirpa/lsp/server.h"

namespace lsp {

namespace {

constexpr const char *kNameless = "untitled.szirpa";
constexpr int kWarningMessage = 2;

const std::string &uri_in(const Json &params) {
    return text_member(member(params, "textDocument"), "uri");
}

std::optional<Json> version_in(const Json &params) {
    const Json *version = find_member(params, "/textDocument/version");
    return version != nullptr && version->is_number_integer() ? std::optional(*version)
                                                              : std::nullopt;
}

// The name of a source leads to no file: its text is in memory.
std::string name_of_source(const std::string &path) {
    const std::string name = path.substr(path.find_last_of('/') + 1);
    return name.empty() || name.starts_with('-') ? kNameless : name;
}

} // namespace

const std::vector<Server::NoticeRow> &Server::notice_rows() {
    static const std::vector<NoticeRow> kRows = {
        {"initialized", &Server::initialized},
        {"$/cancelRequest", &Server::cancel},
        {"textDocument/didOpen", &Server::open},
        {"textDocument/didChange", &Server::change},
        {"textDocument/didSave", &Server::save},
        {"textDocument/didClose", &Server::close},
        {"workspace/didChangeConfiguration", &Server::configure},
        {"workspace/didChangeWatchedFiles", &Server::files_changed},
    };
    return kRows;
}

// ---- Documents ----

OpenDocument *Server::find(const std::string &uri) {
    const auto found = documents_.find(uri);
    return found == documents_.end() ? nullptr : &found->second;
}

void Server::open(const Json &params) {
    const std::string &uri = uri_in(params);
    const std::string &text = text_member(member(params, "textDocument"), "text");
    OpenDocument &document = documents_[uri];
    const std::uint64_t changes = document.changes;
    document = {
        uri, path_of(uri), Document(text, encoding_), version_in(params), changes + 1, {}, {}, {},
        {}};
    read_project_file(document);
}

// Either all changes of a notification are made or none.
void Server::change(const Json &params) {
    OpenDocument *document = find(uri_in(params));
    const Json &changes = member(params, "contentChanges");
    if (document == nullptr || !changes.is_array()) {
        throw ResponseError{ErrorCode::kInvalidParams, "there is nothing to change"};
    }
    std::vector<ContentChange> all;
    for (const Json &each : changes) {
        all.push_back(content_change_of(each));
    }
    for (const ContentChange &each : all) {
        document->document.apply(each);
    }
    document->version = version_in(params);
    document->analysis.reset();
    ++document->changes;
}

void Server::save(const Json &params) {
    if (OpenDocument *document = find(uri_in(params)); document != nullptr) {
        read_project_file(*document);
    }
}

void Server::close(const Json &params) {
    const std::string uri = uri_in(params);
    if (documents_.erase(uri) > 0 && !is_pulling_) {
        send(notification("textDocument/publishDiagnostics",
                          {{"uri", uri}, {"diagnostics", Json::array()}}));
    }
}

Settings Server::settings_of(const OpenDocument &document) const {
    Project project = settings_.project;
    project.add(document.project);
    Settings settings;
    settings.options = std::move(project.options);
    settings.warnings = std::move(project.warnings);
    settings.source = name_of_source(document.path);
    return settings;
}

View Server::view_of(OpenDocument &document) {
    const bool is_new = !document.analysis;
    if (is_new) {
        document.analysis.emplace(document.document.text(), settings_of(document));
        if (!is_pulling_) {
            publish(document);
        }
    }
    return {document.uri, document.document, *document.analysis, settings_, surroundings_.chapters};
}

void Server::publish(OpenDocument &document) {
    const View view = {document.uri, document.document, *document.analysis, settings_,
                       surroundings_.chapters};
    Json params = {{"uri", document.uri}, {"diagnostics", diagnostics(view)}};
    if (document.version) {
        params["version"] = *document.version;
    }
    send(notification("textDocument/publishDiagnostics", std::move(params)));
}

// ---- Settings ----

void Server::warn(const std::string &text) const {
    send(notification("window/showMessage",
                      {{"type", kWarningMessage}, {"message", "zirpa: " + text}}));
}

void Server::read_project_file(OpenDocument &document) {
    Project project;
    const std::string path = project_file_of(document.path);
    const auto text = document.path.empty() ? std::nullopt : surroundings_.read(path);
    if (const auto failure = text ? read_project(*text, project) : std::nullopt; failure) {
        warn(path + ": " + *failure);
        project = {};
    }
    if (project.options != document.project.options ||
        project.warnings != document.project.warnings) {
        document.analysis.reset();
    }
    document.project = std::move(project);
}

void Server::files_changed(const Json & /*params*/) {
    for (auto &[uri, document] : documents_) {
        read_project_file(document);
    }
}

// Clients that are asked for their settings send none with the notification.
void Server::configure(const Json &params) {
    const Json *settings = find_member(params, "/settings/zirpa");
    if (settings != nullptr && settings->is_object()) {
        take_settings(*settings);
    } else {
        ask_for_settings();
    }
}

void Server::ask_for_settings() {
    if (has_flag(capabilities_, "/workspace/configuration")) {
        request_for_settings_ = ++last_request_;
        send(request(request_for_settings_, "workspace/configuration",
                     {{"items", Json::array({{{"section", "zirpa"}}})}}));
    }
}

void Server::take_settings(const Json &settings) {
    if (!settings.is_object()) {
        return;
    }
    if (const auto failure = read_settings(settings, settings_); failure) {
        warn("settings: " + *failure);
        return;
    }
    analyse_all_again();
}

// What the client shows by settings of before is asked for again where it can be told so.
void Server::analyse_all_again() {
    for (auto &[uri, document] : documents_) {
        document.analysis.reset();
    }
    struct Refresh {
        const char *capability;
        const char *method;
    };
    static constexpr std::array<Refresh, 4> kRefreshes = {
        {{"/workspace/diagnostics/refreshSupport", "workspace/diagnostic/refresh"},
         {"/workspace/inlayHint/refreshSupport", "workspace/inlayHint/refresh"},
         {"/workspace/semanticTokens/refreshSupport", "workspace/semanticTokens/refresh"},
         {"/workspace/codeLens/refreshSupport", "workspace/codeLens/refresh"}}};
    for (const Refresh &each : kRefreshes) {
        if (!documents_.empty() && has_flag(capabilities_, each.capability)) {
            send(request(++last_request_, each.method, nullptr));
        }
    }
}

} // namespace lsp
