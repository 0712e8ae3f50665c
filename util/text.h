// Text scanning: character classes and the family of small copy and skip functions.
//
// Sources are positions in a NUL-terminated text; each function returns the position where it
// stopped, so that callers can chain them. A function that may be handed a null source says so.
// Characters are compared as signed bytes: a byte of 128 or more is negative there, so it counts
// as a blank and ends words. The table below spells that out once; no locale takes part and the
// signedness of plain char makes no difference.
//
// The members of the family that this assembler does not call are in util/text_unused.h.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Character classes, one bit each.
enum CharClass : std::uint8_t {
    kClassBlank = 0x01,      // codes 0 to 32 and 128 to 255
    kClassLetter = 0x02,     // ASCII letters
    kClassDigit = 0x04,      // 0 to 9
    kClassUnderscore = 0x08, // "_"
    kClassSymbolMark = 0x10, // "$" and ".", allowed inside symbols
    kClassDelimiter = 0x20,  // ends a number: blanks and the operator and bracket characters
    kClassRegister = 0x40,   // A, C, S, X and Y in either case, with which a register name begins
    kClassOperandEnd = 0x80, // blanks and ",", after which no expression goes on
};

consteval std::array<std::uint8_t, 256> make_char_classes() {
    std::array<std::uint8_t, 256> classes{};
    for (unsigned code = 0; code < 256; ++code) {
        unsigned bits = 0;
        if (code <= 32 || code >= 128) {
            bits |= kClassBlank | kClassDelimiter | kClassOperandEnd;
        }
        if ((code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z')) {
            bits |= kClassLetter;
        }
        if (code >= '0' && code <= '9') {
            bits |= kClassDigit;
        }
        classes[code] = static_cast<std::uint8_t>(bits);
    }
    classes['_'] |= kClassUnderscore;
    classes[','] |= kClassOperandEnd;
    classes['$'] |= kClassSymbolMark;
    classes['.'] |= kClassSymbolMark;
    for (const char mark : {'!', '%', '&', '(', ')', '*', '+', ',', '-', '.', '/', ':',
                            ';', '<', '=', '>', '[', ']', '^', '{', '|', '}', '~'}) {
        classes[static_cast<unsigned char>(mark)] |= kClassDelimiter;
    }
    for (const char letter : {'A', 'C', 'S', 'X', 'Y', 'a', 'c', 's', 'x', 'y'}) {
        classes[static_cast<unsigned char>(letter)] |= kClassRegister;
    }
    return classes;
}

inline constexpr std::array<std::uint8_t, 256> kCharClasses = make_char_classes();

// The characters from begin up to end.
constexpr std::string_view text_between(const char *begin, const char *end) {
    return {begin, static_cast<std::size_t>(end - begin)};
}

constexpr bool has_class(char ch, unsigned classes) {
    return (kCharClasses[static_cast<unsigned char>(ch)] & classes) != 0;
}

// True for every code below 33 and for the codes 128 to 255.
constexpr bool isblanc(char ch) { return has_class(ch, kClassBlank); }

// A letter, a digit or "_": what bare names and the test for registers are made of.
constexpr bool is_name_char(char ch) {
    return has_class(ch, kClassLetter | kClassDigit | kClassUnderscore);
}

// A letter, a digit, "_", "$" or ".": what symbols are made of.
constexpr bool is_symbol_char(char ch) {
    return has_class(ch, kClassLetter | kClassDigit | kClassUnderscore | kClassSymbolMark);
}

// Ends a number: a blank in the sense of isblanc, or one of ! % & ( ) * + , - . / : ; < = > [ ] ^
// { | } ~.
constexpr bool is_expression_delimiter(char ch) { return has_class(ch, kClassDelimiter); }

constexpr bool is_digit(char ch) { return has_class(ch, kClassDigit); }

// A terminator, a line feed or a carriage return.
constexpr bool is_line_end(char ch) { return ch == '\0' || ch == '\n' || ch == '\r'; }

constexpr char to_upper(char ch) {
    return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch;
}

// What digit_value gives for a character that is no digit: more than any base.
inline constexpr unsigned kNoDigit = 255;

consteval std::array<std::uint8_t, 256> make_digit_values() {
    std::array<std::uint8_t, 256> values{};
    values.fill(kNoDigit);
    for (unsigned i = 0; i < 10; ++i) {
        values['0' + i] = static_cast<std::uint8_t>(i);
    }
    for (unsigned i = 0; i < 6; ++i) {
        values['A' + i] = static_cast<std::uint8_t>(10 + i);
        values['a' + i] = static_cast<std::uint8_t>(10 + i);
    }
    return values;
}

inline constexpr std::array<std::uint8_t, 256> kDigitValues = make_digit_values();

// The value 0 to 15 of a hexadecimal digit of either case, or kNoDigit.
constexpr unsigned digit_value(char ch) { return kDigitValues[static_cast<unsigned char>(ch)]; }

// ---- Tests and skips ----

// Skips characters that are nonzero and below 33 (signed).
inline const char *skipblanc(const char *p) {
    if (p != nullptr) {
        while (*p != '\0' && isblanc(*p)) {
            ++p;
        }
    }
    return p;
}

// True if the text has at least two characters and ends in mark and a line feed.
bool ends_in_mark(const char *s, char mark);

// True for a debugger line that the next line continues: it ends in "+" and a line feed.
bool line_divided(const char *s);

// ---- Copies: each replaces what the destination held ----

// Characters while keep holds, at most n of them: what all other copies are made of.
template <typename Keep>
const char *copy_while(std::string &d, const char *s, Keep keep,
                       std::size_t n = std::string::npos) {
    const char *p = s;
    while (*p != '\0' && static_cast<std::size_t>(p - s) < n && keep(*p)) {
        ++p;
    }
    d.assign(s, p);
    return p;
}

// The text up to its line end; a null source gives an empty destination.
const char *nlstrcpy(std::string &d, const char *s);

// At most n name characters. With n = 0 the destination is left unchanged and its own text is
// returned.
const char *extractsizedname(std::string &d, const char *s, std::size_t n);

// The text up to the first c or the end; returns the position of c.
const char *extracttoskip(std::string &d, const char *s, char c);

// If s starts with a double quote: the text up to the next one or the end, and the result is after
// it. Otherwise the characters above 32.
const char *copyquotedopt(std::string &d, const char *s);

// The text, without an opening double quote, up to the next one or the end; the result is after it.
const char *copyquoted(std::string &d, const char *s);
