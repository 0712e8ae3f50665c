// Text scanning: character classes and the family of small copy and skip functions.
//
// Sources are positions in a NUL-terminated text; each function returns the position where it
// stopped, so that callers can chain them. "None" is a null pointer, for arguments and results.
// Characters are compared as signed bytes: a byte of 128 or more is negative there, so it counts
// as a blank and ends words. The table below spells that out once; no locale takes part and the
// signedness of plain char makes no difference.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
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
    kClassOperandEnd = 0x80, // blanks and ",", behind which no expression goes on
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

// Eight characters as a number, the first one lowest. All of them must be readable.
inline std::uint64_t eight_characters(const char *p) {
    static_assert(std::endian::native == std::endian::little);
    std::uint64_t characters = 0;
    std::memcpy(&characters, p, sizeof characters);
    return characters;
}

// How many of them stand ahead of the first blank (isblanc): 0 to 8.
constexpr unsigned nonblanks_ahead(std::uint64_t characters) {
    constexpr std::uint64_t kTopBits = 0x8080808080808080U;
    // The sum sets a byte's top bit if its other bits make more than 32, and carries into no other.
    const std::uint64_t above_blank = (characters & ~kTopBits) + 0x5F5F5F5F5F5F5F5FU;
    const std::uint64_t blanks = ~(above_blank & ~characters) & kTopBits;
    return static_cast<unsigned>(std::countr_zero(blanks)) / 8;
}

// The first character that is no blank or tab. Unlike skipblanc it stops at other control
// characters and at bytes of 128 or more: they end words but don't stand ahead of them.
inline const char *skip_blanks_and_tabs(const char *p) {
    while (*p == ' ' || *p == '\t') {
        ++p;
    }
    return p;
}

// Skips characters above 32 (signed).
inline const char *skipnonblanc(const char *p) {
    if (p != nullptr) {
        while (!isblanc(*p)) {
            ++p;
        }
    }
    return p;
}

// Advances to the first c, or to the end.
const char *skip_to(const char *p, char c);

// Advances to the first name character; none if the text ends first.
const char *skipNameDelimiter(const char *p);

// Advances past characters below 33, "," and ";"; none if the text ends first.
const char *skipFNameDelimiter(const char *p);

// True if the text has at least two characters and ends in a backslash and a line feed.
bool line_continued(const char *s);

// True if the text has at least two characters and ends in "+" and a line feed.
bool line_divided(const char *s);

// Compares two texts up to their line ends: true if they agree up to a line end of either. A
// carriage return in a ends the comparison with true whatever b holds there; a line feed in a is a
// character like any other unless b has a line end there too.
bool nlstrcmp(const char *a, const char *b);

// True when the word at text equals name: letters of either case are equal, "/" and "\" are equal,
// the word ends at the first blank (isblanc) and the name at its NUL, and both must end together.
bool namecomparei(const char *text, const char *name);

// ---- Copies: each empties the destination first, the ...cat forms append ----

// The text up to its line end; no source gives an empty destination.
const char *nlstrcpy(std::string &d, const char *s);

// The text up to its line end, less a backslash ("+" for divstrcpy) as its last character. With no
// source such a character is removed from the end of the destination instead.
const char *clstrcpy(std::string &d, const char *s);
const char *divstrcpy(std::string &d, const char *s);
const char *clstrcat(std::string &d, const char *s);
const char *divstrcat(std::string &d, const char *s);

// Name characters. No source returns none.
const char *extractname(std::string &d, const char *s);
const char *copyCname(std::string &d, const char *s);

// Name characters and "=".
const char *copyMacroname(std::string &d, const char *s);

// At most n name characters (extractsizedname) or characters above 32 (extractsizedtoblanc). With
// n = 0 the destination is left unchanged and its own text is returned.
const char *extractsizedname(std::string &d, const char *s, std::size_t n);
const char *extractsizedtoblanc(std::string &d, const char *s, std::size_t n);

// The text up to the first c or the end; returns the position of c.
const char *extracttoskip(std::string &d, const char *s, char c);

// The text up to ":" or the first blank (isblanc).
const char *copyLabel(std::string &d, const char *s);

// If s starts with a double quote: the text up to the next one or the end, and the result is after
// it. Otherwise the characters above 32.
const char *copyquotedopt(std::string &d, const char *s);

// The text, without an opening double quote, up to the next one or the end; the result is after it.
const char *copyquoted(std::string &d, const char *s);

// The text between the first double quote and the next or the end; the result is the position of
// the closing quote or the end. With no quote: empty, and none.
const char *extractquoted(std::string &d, const char *s);

// The text from the first double quote up to one that is followed by a blank or the end. With no
// quote: empty, and none.
const char *extractquotedoption(std::string &d, const char *s);

// The bracketed text from the first open to the next close, both included, within max characters
// and before any control character. Returns the position after close, or none.
const char *extract(std::string &d, const char *s, char open, char close, std::size_t max);
