// Prints the instruction set as a table for the manual and the editors: a line for each form of
// each mnemonic, with columns separated by tabs.
//
// Every combination is put before the program's own encoders, so the table cannot say anything else
// than what the program does.
#include "as/asLine.h"
#include "as/asList.h"
#include "as/asMain.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "target/emit.h"
#include "target/encode.h"
#include "target/optab.h"
#include "target/scan.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr std::array<const char *, 5> kRegisters = {{"A", "CC", "X", "Y", "SP"}};

// Stands for "n": a value that every form can hold, and that a branch at address 0 can reach.
constexpr char kValue = '5';

// Those forms and all register pairs; some pairs are among the forms already.
std::vector<std::string> all_forms() {
    std::vector<std::string> forms;
    for (const OperandForm &form : operand_forms) {
        forms.emplace_back(form.text);
    }
    for (const char *first : kRegisters) {
        for (const char *second : kRegisters) {
            const std::string pair = std::string(first) + "," + second;
            if (std::find(forms.begin(), forms.end(), pair) == forms.end()) {
                forms.push_back(pair);
            }
        }
    }
    return forms;
}

std::string operand_of(std::string form) {
    std::replace(form.begin(), form.end(), 'n', kValue);
    return form;
}

// Puts the scan position on the operand of an instruction.
void begin(const std::string &mnemonic_text, const std::string &form) {
    const std::string text = " " + mnemonic_text + " " + operand_of(form) + "\n";
    Line.assign(text.data(), text.size());
    Line_Ptr = Line.begin();
    Col_Ptr = Line_Ptr + 1;
    scan_new_line();
    emit_new_line();
    location_new_pass();
    ZIRPA_getmnem(mp);
    SkipSpace();
}

// True when the instruction takes the form. Before the final pass nothing is reported.
bool is_accepted(const std::string &mnemonic_text, const std::string &form) {
    Pass2 = 0;
    begin(mnemonic_text, form);
    return CodeLine() >= 0;
}

void print_row(const std::string &mnemonic_text, const std::string &form) {
    Pass2 = 1;
    begin(mnemonic_text, form);
    outrecinit(kDataRecord16, LC);
    CodeLine();
    std::printf("%s\t%s\t%02X\t%zu\n", mnemonic_text.c_str(), form.c_str(), unsigned{Code[0]},
                code_i);
}

// Where no operand is needed, none is looked at.
void print_rows(const std::string &mnemonic_text, const std::vector<std::string> &forms) {
    if (is_accepted(mnemonic_text, "")) {
        print_row(mnemonic_text, "");
        return;
    }
    for (const std::string &form : forms) {
        if (is_accepted(mnemonic_text, form)) {
            print_row(mnemonic_text, form);
        }
    }
}

} // namespace

int main() {
    start_up("instruction_table");
    const std::vector<std::string> forms = all_forms();
    std::puts("mnemonic\tform\topcode\tlength");
    for (const Instruction &row : optab) {
        print_rows(row.mnemonic, forms);
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
