// Prints the words of the language and of the command line as JSON, for the documents, the editors'
// files and the tests that hold these against the program.
//
// The words come from the program's own tables. What an instruction or a register is, is found out
// by trying: every combination is put before the program's own encoders, so nothing else can be
// printed than what the program does. All words are of printing characters without quotes and
// backslashes, so no character needs an escape.
#include "as/asCommand.h"
#include "as/asLine.h"
#include "as/asMain.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "target/emit.h"
#include "target/encode.h"
#include "target/location.h"
#include "target/operand.h"
#include "target/optab.h"
#include "target/scan.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

// Stands for "n" in a form: a value that every form can hold, and that a branch at address 0 can
// reach.
constexpr char kValue = '5';

// ---- Registers and forms ----

// Puts the scan position on the second character of a line.
void begin(const std::string &text) {
    Line.assign(text.data(), text.size());
    Col_Ptr = Line_Ptr + 1;
    scan_new_line();
    emit_new_line();
    location_new_pass();
}

// The registers by their tokens: of all names of one or two letters those that a pair is made of.
std::map<int, std::string> registers_by_token() {
    Words names;
    for (char first = 'A'; first <= 'Z'; ++first) {
        names.push_back({first});
        for (char second = 'A'; second <= 'Z'; ++second) {
            names.push_back({first, second});
        }
    }
    std::map<int, std::string> found;
    for (const std::string &name : names) {
        begin(" " + name + "," + name + "\n");
        int token = 0;
        if (int other = 0; ParseReglist(token, other) != 0) {
            found[token] = name;
        }
    }
    return found;
}

Words registers() {
    Words words;
    for (const auto &[token, name] : registers_by_token()) {
        words.push_back(name);
    }
    return words;
}

Words forms() {
    Words texts;
    for (const OperandForm &form : operand_forms) {
        texts.emplace_back(form.text);
    }
    return texts;
}

// All forms and register pairs; some pairs are among the forms already.
Words all_operands() {
    Words operands = forms();
    for (const std::string &first : registers()) {
        for (const std::string &second : registers()) {
            const std::string pair = first + "," + second;
            if (std::find(operands.begin(), operands.end(), pair) == operands.end()) {
                operands.push_back(pair);
            }
        }
    }
    return operands;
}

// ---- Instructions ----

// Encodes an instruction in that form; its bytes are in Code in the final pass, before which
// nothing is reported. False when the instruction does not take the form.
bool encode(const std::string &name, std::string operand, int final_pass) {
    Pass2 = final_pass;
    std::replace(operand.begin(), operand.end(), 'n', kValue);
    begin(" " + name + " " + operand + "\n");
    outrecinit(kDataRecord16, LC);
    ZIRPA_getmnem(mp);
    SkipSpace();
    return CodeLine() >= 0;
}

void print_instruction(const std::string &name, const std::string &operand, const char *separator) {
    encode(name, operand, 1);
    std::printf(
        "%s\n  {\"mnemonic\": \"%s\", \"form\": \"%s\", \"opcode\": \"%02X\", \"length\": %zu}",
        separator, name.c_str(), operand.c_str(), unsigned{Code[0]}, code_i);
}

// What the instruction takes. Where no operand is needed, none is looked at.
Words accepted(const std::string &name, const Words &operands) {
    if (encode(name, "", 0)) {
        return {""};
    }
    Words words;
    std::copy_if(operands.begin(), operands.end(), std::back_inserter(words),
                 [&](const std::string &operand) { return encode(name, operand, 0); });
    return words;
}

void print_instructions() {
    const Words operands = all_operands();
    const char *separator = "";
    std::printf("{\n \"instructions\": [");
    for (const Instruction &row : optab) {
        for (const std::string &operand : accepted(row.mnemonic, operands)) {
            print_instruction(row.mnemonic, operand, separator);
            separator = ",";
        }
    }
    std::printf("\n ]");
}

// What each opcode is read as, in the order of opcodes; empty where no instruction has it.
Words meanings() {
    std::map<int, std::string> names = registers_by_token();
    Words texts;
    for (const OpcodeMeaning &meaning : opcode_meanings) {
        std::string text;
        if (meaning.row != kNoMeaning) {
            const auto pairs = register_pairs(optab[meaning.row].coder);
            text = optab[meaning.row].mnemonic;
            if (!pairs.empty()) {
                const RegisterPair &pair = pairs[meaning.form];
                text += " " + names[pair.first] + "," + names[pair.second];
            } else if (meaning.form != kNoMeaning) {
                text += std::string(" ") + operand_forms[meaning.form].text;
            }
        }
        texts.push_back(text);
    }
    return texts;
}

// ---- Tables of words ----

Words words_of(const DirectiveEntry *table) {
    Words words;
    for (const DirectiveEntry *entry = table; *entry->name != '\0'; ++entry) {
        words.emplace_back(entry->name);
    }
    return words;
}

template <typename Table> Words texts_of(const Table &table) {
    Words words;
    for (const auto &row : table) {
        words.emplace_back(row.text);
    }
    return words;
}

Words value_options() {
    Words words;
    for (const ValueOption &option : kValueOptions) {
        words.push_back({'-', option.letter});
    }
    return words;
}

void print_words(const char *name, const Words &words) {
    const char *separator = "";
    std::printf(",\n \"%s\": [", name);
    for (const std::string &word : words) {
        std::printf("%s\"%s\"", separator, word.c_str());
        separator = ", ";
    }
    std::printf("]");
}

} // namespace

int main() {
    start_up("program_words");
    print_instructions();
    print_words("opcodes", meanings());
    print_words("forms", forms());
    print_words("registers", registers());
    print_words("directives", words_of(pseudo_zirpa));
    print_words("conditionals", words_of(macro_pure));
    print_words("switches", texts_of(kSwitches));
    print_words("record_options", texts_of(kRecordOptions));
    print_words("value_options", value_options());
    print_words("compatibility_words", texts_of(kCompatibilityWords));
    std::printf("\n}\n");
    return std::fflush(stdout) == 0 ? 0 : 1;
}
