#include "zirpa/lsp/wordTexts.h"

#include "zirpa/lsp/tokens.h"

#include <algorithm>
#include <array>
#include <string>

namespace lsp {

namespace {

struct WordText {
    std::string_view word;
    std::string_view form;
    std::string_view text;
};

// clang-format off
constexpr std::array kTexts = std::to_array<WordText>({
    {"ORG", "[name] ORG address",
     "The next byte goes to this address, which must be known above this line. The first `ORG` is "
     "the start of the program, unless `END` names another one. A label on the line has the new "
     "address. Bytes above the first `ORG` get the address at which the source ends."},
    {"EQU", "name EQU value",
     "Gives the name this value, once. Constants are known ahead of labels: a name that is "
     "defined further down counts as 0 here when addresses are laid out, and a value that is "
     "computed from labels is known below this line only."},
    {"RMB", "[name] RMB size",
     "Reserves bytes, which are 0 in the outputs. The size is 1 or more, and must be known above "
     "this line: else all labels below move."},
    {"FCB", "[name] FCB value,value,...",
     "Bytes with these values, each from -256 to 255. A blank ends the list, so there is none "
     "after a comma; whatever follows it is a comment."},
    {"FCS", "[name] FCS \"text\"",
     "The characters of one text, with nothing at its end. `\\t` is a vertical tab (11), `\\b` 8, "
     "`\\n` 10, `\\r` 13; a backslash and a digit are that value, one digit only; `\\\"` and `\\\\` "
     "are the characters themselves. A quote right after the first one is a character: there is no "
     "empty text."},
    {"END", "END [name]",
     "Ends the source: nothing below is read. The name is that of the label at which the program "
     "starts; no expression is computed. Text after it that is no name, as a comment, keeps "
     "`END` from ending the final pass."},
    {"##IF", "##if expression",
     "Takes the lines up to `#elif`, `#else` or `#endif` if the expression is not 0. It has two "
     "hashes: `#if` opens nothing. A blank ends the expression."},
    {"#ELSE", "#else", "Takes the lines up to `#endif` if no branch above was taken."},
    {"#ENDIF", "#endif", "Ends a conditional. One that is left open is not reported by HXzirpa."},
    {"#ELIF", "#elif name",
     "Takes the lines below if no branch above was taken and the name is defined. It does not "
     "compute an expression."},
    {"#DEFINE", "#define name [value]",
     "Defines the name, as 0 where no value is given. There are no parameters, and a name that is "
     "defined already keeps its value."},
    {"#ERROR", "#error text", "Reports an error, unless the line is skipped."},
    {"#IFDEF", "#ifdef name",
     "Takes the lines up to `#elif`, `#else` or `#endif` if the name is defined. A label that is "
     "defined further down is not known when addresses are laid out, but in the final pass."},
    {"#IFNDEF", "#ifndef name",
     "Takes the lines up to `#elif`, `#else` or `#endif` if the name is not defined."},
});
// clang-format on

// A hash may stand apart from its word.
const WordText *find(std::string_view word) {
    std::string name = door::upper(word);
    std::erase_if(name, [](char ch) { return ch == ' ' || ch == '\t'; });
    const auto *row = std::find_if(kTexts.begin(), kTexts.end(),
                                   [&](const WordText &each) { return each.word == name; });
    return row == kTexts.end() ? nullptr : row;
}

} // namespace

std::string_view text_of_word(std::string_view word) {
    const WordText *row = find(word);
    return row == nullptr ? std::string_view() : row->text;
}

std::string_view form_of_word(std::string_view word) {
    const WordText *row = find(word);
    return row == nullptr ? std::string_view() : row->form;
}

} // namespace lsp
