// A name or number is finished unless "*", "/" or "%%" follows it at once; then it is part of a
// product, which is finished as a whole and ahead of what stands on its left. Parts that are
// finished are assembled on lines of their own.
#include "zirpa/lsp/steps.h"

#include "door/door.h"
#include "zirpa/lsp/tokens.h"

#include <algorithm>
#include <map>

namespace lsp {

namespace {

// More would hide what they show.
constexpr std::size_t kMostSteps = 12;
constexpr std::string_view kProbe = "\tFCB\t";

bool is_operand(const Token &token) {
    return token.kind == TokenKind::kName || token.kind == TokenKind::kNumber ||
           token.kind == TokenKind::kText;
}

bool goes_on(std::string_view rest) {
    return rest.starts_with('*') || rest.starts_with('/') || rest.starts_with("%%");
}

// What is finished, in its order.
class Parts {
  public:
    explicit Parts(std::string_view text) : text_(text) {
        add_operand_tokens(text, 0, text.size(), tokens_);
        for (const Token &token : tokens_) {
            take(token);
        }
    }

    std::vector<std::string> list() {
        const auto end = std::remove(parts_.begin(), parts_.end(), std::string(text_));
        parts_.erase(end, parts_.end());
        parts_.resize(std::min(parts_.size(), kMostSteps));
        return parts_;
    }

    const std::vector<Token> &tokens() const { return tokens_; }

  private:
    void add(std::size_t begin, std::size_t end, std::size_t operands) {
        if (operands > 1) {
            parts_.emplace_back(text_.substr(begin, end - begin));
        }
    }

    void take(const Token &token) {
        if (is_operand(token)) {
            ++operands_.back();
            product_ = factors_++ == 0 ? token.begin : product_;
            if (!goes_on(text_.substr(token.end))) {
                add(product_, token.end, operands_.back() > factors_ ? factors_ : 0);
                factors_ = 0;
                add(begins_.back(), token.end, operands_.back());
            }
        } else if (text_[token.begin] == '(') {
            begins_.push_back(token.end);
            operands_.push_back(0);
        } else if (text_[token.begin] == ')' && begins_.size() > 1) {
            close(token.end);
        }
    }

    // What stands in a parenthesis has been added, and what is left of it is finished with it.
    void close(std::size_t end) {
        begins_.pop_back();
        operands_.pop_back();
        factors_ = 0;
        add(begins_.back(), end, ++operands_.back());
    }

    std::string_view text_;
    std::vector<Token> tokens_;
    std::vector<std::string> parts_;
    std::vector<std::size_t> begins_ = {0};   // of the parentheses that are open
    std::vector<std::size_t> operands_ = {0}; // that they hold until now
    std::size_t product_ = 0;                 // where the product begins that goes on
    std::size_t factors_ = 0;
};

std::string definitions(std::string_view text, const std::vector<Token> &tokens,
                        const ValueOfName &value_of) {
    std::map<std::string_view, std::int32_t> values;
    for (const Token &token : tokens) {
        if (token.kind == TokenKind::kName) {
            values[text.substr(token.begin, token.end - token.begin)] =
                value_of(token.begin).value_or(0);
        }
    }
    std::string source;
    for (const auto &[name, value] : values) {
        source += std::string(name) + "\tEQU\t" + std::to_string(value) + "\n";
    }
    return source;
}

// The values of expressions, by the lines of a source.
std::map<int, std::int64_t> values_in(const std::string &source) {
    std::map<int, std::int64_t> values;
    door::Listener listener;
    listener.expression = [&](const door::Expression &expression) {
        values[expression.place.line] = expression.value;
    };
    (void)door::run({{}, "steps.szirpa", source, door::Outputs::kNowhere}, listener);
    return values;
}

} // namespace

std::vector<Step> steps_of(std::string_view text, const ValueOfName &value_of) {
    Parts parts(text);
    std::string source = definitions(text, parts.tokens(), value_of);
    auto line = static_cast<int>(std::count(source.begin(), source.end(), '\n'));
    const std::vector<std::string> list = parts.list();
    for (const std::string &part : list) {
        source += std::string(kProbe) + part + "\n";
    }
    const std::map<int, std::int64_t> values = values_in(source);
    std::vector<Step> steps;
    for (const std::string &part : list) {
        if (const auto value = values.find(++line); value != values.end()) {
            steps.push_back({part, value->second});
        }
    }
    return steps;
}

std::optional<std::int64_t> number_of(std::string_view text) {
    std::optional<std::int64_t> number;
    door::Listener listener;
    listener.definition = [&](const door::Definition &definition) { number = definition.value; };
    bool is_faulty = false;
    listener.report = [&](const door::Report & /*report*/) { is_faulty = true; };
    const std::string source = "n\tEQU\t" + std::string(text) + "\n";
    (void)door::run({{}, "number.szirpa", source, door::Outputs::kNowhere}, listener);
    return is_faulty ? std::nullopt : number;
}

} // namespace lsp
