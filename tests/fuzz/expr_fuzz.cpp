// The expression evaluator and the operand parser on a random line, in both kinds of passes.
#include "as/asMain.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asStreams.h"
#include "expr/evaluate.h"
#include "expr/record.h"
#include "symtab/symtab.h"
#include "target/operand.h"
#include "target/scan.h"
#include "tests/fuzz/memory_files.h"
#include "util/ahead.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

// Names pile up over the runs of a process; the table is emptied before it is full.
constexpr int kRunsPerTable = 1000;
int runs = 0;

void set_line(const std::uint8_t *data, std::size_t size) {
    Line.assign(reinterpret_cast<const char *>(data), size);
    Col_Ptr = Line_Ptr;
    scan_new_line();
}

// As conditional words do, on a copy with exactly the room to look ahead: any byte read after it is
// noticed.
void evaluate_copy() {
    const std::string_view text = Line.view();
    const auto copy = std::make_unique<char[]>(text.size() + kLookAhead);
    text.copy(copy.get(), text.size());
    (void)evalexp(copy.get(), 1, 0);
    Col_Ptr = Line.begin();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const MemoryFiles files("f.szirpa", "");
    if (runs++ % kRunsPerTable == 0) {
        start_up("HXzirpa");
        O_warn = 1;
    }
    for (const int final : {0, 1}) {
        Pass2 = final;
        set_line(data, size);
        (void)evalexp(Line.begin(), 1);
        set_line(data, size);
        evaluate_copy();
        set_line(data, size);
        (void)ppexpr(opnd1, 1);
        set_line(data, size);
        (void)Parse_Operand(opnd1);
        if (Col_Ptr < Line.begin() || Col_Ptr > Line.begin() + Line.length() + 1) {
            __builtin_trap();
        }
    }
    Pass2 = 0;
    standard_output.flush();
    return 0;
}
