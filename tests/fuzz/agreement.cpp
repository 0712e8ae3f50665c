#include "tests/fuzz/agreement.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

[[noreturn]] void disagree(const char *what) {
    std::fprintf(stderr, "outputs disagree: %s\n", what);
    std::abort();
}

unsigned digit(char ch) {
    const std::string_view digits = "0123456789ABCDEF";
    const std::size_t value = digits.find(ch);
    if (value == std::string_view::npos) {
        disagree("a digit that is none");
    }
    return static_cast<unsigned>(value);
}

std::vector<unsigned> bytes_of(std::string_view digits) {
    std::vector<unsigned> bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes.push_back(digit(digits[i]) << 4U | digit(digits[i + 1]));
    }
    return bytes;
}

bool is_record(std::string_view line) {
    return line.size() >= 2 && line[0] == 'S' && line[1] >= '0' && line[1] <= '9';
}

// Calls visit with the type and the bytes, without length and checksum, of every record.
template <typename Visit> void for_each_record(std::string_view records, Visit visit) {
    while (!records.empty()) {
        const std::size_t end = records.find('\n');
        const std::string_view line = records.substr(0, end);
        records.remove_prefix(end == std::string_view::npos ? records.size() : end + 1);
        // Debug records follow; lines that they copy from the source may look like anything.
        if (line.substr(0, 3) == "SX:") {
            return;
        }
        if (!is_record(line)) {
            continue;
        }
        std::vector<unsigned> bytes = bytes_of(line.substr(2));
        unsigned sum = 0;
        for (const unsigned byte : bytes) {
            sum += byte;
        }
        if ((sum & 0xFFU) != 0xFF || bytes[0] != bytes.size() - 1) {
            disagree("length or checksum of a record");
        }
        visit(line[1] - '0', std::vector<unsigned>(bytes.begin() + 1, bytes.end() - 1));
    }
}

std::string format(const char *pattern, unsigned first, unsigned second) {
    char text[64];
    std::snprintf(text, sizeof text, pattern, first, second);
    return text;
}

} // namespace

void check_records(const std::string &records, const std::string &script) {
    std::string expected;
    for_each_record(records, [&expected](int, const std::vector<unsigned> &bytes) {
        for (std::size_t i = 2; i < bytes.size(); ++i) {
            const unsigned address = bytes[1] + static_cast<unsigned>(i) - 2;
            expected += format("\n #setMemory  %02X=%02X", address & 0xFFU, bytes[i]);
        }
    });
    const std::size_t header = script.find("\n # ClearAllRegisters");
    if (header == std::string::npos ||
        script.substr(header + std::string_view("\n # ClearAllRegisters").size()) != expected) {
        disagree("script and records");
    }
}

void check_array(const std::string &records, const std::string &array) {
    std::string expected = "const unsigned char algo[] = {\n";
    unsigned on_row = 0;
    for_each_record(records, [&](int type, const std::vector<unsigned> &bytes) {
        if (type > 3) {
            return;
        }
        for (std::size_t i = static_cast<std::size_t>(type) + 1; i < bytes.size(); ++i) {
            expected += format(on_row == 0 ? "0x%02X%.0u" : ",0x%02X%.0u", bytes[i], 0);
            if (++on_row == 16) {
                expected += ",\n";
                on_row = 0;
            }
        }
    });
    expected += on_row != 0 ? "\n};\n" : "};\n";
    if (array != expected) {
        disagree("C array and records");
    }
}
