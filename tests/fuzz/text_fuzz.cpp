// The text primitives, numbers and paths on two random texts. Every position that is returned must
// lie within its text.
#include "util/number.h"
#include "util/number_unused.h"
#include "util/path.h"
#include "util/text.h"
#include "util/text_unused.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

void check(const std::string &text, const char *position) {
    if (position != nullptr && (position < text.c_str() || position > text.c_str() + text.size())) {
        __builtin_trap();
    }
}

void run_text(const std::string &text, const std::string &other, std::size_t limit) {
    const char *s = text.c_str();
    const char mark = other.empty() ? ':' : other[0];
    std::string d;
    for (const char *position : {skipblanc(s),
                                 skipnonblanc(s),
                                 skip_to(s, mark),
                                 skipNameDelimiter(s),
                                 skipFNameDelimiter(s),
                                 nlstrcpy(d, s),
                                 clstrcpy(d, s),
                                 divstrcpy(d, s),
                                 clstrcat(d, s),
                                 divstrcat(d, s),
                                 extractname(d, s),
                                 copyCname(d, s),
                                 copyMacroname(d, s),
                                 extracttoskip(d, s, mark),
                                 copyLabel(d, s),
                                 copyquotedopt(d, s),
                                 copyquoted(d, s),
                                 extractquoted(d, s),
                                 extractquotedoption(d, s),
                                 extract(d, s, '(', ')', limit),
                                 extractsizedname(d, s, limit + 1),
                                 extractsizedtoblanc(d, s, limit + 1),
                                 copyFname(d, s)}) {
        check(text, position);
    }
    (void)line_continued(s);
    (void)line_divided(s);
    (void)nlstrcmp(s, other.c_str());
    (void)namecomparei(s, other.c_str());
}

void run_numbers(const char *s) {
    std::uint32_t word = 0;
    std::uint64_t wide = 0;
    std::int64_t number = 0;
    (void)ascii_to_number(s, word);
    (void)ascii_to_longlong(s, number);
    for (const int base : {2, 10, 16}) {
        (void)base_to_number(s, word, base);
        (void)to_ulonglong(s, wide, base);
        (void)base_to_longlong(s, number, base);
    }
}

void run_paths(std::string text) {
    check(text, StringHasPath(text.c_str()));
    check(text, FilenameFromPath(text.c_str()));
    std::string d;
    PathFromPathName(d, text.c_str());
    const std::string canonical = PathCanonicalizeA(text);
    if (canonical.size() > text.size() + 1) {
        __builtin_trap();
    }
    winfilename(d, text);
    RemoveExtension(text);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string all(reinterpret_cast<const char *>(data), size);
    const std::size_t half = std::min(all.find('\n'), all.size());
    const std::string text = all.substr(0, half).c_str();
    const std::string other = all.substr(half).c_str();
    run_text(text, other, size % 16);
    run_numbers(text.c_str());
    run_paths(text);
    return 0;
}
