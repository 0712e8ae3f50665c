// Recursive descent by precedence. The depth is limited, so that no text exhausts the stack.
#include "zirpa/cExpression.h"

#include "door/door.h"

#include <array>
#include <limits>

namespace {

constexpr int kDeepest = 100;

struct Operator {
    std::string_view text;
    int precedence;
};

// The longer ones first, so that "<" is not taken for "<<".
constexpr std::array kOperators = std::to_array<Operator>({{"<<", 6},
                                                           {">>", 6},
                                                           {"<=", 5},
                                                           {">=", 5},
                                                           {"==", 4},
                                                           {"!=", 4},
                                                           {"&&", 0},
                                                           {"||", -1},
                                                           {"*", 8},
                                                           {"/", 8},
                                                           {"%", 8},
                                                           {"+", 7},
                                                           {"-", 7},
                                                           {"&", 3},
                                                           {"^", 2},
                                                           {"|", 1}});
constexpr int kLowest = -1;

// A part of the expression: its value, where it begins in what is written, and whether an operator
// joins two values in it. The part that was read last ends where that ends.
struct Part {
    std::int64_t value;
    std::size_t begin;
    bool is_joined;
};

std::uint64_t bits(std::int64_t value) { return static_cast<std::uint64_t>(value); }

std::int64_t number(std::uint64_t value) { return static_cast<std::int64_t>(value); }

std::optional<std::int64_t> divide(char sign, std::int64_t left, std::int64_t right) {
    if (right == 0 || (right == -1 && left == std::numeric_limits<std::int64_t>::min())) {
        return std::nullopt;
    }
    return sign == '/' ? left / right : left % right;
}

std::optional<std::int64_t> shift(char sign, std::int64_t left, std::int64_t right) {
    if (right < 0 || right > 63) {
        return std::nullopt;
    }
    return sign == '<' ? number(bits(left) << bits(right)) : left >> right;
}

std::optional<std::int64_t> compute(std::string_view sign, std::int64_t left, std::int64_t right) {
    if (sign == "<<" || sign == ">>") {
        return shift(sign[0], left, right);
    }
    if (sign == "==" || sign == "!=") {
        return (left == right) == (sign == "==") ? 1 : 0;
    }
    if (sign == "<=" || sign == ">=") {
        return (sign == "<=" ? left <= right : left >= right) ? 1 : 0;
    }
    if (sign == "&&" || sign == "||") {
        return (sign == "&&" ? left != 0 && right != 0 : left != 0 || right != 0) ? 1 : 0;
    }
    switch (sign[0]) {
    case '*': return number(bits(left) * bits(right));
    case '+': return number(bits(left) + bits(right));
    case '-': return number(bits(left) - bits(right));
    case '&': return left & right;
    case '|': return left | right;
    case '^': return left ^ right;
    default: return divide(sign[0], left, right);
    }
}

class Reader {
  public:
    Reader(std::string_view text, const NameValue &name_value)
        : text_(text), name_value_(name_value) {}

    std::optional<CReading> read() {
        const std::optional<Part> part = joined(kLowest);
        if (!part || at_ != text_.size()) {
            return std::nullopt;
        }
        return CReading{part->value, std::move(written_)};
    }

  private:
    char here() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    const Operator *operator_here() const {
        for (const Operator &row : kOperators) {
            if (text_.substr(at_).starts_with(row.text)) {
                return &row;
            }
        }
        return nullptr;
    }

    // Puts the part that was read last in parentheses where an operator joins it to another.
    void close(const Part &part) {
        if (part.is_joined) {
            written_.insert(part.begin, 1, '(');
            written_ += ')';
        }
    }

    // Values joined by operators of at least that precedence.
    std::optional<Part> joined(int precedence) {
        std::optional<Part> left = single();
        while (left) {
            const Operator *sign = operator_here();
            if (sign == nullptr || sign->precedence < precedence) {
                break;
            }
            at_ += sign->text.size();
            close(*left);
            written_ += sign->text;
            const std::optional<Part> right = joined(sign->precedence + 1);
            const auto value =
                right ? compute(sign->text, left->value, right->value) : std::nullopt;
            if (!value) {
                return std::nullopt;
            }
            close(*right);
            left = Part{*value, left->begin, true};
        }
        return left;
    }

    std::optional<Part> single() {
        if (++depth_ > kDeepest) {
            return std::nullopt;
        }
        std::optional<Part> part = is_sign(here()) ? signed_value()
                                   : here() == '(' ? group()
                                                   : value();
        --depth_;
        return part;
    }

    static bool is_sign(char ch) { return ch == '-' || ch == '~' || ch == '!'; }

    std::optional<Part> signed_value() {
        const char sign = text_[at_++];
        const std::size_t begin = written_.size();
        written_ += sign;
        const std::optional<Part> part = single();
        if (!part) {
            return std::nullopt;
        }
        const std::int64_t value = sign == '-'   ? number(-bits(part->value))
                                   : sign == '~' ? ~part->value
                                                 : static_cast<std::int64_t>(part->value == 0);
        close(*part);
        return Part{value, begin, true};
    }

    std::optional<Part> group() {
        ++at_;
        std::optional<Part> part = joined(kLowest);
        if (!part || here() != ')') {
            return std::nullopt;
        }
        ++at_;
        part->is_joined = true;
        return part;
    }

    std::optional<Part> value() {
        const std::size_t begin = at_;
        const char ch = here();
        std::optional<std::int64_t> result;
        if (door::begins_name(ch)) {
            while (door::is_name_character(here())) {
                ++at_;
            }
            result = name_value_(begin);
        } else if (ch == '\'') {
            result = character();
        } else {
            result = digits(ch == '$' ? 16 : ch == '%' ? 2 : 10);
        }
        if (!result) {
            return std::nullopt;
        }
        const std::size_t place = written_.size();
        written_ += text_.substr(begin, at_ - begin);
        return Part{*result, place, false};
    }

    std::optional<std::int64_t> character() {
        if (at_ + 2 >= text_.size() || text_[at_ + 2] != '\'') {
            return std::nullopt;
        }
        at_ += 3;
        return static_cast<signed char>(text_[at_ - 2]);
    }

    // A number has 32 bits, with a sign, as everywhere in a source.
    std::optional<std::int64_t> digits(unsigned base) {
        at_ += base == 10 ? 0 : 1;
        const std::size_t begin = at_;
        std::uint32_t value = 0;
        while (door::digit_value(here()) < base) {
            value = value * base + door::digit_value(text_[at_++]);
        }
        return at_ > begin ? std::optional<std::int64_t>(static_cast<std::int32_t>(value))
                           : std::nullopt;
    }

    std::string_view text_;
    const NameValue &name_value_;
    std::size_t at_ = 0;
    std::string written_; // with all parentheses that the assembler needs
    int depth_ = 0;
};

} // namespace

std::optional<CReading> read_as_c(std::string_view text, const NameValue &name_value) {
    return Reader(text, name_value).read();
}
