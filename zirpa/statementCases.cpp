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

std::string hint_for_operation(std::string_view word) {
    const auto *foreign = std::find_if(
        kForeignWords.begin(), kForeignWords.end(),
        [name = door::upper(word)](const ForeignWord &row) { return row.word == name; });
    if (foreign != kForeignWords.end()) {
        return std::string(foreign->hint);
    }
    if (word.starts_with("#")) {
        return did_you_mean(nearest(word, door::conditional_words()));
    }
    std::vector<std::string> words = door::directives();
    for (const std::string_view instruction : door::instructions()) {
        words.emplace_back(instruction);
    }
    return did_you_mean(nearest(word, words));
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

// What is wrong with the form of an operand, for faults that nearly everyone makes once.
std::string hint_for_form(const LineWords &words) {
    const std::string &operand = words.operand;
    if (operand.empty()) {
        return {};
    }
    if (operand.find(';') != std::string::npos) {
        return "a comment needs a blank before it";
    }
    if (kGoingOn.find(operand.back()) != std::string_view::npos && words.goes_on) {
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
    each.diagnostic.hint = each.words().operation == "#if"
                               ? "an expression is tested by ##if"
                               : hint_for_operation(each.words().operation);
}

void word_bad_label(const Case &each) {
    const std::string word = each.report.pointed_at();
    each.diagnostic.message = quoted(word) + " can't be a label";
    if (word.starts_with("#")) {
        each.diagnostic.message = "unknown word " + quoted(word) + " of conditional assembly";
        each.diagnostic.hint =
            word == "#if" ? "an expression is tested by ##if" : hint_for_operation(word);
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
    each.diagnostic.hint = hint_for_form(each.words());
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
    each.diagnostic.hint = each.words().goes_on ? hint_for_form(each.words()) : "";
}
