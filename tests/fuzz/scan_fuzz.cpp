// The token scanner, over a random line in either mode, until it has passed the end of the text.
#include "as/asDiag.h"
#include "as/asPlace.h"
#include "target/operand.h"
#include "target/optab.h"
#include "target/scan.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

void set_line(const std::uint8_t *data, std::size_t size) {
    Line.assign(reinterpret_cast<const char *>(data), size);
    Col_Ptr = Line_Ptr;
    scan_new_line();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    for (const int mode : {kExpressionMode, kOperandMode}) {
        set_line(data, size);
        const char *end = Line.begin() + Line.length();
        while (Col_Ptr < end) {
            const char *before = Col_Ptr;
            (void)gettoken(mode);
            if (Col_Ptr <= before || Col_Ptr > end + 1) {
                __builtin_trap();
            }
        }
    }
    set_line(data, size);
    int first = 0;
    int second = 0;
    (void)ParseReglist(first, second);
    set_line(data, size);
    (void)ZIRPA_getmnem(mp);
    return 0;
}
