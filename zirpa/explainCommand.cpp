#include "zirpa/assemble.h"
#include "zirpa/chapters.h"
#include "zirpa/commands.h"
#include "zirpa/console.h"
#include "zirpa/suggest.h"

#include <algorithm>

namespace {

constexpr std::size_t kWidth = 80;

// Breaks a paragraph at blanks.
std::string wrapped(std::string_view text) {
    std::string result;
    std::size_t column = 0;
    while (!text.empty()) {
        const std::size_t size = std::min(text.find(' '), text.size());
        if (column > 0 && column + 1 + size > kWidth) {
            result += '\n';
            column = 0;
        } else if (column > 0) {
            result += ' ';
            ++column;
        }
        result += text.substr(0, size);
        column += size;
        text.remove_prefix(std::min(size + 1, text.size()));
    }
    return result + "\n";
}

std::string indented(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t size = text.find('\n') + 1;
        result += "    ";
        result += text.substr(0, size);
        text.remove_prefix(size);
    }
    return result;
}

std::string chapter_text(const Chapter &chapter) {
    std::string text =
        std::string(chapter.id) + " (" + std::string(name_of(chapter.severity)) + ")\n\n";
    text += wrapped(chapter.meaning) + "\n";
    if (!chapter.example.empty()) {
        text += indented(chapter.example) + "\n";
    }
    return text + wrapped(chapter.cure);
}

std::string markdown_of(const Chapter &chapter) {
    std::string text = "\n## " + std::string(chapter.id) + "\n\n";
    text += std::string(chapter.severity == Severity::kError ? "Error. " : "Warning. ");
    text += std::string(chapter.meaning) + "\n\n";
    if (!chapter.example.empty()) {
        text += "```\n" + std::string(chapter.example) + "```\n\n";
    }
    return text + std::string(chapter.cure) + "\n";
}

std::string manual() {
    std::string text = "# Diagnostics\n\n"
                       "What `zirpa` says of a source, by identifier. `zirpa explain ID` shows a\n"
                       "chapter; `./dev pages` writes this page.\n\n"
                       "| identifier | kind |\n|---|---|\n";
    const std::vector<Chapter> chapters = all_chapters();
    for (const Chapter &chapter : chapters) {
        text += "| [" + std::string(chapter.id) + "](#" + std::string(chapter.id) + ") | " +
                std::string(name_of(chapter.severity)) + " |\n";
    }
    for (const Chapter &chapter : chapters) {
        text += markdown_of(chapter);
    }
    return text;
}

std::string list() {
    std::string text;
    for (const std::string &id : all_identifiers()) {
        text += id + "\n";
    }
    return text;
}

int print_or_fail(const std::string &text) { return print(text) ? 0 : kUnusable; }

} // namespace

std::vector<Chapter> all_chapters() {
    const std::span<const Chapter> reports = report_chapters();
    const std::span<const Chapter> warnings = warning_chapters();
    std::vector<Chapter> chapters(reports.begin(), reports.end());
    chapters.insert(chapters.end(), warnings.begin(), warnings.end());
    const std::span<const Chapter> programs = program_chapters();
    chapters.insert(chapters.end(), programs.begin(), programs.end());
    return chapters;
}

std::vector<std::string> all_identifiers() {
    std::vector<std::string> ids;
    for (const Chapter &chapter : all_chapters()) {
        ids.emplace_back(chapter.id);
    }
    return ids;
}

int explain(const std::string &id) {
    if (id == kExplainAll) {
        return print_or_fail(manual());
    }
    if (id.empty()) {
        return print_or_fail(list());
    }
    const std::vector<Chapter> chapters = all_chapters();
    const auto chapter = std::find_if(chapters.begin(), chapters.end(),
                                      [&](const Chapter &each) { return each.id == id; });
    if (chapter != chapters.end()) {
        return print_or_fail(chapter_text(*chapter));
    }
    const std::string hint = did_you_mean(nearest(id, all_identifiers()));
    (void)complain("zirpa: no diagnostic is called " + id + (hint.empty() ? "" : ": " + hint) +
                   "\nSee zirpa explain for a list.\n");
    return kUnusable;
}
