// What a C compiler would make of an array of numbers. Its head is not looked at closely: names and
// types are the writer's own.
#include "dis/lines.h"
#include "dis/reading.h"

#include <algorithm>

namespace dis {

namespace {

enum class Part { kHead, kValues, kTail };

bool is_word_character(char ch) {
    return (ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') ||
           ch == '_';
}

// As C has it: 0x for base 16, a leading 0 for base 8.
std::optional<std::uint32_t> value_of(std::string_view word) {
    if (word.starts_with("0x") || word.starts_with("0X")) {
        return number_of(word.substr(2), 16);
    }
    const bool is_octal = word.size() > 1 && word[0] == '0';
    return number_of(word, is_octal ? 8 : 10);
}

class ArrayReader {
  public:
    ArrayReader(std::string_view content, std::uint32_t base, Program &program, Faults &faults)
        : lines_(content), address_(base), program_(program), faults_(faults) {}

    void read_all();

  private:
    bool read_line();
    bool read_token();
    void skip_comment();
    bool head(char ch);
    bool values(std::string_view token);
    bool tail(char ch);
    bool take_value(std::string_view word);
    std::string_view token() const;
    bool refuse(std::string_view id, std::string message, std::size_t size = 1) {
        faults_.add(lines_.fault(id, std::move(message), offset_, offset_ + size));
        return false;
    }

    Lines lines_;
    std::uint32_t address_;
    Program &program_;
    Faults &faults_;
    std::size_t offset_ = 0; // in the line
    Part part_ = Part::kHead;
    bool in_comment_ = false;
    bool wants_comma_ = false;
};

// Nothing can be said of what comes after the first fault.
void ArrayReader::read_all() {
    while (lines_.next()) {
        offset_ = 0;
        if (!read_line()) {
            return;
        }
    }
    offset_ = lines_.text().size();
    if (part_ != Part::kTail || in_comment_) {
        (void)refuse("cut-file", "the array is not closed by }");
    }
}

bool ArrayReader::read_line() {
    while (offset_ < lines_.text().size()) {
        const std::string_view rest = lines_.text().substr(offset_);
        if (in_comment_) {
            skip_comment();
        } else if (rest.starts_with("//")) {
            return true;
        } else if (rest.starts_with("/*")) {
            in_comment_ = true;
            offset_ += 2;
        } else if (is_blank(rest[0])) {
            ++offset_;
        } else if (!read_token()) {
            return false;
        }
    }
    return true;
}

void ArrayReader::skip_comment() {
    const std::size_t end = lines_.text().find("*/", offset_);
    in_comment_ = end == std::string_view::npos;
    offset_ = in_comment_ ? lines_.text().size() : end + 2;
}

// A word, or one other character.
std::string_view ArrayReader::token() const {
    const std::string_view rest = lines_.text().substr(offset_);
    const auto *end = std::find_if_not(rest.begin(), rest.end(), is_word_character);
    return rest.substr(0, std::max<std::size_t>(1, static_cast<std::size_t>(end - rest.begin())));
}

bool ArrayReader::read_token() {
    const std::string_view found = token();
    const bool is_good = part_ == Part::kHead     ? head(found[0])
                         : part_ == Part::kValues ? values(found)
                                                  : tail(found[0]);
    offset_ += found.size();
    return is_good;
}

bool ArrayReader::head(char ch) {
    if (ch == '{') {
        part_ = Part::kValues;
    } else if (!is_word_character(ch) &&
               std::string_view("[]=*<>:,#").find(ch) == std::string_view::npos) {
        return refuse("bad-array", "this does not belong to the head of an array");
    }
    return true;
}

bool ArrayReader::values(std::string_view token) {
    if (token == "}") {
        part_ = Part::kTail;
        return true;
    }
    if (wants_comma_ != (token == ",")) {
        return refuse("bad-array",
                      wants_comma_ ? "a comma or } is expected" : "a value is expected",
                      token.size());
    }
    wants_comma_ = !wants_comma_;
    return token == "," || take_value(token);
}

bool ArrayReader::take_value(std::string_view word) {
    const std::optional<std::uint32_t> value = value_of(word);
    if (!value || *value > 0xFF) {
        return refuse("bad-array", "a value from 0 to 255 is expected", word.size());
    }
    if (!program_.image.set(address_, static_cast<std::uint8_t>(*value))) {
        Fault fault = fault_of_address(address_);
        return refuse(fault.id, std::move(fault.message), word.size());
    }
    ++address_;
    return true;
}

bool ArrayReader::tail(char ch) {
    return ch == ';' || refuse("bad-array", "after the array comes something else");
}

} // namespace

void read_array(std::string_view content, std::uint32_t base, Program &program, Faults &faults) {
    ArrayReader(content, base, program, faults).read_all();
}

} // namespace dis
