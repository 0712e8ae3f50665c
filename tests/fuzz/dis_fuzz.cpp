// Random files for the readers of programs and of what belongs to them. The first byte chooses the
// reader. Every fault must have a place in the file. When inputs are replayed, a program without a
// fault must come back from its source, too: assembling takes a hundred times as long as reading.
#include "dis/graph.h"
#include "dis/reading.h"
#include "dis/source.h"
#include "dis/verification.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::array<dis::InputFormat, 4> kFormats = {
    dis::InputFormat::kRecords, dis::InputFormat::kScript, dis::InputFormat::kArray,
    dis::InputFormat::kImage};
constexpr unsigned kHints = 4;
constexpr unsigned kSymbols = 5;
constexpr std::uint32_t kBase = 0xF0;

#ifdef HXZIRPA_REPLAY
constexpr bool kIsReplay = true;
#else
constexpr bool kIsReplay = false;
#endif

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void check(const std::vector<dis::Fault> &faults, std::string_view content) {
    const auto lines = std::count(content.begin(), content.end(), '\n') + 1;
    require(faults.size() <= dis::kMostFaults);
    for (const dis::Fault &fault : faults) {
        require(!fault.id.empty() && !fault.message.empty());
        require(fault.line >= 0 && fault.line <= lines);
        require(fault.first == 0 ? fault.last == 0 : fault.first <= fault.last);
        require(fault.first <= static_cast<int>(fault.text.size()) + 1);
    }
}

void prove(const dis::Program &program) {
    const dis::Listing listing = dis::list(program, {});
    require(dis::difference(dis::source_of(listing, {true, true}), program).empty());
    (void)dis::graph_of(listing);
}

void read_program(unsigned choice, std::string_view content) {
    const dis::Reading reading = dis::read(content, kFormats[choice % kFormats.size()], kBase);
    check(reading.faults, content);
    (void)dis::format_of(content);
    if (kIsReplay && reading.faults.empty()) {
        prove(reading.program);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view content(reinterpret_cast<const char *>(data) + 1, size - 1);
    const unsigned choice = data[0];
    if (choice % 8 == kHints) {
        dis::Hints hints;
        check(dis::read_hints(content, hints), content);
        (void)dis::text_of(hints);
    } else if (choice % 8 == kSymbols) {
        std::vector<dis::Name> names;
        check(dis::read_symbols(content, names), content);
    } else {
        read_program(choice, content);
    }
    return 0;
}
