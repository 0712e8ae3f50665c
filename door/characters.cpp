// Characters, from the tables that the assembler itself reads.
#include "door/door.h"
#include "target/scan.h"
#include "util/ahead.h"
#include "util/text.h"

#include <algorithm>

namespace door {

bool is_digit(char ch) { return ::is_digit(ch); }

bool begins_name(char ch) { return is_name_char(ch) && !::is_digit(ch); }

bool is_name_character(char ch) { return is_symbol_char(ch); }

unsigned digit_value(char ch) { return ::digit_value(ch); }

std::string upper(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), to_upper);
    return result;
}

bool is_register(std::string_view name) {
    if (name.empty() || !begins_name(name.front())) {
        return false;
    }
    const std::string text = std::string(name) + std::string(kLookAhead, '\0');
    return scan_token(text.c_str(), kExpressionMode, TOK_END).token >= TOK_A;
}

} // namespace door
