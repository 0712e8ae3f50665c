// The command line on a random vector of arguments, one a line. No source can be opened.
#include "as/asMain.h"
#include "tests/fuzz/memory_files.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::vector<std::string> words = {"HXzirpa"};
    std::istringstream lines(std::string(reinterpret_cast<const char *>(data), size));
    for (std::string word; std::getline(lines, word);) {
        words.push_back(word);
    }
    std::vector<const char *> arguments;
    for (const std::string &word : words) {
        arguments.push_back(word.c_str());
    }
    const MemoryFiles files("f.szirpa", " NOP\n");
    (void)as_main(static_cast<int>(arguments.size()), arguments.data());
    return 0;
}
