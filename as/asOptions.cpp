// The defaults stand twice: with the definitions for what uses a module alone, and in
// options_new_run because every run of a process begins with them.
#include "as/asOptions.h"

std::int16_t O_symtab = 0;
std::int16_t O_cout = 0;
std::int16_t O_symdebug = 0;
std::int16_t O_warn = 0;
std::int16_t O_symbol_case_sensitive = 1;
std::int16_t O_directive_style_pure = 1;
std::int16_t O_directive_style_native = 0;
std::int16_t O_directive_style_gnu = 0;
std::int16_t O_oflag = 0;
std::int16_t O_list = 0;
std::int16_t O_compiler_generated_input = 0;
std::int16_t O_aliased_input = 0;
int record_type = 2;

int Pass = 0;
int Pass2 = 0;

void options_new_run() {
    O_symtab = 0;
    O_cout = 0;
    O_symdebug = 0;
    O_warn = 0;
    O_symbol_case_sensitive = 1;
    O_directive_style_pure = 1;
    O_directive_style_native = 0;
    O_directive_style_gnu = 0;
    O_oflag = 0;
    O_list = 0;
    O_compiler_generated_input = 0;
    O_aliased_input = 0;
    record_type = 2;
    Pass = 0;
    Pass2 = 0;
}
