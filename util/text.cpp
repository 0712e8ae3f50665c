// The functions read up to a NUL, a line end or a mark, and hand back where they have stopped, so
// that one can go on where another has ended.
#include "util/text.h"

#include <cstring>

bool ends_in_mark(const char *s, char mark) {
    const std::size_t length = std::strlen(s);
    return length >= 2 && s[length - 2] == mark && s[length - 1] == '\n';
}

bool line_divided(const char *s) { return ends_in_mark(s, '+'); }

const char *nlstrcpy(std::string &d, const char *s) {
    d.clear();
    return s == nullptr ? nullptr : copy_while(d, s, [](char ch) { return !is_line_end(ch); });
}

// A limit of 0 hands back the destination, which callers with a real limit never see.
const char *extractsizedname(std::string &d, const char *s, std::size_t n) {
    return n == 0 ? d.c_str() : copy_while(d, s, is_name_char, n);
}

const char *extracttoskip(std::string &d, const char *s, char c) {
    return copy_while(d, s, [c](char ch) { return ch != c; });
}

const char *copyquotedopt(std::string &d, const char *s) {
    return *s == '"' ? copyquoted(d, s) : copy_while(d, s, [](char ch) { return !isblanc(ch); });
}

const char *copyquoted(std::string &d, const char *s) {
    const char *end = extracttoskip(d, *s == '"' ? s + 1 : s, '"');
    return *end == '"' ? end + 1 : end;
}
