// A row for each identifier whose words are not the report's own: what the diagnostic says, and for
// some a function that adds what depends on the line.
#include "zirpa/wording.h"

#include "zirpa/cases.h"
#include "zirpa/phrases.h"
#include "zirpa/suggest.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

// ---- Texts ----

// What stands between the first two quotes of a report.
std::string name_in(const std::string &text) {
    const std::size_t begin = text.find('\'') + 1;
    return text.substr(begin, text.find('\'', begin) - begin);
}

// The value of a report that names one in hexadecimal, 32 bits with a sign.
std::int32_t value_in(const std::string &text) {
    const std::size_t begin = text.find("0x");
    std::uint32_t value = 0;
    if (begin != std::string::npos) {
        (void)std::from_chars(text.data() + begin + 2, text.data() + text.size(), value, 16);
    }
    return static_cast<std::int32_t>(value);
}

std::string last_number_in(const std::string &text) {
    return text.substr(text.find_last_not_of("0123456789") + 1);
}

// ---- Words ----

// Names that are compared with unknown ones in a run, to find out what was meant.
constexpr std::size_t kMostComparisons = 1'000'000;

void word_value(const Case &each) {
    each.diagnostic.message = in_both_bases(value_in(each.report.text)) +
                              " does not fit into a byte: that holds -256 to 255 (-$100 to $FF)";
}

void word_branch(const Case &each) {
    each.diagnostic.message = in_both_bases(value_in(each.report.text)) +
                              " is out of reach: a branch goes from -128 to 127 (-$80 to $7F)";
    each.diagnostic.hint = "JMP reaches every address";
}

void word_undefined(const Case &each) {
    const std::string name = name_in(each.report.text);
    each.diagnostic.message = quoted(name) + " is not defined";
    const auto known = each.heard.names.find(name);
    if (known != each.heard.names.end() && known->second.kind != door::NameKind::kDefine) {
        each.diagnostic.notes.push_back(
            {without_text(known->second.place),
             "a conditional asks for this name, which makes its label unknown"});
        return;
    }
    // Many faults in a large source say more than any hint could.
    if (each.heard.names.size() * each.heard.reports.size() > kMostComparisons) {
        return;
    }
    const std::vector<std::string> meant =
        nearest_names(name, each.heard.names, [](const HeardName & /*other*/) { return true; });
    each.diagnostic.hint = did_you_mean(meant);
    offer_words(each.diagnostic, meant);
}

void word_second_definition(const Case &each) {
    const std::string &name = each.words().label;
    each.diagnostic.message = quoted(name) + " is defined more than once";
    const auto known = each.heard.names.find(name);
    if (known != each.heard.names.end() && known->second.place.line != each.report.place.line) {
        each.diagnostic.notes.push_back({without_text(known->second.place), "first defined here"});
    }
}

void word_given_value(const Case &each) {
    const std::string name = name_in(each.report.text);
    const bool is_other = each.report.id == "changed-value";
    each.diagnostic.message =
        quoted(name) + (is_other ? " has another value already" : " has a value already");
    const auto known = each.heard.names.find(name);
    if (known != each.heard.names.end() && known->second.kind == door::NameKind::kOption) {
        each.diagnostic.hint = "it is defined by an option";
    } else if (known != each.heard.names.end()) {
        each.diagnostic.notes.push_back({without_text(known->second.place), "first defined here"});
    }
}

void word_phase(const Case &each) {
    each.diagnostic.message =
        quoted(each.words().label) + " has moved since addresses were laid out";
    if (each.heard.phase_place.line != 0) {
        each.diagnostic.notes.push_back({without_text(each.heard.phase_place),
                                         "this line has another length now than it had then"});
    }
}

void word_forward_constant(const Case &each) {
    each.diagnostic.message = quoted(name_in(each.report.text)) +
                              " is used above its line, on line " +
                              last_number_in(each.report.text);
}

void word_digit(const Case &each, std::string_view kind, std::string_view digits) {
    const std::string number = each.report.pointed_at();
    const std::size_t begin = number.find_first_of("$%") + 1;
    const std::size_t faulty = door::upper(number).find_first_not_of(digits, begin);
    each.diagnostic.message =
        faulty == std::string::npos
            ? "a " + std::string(kind) + " number needs digits"
            : quoted(std::string(1, number[faulty])) + " is no " + std::string(kind) + " digit";
    if (door::upper(number).starts_with("0X") || door::upper(number).ends_with("H")) {
        each.diagnostic.hint = "a hexadecimal number begins with $";
    }
}

void word_reserved(const Case &each) {
    each.diagnostic.message =
        "register " + quoted(each.report.pointed_at()) + " can't be a value in an expression";
}

void word_character(const Case &each) {
    const std::string character = each.report.pointed_at();
    each.diagnostic.message = quoted(character) + " means nothing in an expression";
    if (character == "\"" && each.words().operand.starts_with('"')) {
        each.diagnostic.hint = "a text is given by FCS";
    } else if (character == "\"" || character == "'") {
        each.diagnostic.hint = "a character stands between single quotes, as in 'A'";
    } else if (character == "@") {
        each.diagnostic.hint = "there are decimal, $ hexadecimal and % binary numbers";
    }
}

void word_less_or_greater(const Case &each) {
    each.diagnostic.message = quoted(each.report.pointed_at()) + " can't be computed";
    each.diagnostic.hint = "there are ==, !=, <= and >=";
}

void word_error_directive(const Case &each) {
    const std::string &text = each.report.place.text;
    const std::size_t begin =
        text.find_first_not_of(" \t", static_cast<std::size_t>(each.report.place.last));
    each.diagnostic.message =
        begin == std::string::npos ? "#error" : "#error: " + text.substr(begin);
}

void word_undefined_start(const Case &each) {
    each.diagnostic.message =
        "the start address " + quoted(name_in(each.report.text)) + " is not defined";
}

// ---- The rows ----

struct Wording {
    std::string_view id;
    std::string_view message; // empty: what the function makes, or else the report's own text
    std::string_view hint = {};
    void (*word)(const Case &) = nullptr;
};

// clang-format off
constexpr std::array kWordings = std::to_array<Wording>({
    {"bad-label", "", "", word_bad_label},
    {"unknown-instruction", "", "", word_unknown_instruction},
    {"multiple-definition", "", "", word_second_definition},
    {"phase-error", "", "", word_phase},
    {"long-line", "the line is too long: what is beyond 4095 bytes is read as a line of its own"},
    {"bad-operand", "", "", word_operand},
    {"bad-operand-syntax", "", "", word_operand_syntax},
    {"addressing-mode", "", "", word_addressing_mode},
    {"branch-addressing-mode", "", "", word_addressing_mode},
    {"bad-register-pair", "", "", word_register_pair},
    {"register-combination", "", "", word_register_combination},
    {"value-out-of-range", "", "", word_value},
    {"branch-out-of-reach", "", "", word_branch},
    {"bad-decimal-digit", "", "", [](const Case &each) { word_digit(each, "decimal", "0123456789"); }},
    {"bad-hexadecimal-digit", "", "", [](const Case &each) { word_digit(each, "hexadecimal", "0123456789ABCDEF"); }},
    {"bad-binary-digit", "", "", [](const Case &each) { word_digit(each, "binary", "01"); }},
    {"missing-parenthesis", "a ')' is missing here"},
    {"unexpected-parenthesis", "this ')' closes nothing"},
    {"operand-expected", "a value is missing before this"},
    {"missing-operator", "an operator is missing before this"},
    {"unterminated-expression", "", "", word_unterminated},
    {"illegal-character", "", "", word_character},
    {"reserved-word", "", "", word_reserved},
    {"undefined-name", "", "", word_undefined},
    {"division-by-zero", "division by zero"},
    {"less-or-greater", "", "", word_less_or_greater},
    {"equ-without-label", "EQU gives a value to a name, and there is none", "a name begins in the first column"},
    {"already-defined", "", "", word_given_value},
    {"changed-value", "", "", word_given_value},
    {"forward-constant", "", "", word_forward_constant},
    {"forward-reference", "ORG needs a value that is known above this line"},
    {"bad-reservation", "RMB needs a size of 1 byte or more"},
    {"bad-delimiter", "values are separated by ','"},
    {"bad-constant-delimiter", "the value goes on with something that is no part of it"},
    {"non-ascii-character", "a character that is not ASCII: its bytes are taken as they are"},
    {"undefined-start", "", "", word_undefined_start},
    {"if-too-deep", "conditionals are nested too deeply: 19 is the most"},
    {"ifndef-too-deep", "conditionals are nested too deeply: 19 is the most"},
    {"elif-without-if", "#elif without a conditional above it"},
    {"elif-after-else", "#elif after the #else of its conditional"},
    {"else-without-if", "#else without a conditional above it"},
    {"else-after-else", "a second #else of one conditional"},
    {"endif-without-if", "#endif without a conditional above it"},
    {"error-directive", "", "", word_error_directive},
    {"macro-definition", "#define takes no parameters: the line is ignored"},
    {"open-continuation", "the source ends in a line that is to go on"},
    {"too-many-names", "there are too many names: 39,800 is the most"},
});
// clang-format on

Diagnostic diagnostic_of(const HeardReport &report, const Heard &heard) {
    Diagnostic diagnostic;
    diagnostic.severity =
        report.kind == door::Kind::kWarning ? Severity::kWarning : Severity::kError;
    diagnostic.id = report.id;
    diagnostic.file = heard.file;
    diagnostic.place = report.place;
    diagnostic.message = report.text;
    const auto *row = std::find_if(kWordings.begin(), kWordings.end(),
                                   [&](const Wording &each) { return each.id == report.id; });
    if (row == kWordings.end()) {
        return diagnostic;
    }
    if (!row->message.empty()) {
        diagnostic.message = row->message;
    }
    diagnostic.hint = row->hint;
    if (row->word != nullptr) {
        row->word({report, heard, diagnostic});
    }
    return diagnostic;
}

// ---- What follows from another report ----

constexpr std::array<std::string_view, 4> kAfterDigit = {
    "unterminated-expression", "missing-parenthesis", "missing-operator", "operand-expected"};

bool is_on_line_of(const HeardReport &one, const HeardReport &other) {
    return one.place.line == other.place.line;
}

// A character of several bytes has a report for each.
bool is_same_character(const HeardReport &report, const HeardReport &before) {
    return report.id == "non-ascii-character" && before.id == report.id &&
           report.place.first <= before.place.last;
}

bool follows(const HeardReport &report, const HeardReport &before) {
    if (!is_on_line_of(report, before)) {
        return false;
    }
    if (is_same_character(report, before)) {
        return true;
    }
    return before.id.ends_with("-digit") &&
           std::find(kAfterDigit.begin(), kAfterDigit.end(), report.id) != kAfterDigit.end();
}

// An error says all that the next one on its line does.
bool is_surpassed(const HeardReport &report, const HeardReport &next) {
    return report.id == "already-defined" && next.id == "changed-value" &&
           is_on_line_of(report, next);
}

// The lines on which names are defined for the last time, of those that are defined more than once.
using LastDefinitions = NameTable<int>;

LastDefinitions last_definitions(const Heard &heard) {
    LastDefinitions lines;
    for (const HeardReport &report : heard.reports) {
        if (report.id == "multiple-definition") {
            lines[report.words.label] = report.place.line;
        }
    }
    return lines;
}

// All labels after the first one have moved too, and of several definitions the first is not at
// fault.
bool is_needless(const HeardReport &report, const Heard &heard, const LastDefinitions &last) {
    if (report.id == "phase-error") {
        return !report.is_counted;
    }
    const auto known = heard.names.find(report.words.label);
    return report.id == "multiple-definition" && known != heard.names.end() &&
           known->second.place.line == report.place.line &&
           last.find(report.words.label)->second > report.place.line;
}

} // namespace

std::vector<Diagnostic> put_into_words(const Heard &heard) {
    std::vector<Diagnostic> diagnostics;
    const std::vector<HeardReport> &reports = heard.reports;
    const LastDefinitions last = last_definitions(heard);
    for (std::size_t i = 0; i < reports.size(); ++i) {
        const bool is_left_out =
            (i > 0 && follows(reports[i], reports[i - 1])) ||
            (i + 1 < reports.size() && is_surpassed(reports[i], reports[i + 1])) ||
            is_needless(reports[i], heard, last);
        if (!is_left_out) {
            diagnostics.push_back(diagnostic_of(reports[i], heard));
        }
    }
    return diagnostics;
}
