// The words of the language, from the tables that the assembler itself reads.
#include "as/asOptions.h"
#include "as/asPseudo.h"
#include "door/door.h"
#include "door/fields.h"
#include "door/messages.h"
#include "target/optab.h"
#include "target/scan.h"
#include "util/text.h"

#include <algorithm>
#include <array>

namespace door {

namespace {

std::vector<std::string> words_of(const DirectiveEntry *table) {
    std::vector<std::string> words;
    for (const DirectiveEntry *entry = table; *entry->name != '\0'; ++entry) {
        words.emplace_back(entry->name);
    }
    return words;
}

bool is_same_word(std::string_view word, std::string_view upper) {
    return std::equal(word.begin(), word.end(), upper.begin(), upper.end(),
                      [](char one, char other) { return to_upper(one) == other; });
}

const Instruction *find_instruction(std::string_view word) {
    const auto *row = std::find_if(optab.begin(), optab.end(), [&](const Instruction &each) {
        return is_same_word(word, each.mnemonic);
    });
    return row == optab.end() ? nullptr : row;
}

struct RegisterName {
    int token;
    std::string_view name;
};

constexpr std::array<RegisterName, 5> kRegisters = {
    {{TOK_A, "A"}, {TOK_X, "X"}, {TOK_Y, "Y"}, {TOK_SP, "SP"}, {TOK_CC, "CC"}}};

std::string name_of_register(int token) {
    const auto *row = std::find_if(kRegisters.begin(), kRegisters.end(),
                                   [=](const RegisterName &each) { return each.token == token; });
    return std::string(row->name);
}

// Without columns for an empty piece.
Place place_of(const Piece &piece) {
    if (piece.is_empty()) {
        return {};
    }
    return {0, static_cast<int>(piece.begin) + 1, static_cast<int>(piece.end)};
}

std::string text_of(const RegisterPair &pair) {
    return name_of_register(pair.first) + "," + name_of_register(pair.second);
}

Opcode opcode_of(const OpcodeMeaning &meaning) {
    Opcode result;
    if (meaning.row == kNoMeaning) {
        return result;
    }
    const Instruction &row = optab[meaning.row];
    result.mnemonic = row.mnemonic;
    if (const auto pairs = register_pairs(row.coder); !pairs.empty()) {
        result.operand = text_of(pairs[meaning.form]);
    } else if (meaning.form != kNoMeaning) {
        const OperandForm &form = operand_forms[meaning.form];
        result.operand = form.text;
        result.has_byte = (form.mode & kByteOperandModes) != 0;
        result.is_branch = row.coder == kCodeBranch;
    }
    return result;
}

std::array<Opcode, 256> all_opcodes() {
    std::array<Opcode, 256> opcodes;
    std::transform(opcode_meanings.begin(), opcode_meanings.end(), opcodes.begin(), opcode_of);
    return opcodes;
}

} // namespace

std::vector<std::string_view> instructions() {
    std::vector<std::string_view> words(optab.size());
    std::transform(optab.begin(), optab.end(), words.begin(),
                   [](const Instruction &row) { return std::string_view(row.mnemonic); });
    return words;
}

std::vector<std::string> directives() {
    std::vector<std::string> words = words_of(pseudo_zirpa);
    for (std::string &word : words) {
        std::transform(word.begin(), word.end(), word.begin(), to_upper);
    }
    return words;
}

std::vector<std::string> conditional_words() {
    std::vector<std::string> words = words_of(macro_pure);
    for (std::string &word : words) {
        word.insert(0, 1, '#');
    }
    return words;
}

std::vector<std::string> operands_of(std::string_view instruction) {
    std::vector<std::string> operands;
    const Instruction *row = find_instruction(instruction);
    if (row == nullptr) {
        return operands;
    }
    for (const OperandForm &form : operand_forms) {
        if ((form.mode & row->mode_mask) != 0) {
            operands.emplace_back(form.text);
        }
    }
    for (const RegisterPair &pair : register_pairs(row->coder)) {
        operands.push_back(text_of(pair));
    }
    return operands;
}

std::vector<std::string_view> registers() {
    std::vector<std::string_view> names(kRegisters.size());
    std::transform(kRegisters.begin(), kRegisters.end(), names.begin(),
                   [](const RegisterName &row) { return row.name; });
    return names;
}

LineFields fields_of(std::string_view line) {
    const Fields fields = split(line);
    return {place_of(fields.label), place_of(fields.operation), place_of(fields.operand),
            fields.is_conditional};
}

const Opcode &opcode(std::uint8_t code) {
    static const std::array<Opcode, 256> opcodes = all_opcodes();
    return opcodes[code];
}

std::vector<std::string_view> identifiers() {
    std::vector<std::string_view> ids;
    for (const Message &message : messages()) {
        ids.push_back(message.id);
    }
    return ids;
}

const char *version() { return kVersion; }

} // namespace door
