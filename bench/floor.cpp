// What an assembler of three passes can't do without: reading the source line by line three times
// and writing its output.
//
//     bench_floor SOURCE RECORD_BYTES SCRIPT_BYTES
//
// writes floor.s19 and floor.fmem into the working directory.
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kLine = 1024;
constexpr int kPasses = 3;

struct Output {
    std::FILE *file;
    long size;
    long written;
};

Output opened(const char *name, const char *size) {
    return {std::fopen(name, "w"), std::atol(size), 0};
}

// Writes on until the given share of the whole is there.
void write_share(Output &output, long line, long lines) {
    static char text[kLine];
    if (text[0] == '\0') {
        std::memset(text, '0', sizeof text);
    }
    long rest = output.size * line / lines - output.written;
    output.written += rest;
    while (rest > 0) {
        const long part = rest < kLine ? rest : kLine;
        std::fwrite(text, 1, static_cast<size_t>(part), output.file);
        rest -= part;
    }
}

void read_and_write(std::FILE *source, Output &records, Output &script) {
    char line[kLine];
    long lines = 0;
    for (int pass = 1; pass <= kPasses; ++pass) {
        long number = 0;
        std::rewind(source);
        while (std::fgets(line, sizeof line, source) != nullptr) {
            ++number;
            if (pass == kPasses) {
                write_share(records, number, lines);
                write_share(script, number, lines);
            }
        }
        lines = number;
    }
}

} // namespace

int main(int argc, char **argv) {
    std::FILE *source = argc == 4 ? std::fopen(argv[1], "r") : nullptr;
    if (source == nullptr) {
        std::fputs("usage: bench_floor SOURCE RECORD_BYTES SCRIPT_BYTES\n", stderr);
        return 1;
    }
    Output records = opened("floor.s19", argv[2]);
    Output script = opened("floor.fmem", argv[3]);
    if (records.file == nullptr || script.file == nullptr) {
        return 1;
    }
    read_and_write(source, records, script);
    return std::fclose(records.file) != 0 || std::fclose(script.file) != 0 ? 1 : 0;
}
