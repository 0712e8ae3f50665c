// Nearly all are copy_while with a condition of their own; the four that drop a mark share
// append_less_mark.
#include "util/text_unused.h"

#include "util/text.h"

namespace {

void drop_trailing(std::string &d, char mark) {
    if (!d.empty() && d.back() == mark) {
        d.pop_back();
    }
}

// Appends s up to its line end, without a mark as its last character.
const char *append_less_mark(std::string &d, const char *s, char mark) {
    if (s == nullptr) {
        drop_trailing(d, mark);
        return nullptr;
    }
    const char *p = s;
    while (!is_line_end(*p)) {
        ++p;
    }
    d.append(s, p);
    if (p != s) {
        drop_trailing(d, mark);
    }
    return p;
}

} // namespace

const char *skip_to(const char *p, char c) {
    while (*p != '\0' && *p != c) {
        ++p;
    }
    return p;
}

const char *skipNameDelimiter(const char *p) {
    while (*p != '\0' && !is_name_char(*p)) {
        ++p;
    }
    return *p == '\0' ? nullptr : p;
}

const char *skipFNameDelimiter(const char *p) {
    while (*p != '\0' && (isblanc(*p) || *p == ',' || *p == ';')) {
        ++p;
    }
    return *p == '\0' ? nullptr : p;
}

const char *skipnonblanc(const char *p) {
    if (p != nullptr) {
        while (!isblanc(*p)) {
            ++p;
        }
    }
    return p;
}

bool namecomparei(const char *text, const char *name) {
    while (!isblanc(*text) && *name != '\0') {
        const char left = *text == '\\' ? '/' : to_upper(*text);
        const char right = *name == '\\' ? '/' : to_upper(*name);
        if (left != right) {
            return false;
        }
        ++text;
        ++name;
    }
    return isblanc(*text) && *name == '\0';
}

bool line_continued(const char *s) { return ends_in_mark(s, '\\'); }

// Two lines are the same as long as neither says otherwise before one of them ends, so a line is
// the same as any that it begins.
bool nlstrcmp(const char *a, const char *b) {
    while (true) {
        if (*a == '\0' || *a == '\r') {
            return true;
        }
        if (is_line_end(*b)) {
            return true;
        }
        if (*a != *b) {
            // A carriage return right after a difference in a hides the difference.
            return a[1] == '\r';
        }
        ++a;
        ++b;
    }
}

const char *clstrcpy(std::string &d, const char *s) {
    if (s != nullptr) {
        d.clear();
    }
    return append_less_mark(d, s, '\\');
}

const char *divstrcpy(std::string &d, const char *s) {
    if (s != nullptr) {
        d.clear();
    }
    return append_less_mark(d, s, '+');
}

const char *clstrcat(std::string &d, const char *s) { return append_less_mark(d, s, '\\'); }

const char *divstrcat(std::string &d, const char *s) { return append_less_mark(d, s, '+'); }

const char *extractname(std::string &d, const char *s) {
    d.clear();
    return s == nullptr ? nullptr : copy_while(d, s, is_name_char);
}

const char *copyCname(std::string &d, const char *s) { return copy_while(d, s, is_name_char); }

const char *copyMacroname(std::string &d, const char *s) {
    return copy_while(d, s, [](char ch) { return is_name_char(ch) || ch == '='; });
}

const char *extractsizedtoblanc(std::string &d, const char *s, std::size_t n) {
    return n == 0 ? d.c_str()
                  : copy_while(
                        d, s, [](char ch) { return !isblanc(ch); }, n);
}

const char *copyLabel(std::string &d, const char *s) {
    return copy_while(d, s, [](char ch) { return ch != ':' && !isblanc(ch); });
}

const char *extractquoted(std::string &d, const char *s) {
    d.clear();
    const char *quote = skip_to(s, '"');
    return *quote == '\0' ? nullptr : extracttoskip(d, quote + 1, '"');
}

// A quote within the value is part of it; the one that ends it has a blank after it.
const char *extractquotedoption(std::string &d, const char *s) {
    d.clear();
    const char *quote = skip_to(s, '"');
    if (*quote == '\0') {
        return nullptr;
    }
    const char *p = quote + 1;
    while (*p != '\0' && !(*p == '"' && isblanc(p[1]))) {
        ++p;
    }
    d.assign(quote + 1, p);
    return p;
}

// The opening mark is looked for first, and belongs to the text like the closing one. A control
// character ends the search, because no text goes on over the end of a line.
const char *extract(std::string &d, const char *s, char open, char close, std::size_t max) {
    d.clear();
    const char *start = nullptr;
    for (std::size_t i = 0; i < max; ++i) {
        const char ch = s[i];
        const auto code = static_cast<unsigned char>(ch);
        if (code < 32 || code == 127) {
            break;
        }
        if (start != nullptr && ch == close) {
            d.assign(start, s + i + 1);
            return s + i + 1;
        }
        if (start == nullptr && ch == open) {
            start = s + i;
        }
    }
    return nullptr;
}
