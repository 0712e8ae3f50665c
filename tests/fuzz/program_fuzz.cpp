// The whole program on a random source. The first byte chooses the options. Where the run ends
// without errors its outputs must agree.
#include "as/asData.h"
#include "as/asMain.h"
#include "tests/fuzz/agreement.h"
#include "tests/fuzz/memory_files.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

// Reserving more would only make the runs longer.
constexpr std::int64_t kReservationLimit = 1024;

std::vector<const char *> arguments_for(unsigned choice) {
    constexpr std::array<const char *, 8> kOptions = {"-L", "-S",       "-g",       "-A",
                                                      "-w", "-Cnocase", "-Cnopure", "-DFLAG"};
    std::vector<const char *> arguments = {"HXzirpa"};
    for (std::size_t i = 0; i < kOptions.size(); ++i) {
        if ((choice >> i & 1U) != 0) {
            arguments.push_back(kOptions[i]);
        }
    }
    arguments.push_back("f.szirpa");
    return arguments;
}

// Statements that random bytes hardly ever make; a replay has no use for them.
// clang-format off
[[maybe_unused]] constexpr std::array<const char *, 64> kStatements = {
    " LDA #5", " LDA N,X", " STA ,X+", " LDA A,Y", "N NOP", " BRA N", " JSR N", " TFR A,CC",
    " EXG SP,Y", " LEAX N,SP", " FCB 1,2,3", " FCB N,-1,$FF,%101,'A'", " FCS \"a\\tb\"", " FCS \"",
    " RMB 7", " RMB N", " ORG $10", " ORG N", " ORG $12345", " ORG $80000000", "N EQU 5",
    "N EQU M+1", "M EQU N", " END", " END N", " END *", "#ifdef N", "#ifndef N", "#else", "#endif",
    "#elif N", "##if N", "##if 1==1", "#define N 5", "#define M", "#error", "# define F(a)", "; text",
    "   ; text", "", "\t", ".stab init", ".stab func N:1:2:3:N:N:N", ".stab stmt 1,N",
    ".stab type a:b+", ".stab sym L:a:b:c:1:r", ".stab sym V:a:N:1:r+", ".stab sym v:a:N:1:r",
    ".stab sym f:a:Q:1:r", ".stab expr 1,", ".stab exec 2,3", ".stab zz", "A.$_ NOP", "N: NOP",
    " FCB 1<2,3", " FCB 1+6<<1,(1)2A", " FCB 10/0,10%0,5%%101", " FCB ((((1))))", " FCB !~-5",
    " LDA #12AB", " FCB 1(2", " FCB )(", " CMPX #$FF", " CLR A,X"};
// clang-format on

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t max_size);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size,
                                               std::size_t max_size, unsigned seed);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    reservation_limit = kReservationLimit;
    const std::string_view source(reinterpret_cast<const char *>(data) + 1, size - 1);
    const MemoryFiles files("f.szirpa", source);
    const std::vector<const char *> arguments = arguments_for(data[0]);
    const int status = as_main(static_cast<int>(arguments.size()), arguments.data());
    const std::string *records = files.output("f.s19");
    const std::string *script = files.output("f.fmem");
    if (status == 0 && records != nullptr && script != nullptr &&
        files.printed().find("No errors.") != std::string::npos) {
        check_records(*records, *script);
        const std::string *array = files.output("f_cout.c");
        if (array != nullptr && !array->empty()) {
            check_array(*records, *array);
        }
    }
    return 0;
}

#ifndef HXZIRPA_REPLAY
// Mutates by whole lines half of the time.
std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size, std::size_t max_size,
                                    unsigned seed) {
    std::minstd_rand random(seed);
    if (size < 2 || random() % 2 == 0) {
        return LLVMFuzzerMutate(data, size, max_size);
    }
    std::string text(reinterpret_cast<char *>(data), size);
    const auto pick_line = [&text, &random]() {
        const std::size_t end = text.find('\n', random() % text.size());
        return end == std::string::npos ? text.size() : end + 1;
    };
    switch (random() % 3) {
    case 0: {
        const std::string statement = kStatements[random() % kStatements.size()];
        text.insert(std::max<std::size_t>(pick_line(), 1), statement + "\n");
        break;
    }
    case 1: {
        const std::size_t first = pick_line();
        const std::size_t second = pick_line();
        if (first < second) {
            text.insert(pick_line(), text.substr(first, second - first));
        }
        break;
    }
    default: {
        const std::size_t first = std::max<std::size_t>(pick_line(), 1);
        const std::size_t end = text.find('\n', first);
        if (end != std::string::npos) {
            text.erase(first, end - first + 1);
        }
        break;
    }
    }
    text.resize(std::min(text.size(), max_size));
    std::memcpy(data, text.data(), text.size());
    return text.size();
}
#endif
