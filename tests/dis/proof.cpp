// Proves that a source which is made of a program assembles to that program again.
//
//     dis_proof --sequences            every sequence of one and of two bytes, alone
//     dis_proof --together             the same, many of them in one program
//     dis_proof COUNT SEED             so many random programs, with random hints
//     dis_proof --time                 how long programs of 256 bytes and of 64 KiB take; it fails
//                                      beyond 1 and 10 milliseconds
//
// Each is disassembled, assembled and compared; the hints that are saved must bring the same source
// back, and the records that the assembler makes must, too. The first that doesn't ends the run.
#include "dis/lines.h"
#include "dis/reading.h"
#include "dis/source.h"
#include "dis/verification.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using dis::Hints;
using dis::Program;

std::string source_of(const Program &program, const Hints &hints) {
    return dis::source_of(dis::list(program, hints), {});
}

void fail(const Program &program, const Hints &hints, const std::string &why) {
    std::printf("%s\nhints:\n%ssource:\n%s", why.c_str(), dis::text_of(hints).c_str(),
                source_of(program, hints).c_str());
    std::exit(1);
}

void prove(const Program &program, const Hints &hints) {
    const dis::Listing listing = dis::list(program, hints);
    const std::string source = dis::source_of(listing, {});
    if (const std::string why = dis::difference(source, program); !why.empty()) {
        fail(program, hints, why);
    }
    const Hints saved = dis::hints_of(listing);
    if (source_of(program, saved) != source) {
        std::printf("saved:\n%s", dis::text_of(saved).c_str());
        std::printf("%s", source_of(program, saved).c_str());
        fail(program, hints, "the saved hints give another source");
    }
    Hints again;
    if (!dis::read_hints(dis::text_of(saved), again).empty() ||
        dis::text_of(again) != dis::text_of(saved)) {
        fail(program, hints, "the saved hints can't be read");
    }
}

// ---- Every short sequence ----

Program program_of(const std::vector<std::uint8_t> &bytes, std::uint32_t base) {
    Program program;
    for (const std::uint8_t byte : bytes) {
        program.image.set(base++, byte);
    }
    return program;
}

int prove_sequences() {
    for (unsigned first = 0; first < 256; ++first) {
        prove(program_of({static_cast<std::uint8_t>(first)}, 0x10), {});
        for (unsigned second = 0; second < 256; ++second) {
            prove(program_of({static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(second)},
                             0x10),
                  {});
        }
    }
    std::printf("%d sequences\n", 256 + 256 * 256);
    return 0;
}

// Each stands alone, with a gap after it, and has a path of its own. Far quicker.
int prove_together() {
    constexpr std::uint32_t kStep = 4;
    for (std::uint32_t first = 0; first < 256 * 256; first += dis::kAddresses / kStep) {
        Program program;
        Hints hints;
        for (std::uint32_t at = 0; at < dis::kAddresses; at += kStep) {
            const std::uint32_t sequence = first + at / kStep;
            program.image.set(at, static_cast<std::uint8_t>(sequence >> 8U));
            program.image.set(at + 1, static_cast<std::uint8_t>(sequence));
            hints.code.push_back(at);
        }
        prove(program, hints);
    }
    for (unsigned byte = 0; byte < 256; ++byte) {
        prove(program_of({static_cast<std::uint8_t>(byte)}, 0x10), {});
    }
    std::printf("all sequences\n");
    return 0;
}

// ---- Random programs ----

class Maker {
  public:
    explicit Maker(unsigned long seed) : engine_(seed) {}

    Program program();
    Hints hints();

  private:
    std::uint32_t below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(engine_() % limit);
    }
    std::uint8_t byte(unsigned taste);
    std::uint32_t address();

    std::mt19937_64 engine_;
    std::uint32_t base_ = 0;
    std::uint32_t size_ = 0;
};

// Some programs are mostly numbers, others texts, zeros, or addresses of their own.
std::uint8_t Maker::byte(unsigned taste) {
    switch (taste) {
    case 1: return static_cast<std::uint8_t>(0x20 + below(0x60));
    case 2: return static_cast<std::uint8_t>(below(4) == 0 ? below(256) : 0);
    case 3: return static_cast<std::uint8_t>(base_ + below(std::max(size_, 1U)));
    case 4: return static_cast<std::uint8_t>(0x20 + below(0x20)); // branches and direct stores
    case 5: return static_cast<std::uint8_t>(std::string_view("\"\\\n\r\v\b'; \tA0")[below(12)]);
    default: return static_cast<std::uint8_t>(below(256));
    }
}

std::uint32_t Maker::address() { return (base_ + below(size_ + 8)) % dis::kAddresses; }

Program Maker::program() {
    static constexpr std::array<std::uint32_t, 8> kBases = {0,    0,    0x10,  0x10,
                                                            0x80, 0xF0, 0x100, 0xFFC0};
    Program program;
    size_ = below(8) == 0 ? below(300) : below(48);
    base_ = kBases[below(kBases.size())];
    const unsigned gap = below(3) == 0 ? 8 : 1000;
    unsigned taste = below(8);
    for (std::uint32_t i = 0; i < size_ && base_ + i < dis::kAddresses; ++i) {
        taste = below(12) == 0 ? below(8) : taste;
        if (below(gap) != 0) {
            program.image.set(base_ + i, byte(taste));
        }
    }
    if (below(2) == 0) {
        program.entry = address();
    }
    return program;
}

Hints Maker::hints() {
    static constexpr std::array<std::string_view, 12> kNames = {
        "start", "L10", "L12", "a1", "XX", "SPX", "_", "end.", "L$", "entry", "FCB", "org"};
    Hints hints;
    for (unsigned count = below(3) == 0 ? below(4) : 0; count > 0; --count) {
        hints.code.push_back(address());
    }
    for (unsigned count = below(3) == 0 ? below(4) : 0; count > 0; --count) {
        const std::uint32_t first = address();
        const std::uint32_t last = std::min(first + below(12), dis::kAddresses - 1);
        hints.ranges.push_back({static_cast<dis::HintKind>(1 + below(3)), first, last});
    }
    for (unsigned count = below(3) == 0 ? below(6) : 0; count > 0; --count) {
        const std::uint32_t where = below(4) == 0 ? below(256) : address();
        hints.names.push_back({std::string(kNames[below(kNames.size())]), where});
    }
    return hints;
}

int prove_random(unsigned long count, unsigned long seed) {
    Maker maker(seed);
    for (unsigned long i = 0; i < count; ++i) {
        const Program program = maker.program();
        prove(program, maker.hints());
    }
    std::printf("%lu random programs\n", count);
    return 0;
}

// ---- Time ----

// Of the processor, so that other work on the machine counts little.
double milliseconds(const std::string &records) {
    double best = 1e9;
    for (int i = 0; i < 20; ++i) {
        const std::clock_t begin = std::clock();
        const dis::Reading reading = dis::read(records, dis::InputFormat::kRecords, 0);
        const std::string source = source_of(reading.program, {});
        const double time = 1e3 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        best = std::min(best, source.empty() ? 1e9 : time);
    }
    return best;
}

std::string records_of(std::uint32_t size, unsigned kind) {
    std::mt19937_64 engine(1);
    std::string text;
    for (std::uint32_t at = 0; at < size; at += 16) {
        unsigned sum = 19 + (at >> 8U) + (at & 0xFFU);
        text += "S113" + dis::hex(at, 4);
        for (int i = 0; i < 16; ++i) {
            const unsigned byte = kind == 0 ? 0x12U : static_cast<unsigned>(engine() & 0xFFU);
            sum += byte;
            text += dis::hex(byte);
        }
        text += dis::hex(~sum & 0xFFU) + "\n";
    }
    return text + "S9030000FC\n";
}

int show_times() {
    bool is_quick = true;
    for (const std::uint32_t size : {256U, 65536U}) {
        const double code = milliseconds(records_of(size, 0));
        const double random = milliseconds(records_of(size, 1));
        std::printf("%u bytes: code %.3f ms, random %.3f ms\n", size, code, random);
        is_quick = is_quick && std::max(code, random) < (size == 256 ? 1 : 10);
    }
    return is_quick ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    const std::string_view word = argc > 1 ? argv[1] : "";
    if (word == "--sequences") {
        return prove_sequences();
    }
    if (word == "--together") {
        return prove_together();
    }
    if (word == "--time") {
        return show_times();
    }
    if (argc != 3) {
        std::fputs("usage: dis_proof --sequences | --together | --time | COUNT SEED\n", stderr);
        return 2;
    }
    return prove_random(std::strtoul(argv[1], nullptr, 10), std::strtoul(argv[2], nullptr, 10));
}
