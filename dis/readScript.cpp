#include "dis/lines.h"
#include "dis/reading.h"

#include <algorithm>
#include <array>

namespace dis {

namespace {

constexpr std::string_view kSet = "#setMemory";

// What a command may be besides, and leaves no byte behind.
constexpr std::array<std::string_view, 2> kClearing = {"ClearAllMemory", "ClearAllRegisters"};

class ScriptReader {
  public:
    ScriptReader(std::string_view content, Program &program, Faults &faults)
        : lines_(content), program_(program), faults_(faults) {}

    void read_all() {
        while (!faults_.is_full() && lines_.next()) {
            read_line(lines_.text());
        }
    }

  private:
    void read_line(std::string_view line);
    void set(std::string_view line, std::string_view operand);
    void add(std::string_view id, std::string message, std::size_t begin, std::size_t end) {
        faults_.add(lines_.fault(id, std::move(message), begin, end));
    }

    Lines lines_;
    Program &program_;
    Faults &faults_;
    bool has_commands_ = false;
};

std::size_t offset_in(std::string_view line, std::string_view word) {
    return word.empty() ? line.size() : static_cast<std::size_t>(word.data() - line.data());
}

void ScriptReader::read_line(std::string_view line) {
    const auto *odd = std::find_if_not(line.begin(), line.end(), is_text_character);
    if (odd != line.end()) {
        const auto offset = static_cast<std::size_t>(odd - line.begin());
        add("bad-command", "this is no text", offset, offset + 1);
        return;
    }
    std::string_view rest = line;
    const std::string_view word = take_word(rest);
    const std::string_view operand = take_word(rest);
    const bool is_command = word.starts_with('#');
    has_commands_ = has_commands_ || is_command;
    if (word == kSet) {
        set(line, operand);
    } else if (is_command ? word != "#" || std::find(kClearing.begin(), kClearing.end(), operand) ==
                                               kClearing.end()
                          : has_commands_ && !word.empty()) {
        add("bad-command", "this command is not known", offset_in(line, word), line.size());
    }
}

void ScriptReader::set(std::string_view line, std::string_view operand) {
    const std::size_t sign = std::min(operand.find('='), operand.size());
    const auto address = number_of(operand.substr(0, sign), 16);
    const auto value = number_of(operand.substr(std::min(sign + 1, operand.size())), 16);
    const std::size_t begin = offset_in(line, operand);
    if (!address || !value || *value > 0xFF) {
        add("bad-command", "an address and a byte are expected: AA=BB", begin, line.size());
    } else if (!program_.image.set(*address, static_cast<std::uint8_t>(*value))) {
        Fault fault = fault_of_address(*address);
        add(fault.id, std::move(fault.message), begin, begin + sign);
    }
}

} // namespace

void read_script(std::string_view content, Program &program, Faults &faults) {
    ScriptReader(content, program, faults).read_all();
}

} // namespace dis
