#include "zirpa/cases.h"

#include "zirpa/phrases.h"
#include "zirpa/suggest.h"

#include <algorithm>
#include <array>

namespace {

// The operation of the line by name.
std::string operation_of(const Case &each) { return door::upper(each.words().operation); }

bool is_operation(std::string_view word) {
    const std::string name = door::upper(word);
    const std::vector<std::string_view> instructions = door::instructions();
    const std::vector<std::string> directives = door::directives();
    return std::find(instructions.begin(), instructions.end(), name) != instructions.end() ||
           std::find(directives.begin(), directives.end(), name) != directives.end();
}

struct ForeignWord {
    std::string_view word;
    std::string_view hint;
};

// Words that other assemblers have for the same thing.
constexpr std::array kForeignWords = std::to_array<ForeignWord>({
    {"=", "a name gets a value by EQU"},
    {"SET", "a name gets a value by EQU, once"},
    {"DB", "bytes are given by FCB"},
    {"DC", "bytes are given by FCB"},
    {"DC.B", "bytes are given by FCB"},
    {"DEFB", "bytes are given by FCB"},
    {".BYTE", "bytes are given by FCB"},
    {"BYTE", "bytes are given by FCB"},
    {"FCC", "a text is given by FCS, in double quotes"},
    {".ASCII", "a text is given by FCS, in double quotes"},
    {"FDB", "there are bytes only: FCB takes them one by one"},
    {"DW", "there are bytes only: FCB takes them one by one"},
    {"DS", "bytes are reserved by RMB"},
    {"DS.B", "bytes are reserved by RMB"},
    {"RESB", "bytes are reserved by RMB"},
    {".ORG", "the address is set by ORG"},
    {"INCLUDE", "a source is one file"},
    {"#INCLUDE", "a source is one file"},
    {"MACRO", "there are no macros"},
    {"CALL", "a subroutine is called by JSR or BSR"},
    {"RET", "a subroutine ends in RTS"},
    {"MOV", "a register is loaded by LDA, LDX or LDY, or copied by TFR"},
    {"JP", "a jump is JMP or BRA"},
});

// What stands where ##if is meant.
constexpr std::string_view kSingleHash = "#if";

// What is meant by an unknown word, as a hint and as fixes of the diagnostic's place.
void hint_at_words(const Case &each, const std::vector<std::string> &meant) {
    each.diagnostic.hint = did_you_mean(meant);
    offer_words(each.diagnostic, meant);
}

void hint_at_operation(const Case &each, std::string_view word) {
    if (word == kSingleHash) {
        each.diagnostic.hint = "an expression is tested by ##if";
        offer_words(each.diagnostic, {"##if"});
        return;
    }
    const auto *foreign = std::find_if(
        kForeignWords.begin(), kForeignWords.end(),
        [name = door::upper(word)](const ForeignWord &row) { return row.word == name; });
    if (foreign != kForeignWords.end()) {
        each.diagnostic.hint = foreign->hint;
        return;
    }
    if (word.starts_with("#")) {
        hint_at_words(each, nearest(word, door::conditional_words()));
        return;
    }
    std::vector<std::string> words = door::directives();
    for (const std::string_view instruction : door::instructions()) {
        words.emplace_back(instruction);
    }
    hint_at_words(each, nearest(word, words));
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        text += i == 0 ? "" : i + 1 == words.size() ? " or " : " ";
        text += words[i];
    }
    return text;
}

void hint_at_operands(const Case &each) {
    const std::vector<std::string> operands = door::operands_of(each.words().operation);
    if (!operands.empty()) {
        each.diagnostic.hint = "it takes " + joined(operands);
    }
}

// Characters after which an operand is to go on.
constexpr std::string_view kGoingOn = ",+-*/&|^=<>(#";

bool is_unbalanced(std::string_view text) {
    return std::count(text.begin(), text.end(), '(') != std::count(text.begin(), text.end(), ')');
}

// A fix that replaces bytes of the line, from one up to another, both counted from 0.
void offer_change(const Case &each, std::string title, std::size_t begin, std::size_t end,
                  std::string text) {
    each.diagnostic.fixes.push_back(
        {std::move(title),
         {each.report.place.line, static_cast<int>(begin) + 1, static_cast<int>(end)},
         std::move(text)});
}

// What is wrong with the form of an operand, for faults that nearly everyone makes once.
std::string hint_for_form(const Case &each) {
    const LineWords &words = each.words();
    const std::string &operand = words.operand;
    if (operand.empty()) {
        return {};
    }
    const std::string &line = each.report.place.text;
    const door::Place place = door::fields_of(line).operand;
    if (const std::size_t comment = operand.find(';'); comment != std::string::npos) {
        const std::size_t begin = static_cast<std::size_t>(place.first) - 1 + comment;
        offer_change(each, "Put a blank before the comment", begin, begin, " ");
        return "a comment needs a blank before it";
    }
    if (kGoingOn.find(operand.back()) != std::string_view::npos && words.goes_on) {
        const auto end = static_cast<std::size_t>(place.last);
        offer_change(each, "Remove the blank", end, line.find_first_not_of(" \t", end), "");
        return "a blank ends the operand: write it without";
    }
    if (operand.front() == '*') {
        return "there is no sign for the address of the line: use a label";
    }
    if (operand.back() == ':') {
        return "the colon belongs to the label's own line";
    }
    return is_unbalanced(operand) ? "a parenthesis is not closed" : "";
}

} // namespace

void word_unknown_instruction(const Case &each) {
    if (is_operation(each.words().label)) {
        each.diagnostic.place = each.words().label_place;
        each.diagnostic.message =
            quoted(each.words().label) + " begins the line and so is read as a label";
        each.diagnostic.hint = "an instruction needs a blank before it";
        each.diagnostic.fixes.push_back(
            {"Put a blank before it", {each.report.place.line, 1, 0}, "\t"});
        return;
    }
    if (!each.words().label.empty() && each.words().is_label_cut) {
        each.diagnostic.message =
            quoted(each.words().label + each.words().operation) + " can't be a label";
        each.diagnostic.hint = "names consist of letters, digits, '$', '.' and '_'";
        each.diagnostic.place.first = 1;
        return;
    }
    each.diagnostic.message = "unknown instruction " + quoted(each.words().operation);
    hint_at_operation(each, each.words().operation);
}

void word_bad_label(const Case &each) {
    const std::string word = each.report.pointed_at();
    each.diagnostic.message = quoted(word) + " can't be a label";
    if (word.starts_with("#")) {
        each.diagnostic.message = "unknown word " + quoted(word) + " of conditional assembly";
        hint_at_operation(each, word);
    } else if (word.starts_with("*") || word.starts_with("/")) {
        each.diagnostic.hint = "a comment begins with ';'";
    } else {
        each.diagnostic.hint = "a label begins with a letter or '_'";
    }
}

void word_operand(const Case &each) {
    const std::string operation = operation_of(each);
    if (each.words().operand.empty()) {
        each.diagnostic.message = operation + " needs an operand";
    } else {
        each.diagnostic.message = quoted(each.words().operand) + " is no operand of " + operation;
    }
    each.diagnostic.hint = hint_for_form(each);
    if (each.diagnostic.hint.empty()) {
        hint_at_operands(each);
    }
}

void word_operand_syntax(const Case &each) {
    if (operation_of(each) != "FCS") {
        word_operand(each);
    } else if (each.words().operand.starts_with("\"")) {
        each.diagnostic.message = "the text is not closed";
        each.diagnostic.hint = "a '\"' is missing at its end";
    } else {
        each.diagnostic.message = "FCS needs a text in double quotes";
    }
}

void word_addressing_mode(const Case &each) {
    each.diagnostic.message = operation_of(each) + " does not take " + quoted(each.words().operand);
    hint_at_operands(each);
}

void word_register_pair(const Case &each) {
    each.diagnostic.message = operation_of(each) + " needs two registers with a comma between";
    hint_at_operands(each);
}

void word_register_combination(const Case &each) {
    each.diagnostic.message =
        operation_of(each) + " has no form for the registers " + each.words().operand;
    hint_at_operands(each);
}

void word_unterminated(const Case &each) {
    each.diagnostic.message = "a value is missing here";
    each.diagnostic.hint = each.words().goes_on ? hint_for_form(each) : "";
}
