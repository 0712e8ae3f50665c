// A text is cut into visible characters and other bytes. A table of first bytes says how long a
// character is and what its second byte may be, which is all that UTF-8 needs to leave out overlong
// forms and surrogates; later bytes are alike. Whether the descriptor is a terminal at all is asked
// only when there is a byte to hide, because hardly any text has one.
#include "util/terminal.h"

#include "util/descriptor.h"
#include "util/format.h"

#include <algorithm>
#include <array>

#include <unistd.h>

namespace {

constexpr unsigned char kDelete = 0x7F;

struct ByteRange {
    unsigned char first;
    unsigned char last;
};

// What the first byte of a character says about it.
struct Lead {
    std::size_t size; // bytes of the character; 0: no character begins so
    ByteRange second; // all later bytes are 80 to BF
};

// Overlong forms, surrogates and codes above 10FFFF are not characters; U+0080 to U+009F are
// controls, which terminals obey like those below 32.
Lead lead_of(unsigned char byte) {
    if (byte < kDelete) {
        return {byte >= ' ' || byte == '\t' || byte == '\n' ? 1U : 0U, {}};
    }
    switch (byte) {
    case 0xC2: return {2, {0xA0, 0xBF}};
    case 0xE0: return {3, {0xA0, 0xBF}};
    case 0xED: return {3, {0x80, 0x9F}};
    case 0xF0: return {4, {0x90, 0xBF}};
    case 0xF4: return {4, {0x80, 0x8F}};
    default: break;
    }
    const std::size_t size = byte < 0xC2   ? 0
                             : byte < 0xE0 ? 2
                             : byte < 0xF0 ? 3
                             : byte < 0xF4 ? 4
                                           : 0;
    return {size, {0x80, 0xBF}};
}

struct Character {
    std::size_t size; // bytes; 0: none begins here
    bool is_whole;    // otherwise the text ends within it
};

// The visible character at the start of a text that is not empty.
Character first_character(std::string_view text) {
    const auto byte_at = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const Lead lead = lead_of(byte_at(0));
    ByteRange range = lead.second;
    for (std::size_t i = 1; i < lead.size; ++i) {
        if (i == text.size()) {
            return {lead.size, false};
        }
        if (byte_at(i) < range.first || byte_at(i) > range.last) {
            return {0, true};
        }
        range = {0x80, 0xBF};
    }
    return {lead.size, true};
}

// The bytes of the whole visible characters that a text begins with.
std::size_t visible_size(std::string_view text) {
    std::size_t size = 0;
    while (size < text.size()) {
        const Character character = first_character(text.substr(size));
        if (character.size == 0 || !character.is_whole) {
            break;
        }
        size += character.size;
    }
    return size;
}

bool write_byte_by_name(int descriptor, char byte) {
    const std::string_view digits = hex_byte_text(static_cast<unsigned char>(byte));
    const std::array<char, 4> name = {'\\', 'x', digits[0], digits[1]};
    return write_fully(descriptor, {name.data(), name.size()});
}

bool write_escaped(int descriptor, std::string_view text) {
    bool written = true;
    while (written && !text.empty()) {
        const std::size_t size = visible_size(text);
        written = write_fully(descriptor, text.substr(0, size));
        text.remove_prefix(size);
        if (written && !text.empty()) {
            written = write_byte_by_name(descriptor, text.front());
            text.remove_prefix(1);
        }
    }
    return written;
}

} // namespace

// The longest end that begins a character and lacks its last bytes. A shorter one can't begin a
// character as well: later bytes of a character are no first bytes.
std::size_t begun_character_size(std::string_view text) {
    for (std::size_t size = std::min(kLongestBegunCharacter, text.size()); size > 0; --size) {
        const Character character = first_character(text.substr(text.size() - size));
        if (!character.is_whole) {
            return size;
        }
    }
    return 0;
}

bool TerminalGuard::is_terminal(int descriptor) {
    if (terminal_ == Answer::kUnknown) {
        terminal_ = isatty(descriptor) == 1 ? Answer::kYes : Answer::kNo;
    }
    return terminal_ == Answer::kYes;
}

bool TerminalGuard::write(int descriptor, std::string_view text) {
    if (visible_size(text) < text.size() && is_terminal(descriptor)) {
        return write_escaped(descriptor, text);
    }
    return write_fully(descriptor, text);
}
