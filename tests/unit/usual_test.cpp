// The one-go way through expressions, held against the steps, which know all of them.
#include "expr/usual.h"

#include "as/asOptions.h"
#include "as/asPlace.h"
#include "expr/check.h"
#include "expr/evaluate.h"
#include "expr/record.h"
#include "symtab/symtab.h"
#include "target/scan.h"
#include "tests/unit/support.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

// All that an expression leaves for others.
struct Traces {
    std::int64_t value = 0;
    std::ptrdiff_t column = 0;
    int previous_token = 0;
    int forward_references = 0;
    const Symbol *last_forward = nullptr;
    std::int32_t symbol_size = 0;
    std::vector<const Symbol *> symbols;

    bool operator==(const Traces &) const = default;
};

class UsualExpression : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        Pass = 1;
        Pass2 = 0;
        begin_line("");
        realline = 5;
        listline = 5;
        for (const std::string_view name : {"one", "Loop_2", "a_long_name_of_a_port", "v.1"}) {
            defsym(name, static_cast<std::int64_t>(name.size()) * 7 - 20, 0);
        }
        putsym("size", -3, 1, SYM_DEFINED | SYM_ABSOLUTE, kNameKind, nullptr, kNoData);
        realline = 90;
        listline = 90;
        defsym("later", 40, 0);
        realline = 50;
        listline = 50;
        (void)refsym("unknown");
        enter_final_pass();
    }

    static void begin(const std::string &text) {
        begin_line(text);
        ClearOp(opnd1);
        errorsp = nullptr;
        forwardref = 0;
    }

    static Traces traces(std::int64_t value) {
        Traces left = {value,   Col_Ptr - Line.begin(), ctoken, forwardref,
                       errorsp, opnd1.symbol_size,      {}};
        for (int i = 0; i < opnd1.symbol_count; ++i) {
            left.symbols.push_back(opnd1.symbols[static_cast<std::size_t>(i)]);
        }
        return left;
    }

    // As the check and the steps leave it; no value where the check fails.
    static bool by_steps(const std::string &text, Traces &left) {
        begin(text);
        if (p00() != STATUS_OK) {
            return false;
        }
        begin(text);
        status = STATUS_OK;
        in_paren = 0;
        end_of_input = 0;
        std::int64_t value = 0;
        do {
            value = p0(value, 0, 0, 0, &opnd1);
        } while (end_of_input == 0);
        left = traces(value);
        return true;
    }

    static bool is_usual(const std::string &text) {
        begin(text);
        return usual_value(&opnd1).is_known;
    }

    // Expects the same of both ways where this one gives a value, and no change where not. True
    // where it does.
    static bool agrees(const std::string &text) {
        begin(text);
        const ExpressionValue value = usual_value(&opnd1);
        const Traces left = traces(value.value);
        if (!value.is_known) {
            EXPECT_EQ(left.column, 0) << text;
            EXPECT_EQ(left.previous_token, 0) << text;
            EXPECT_TRUE(left.symbols.empty()) << text;
            return false;
        }
        Traces expected;
        EXPECT_TRUE(by_steps(text, expected)) << text;
        EXPECT_EQ(left, expected) << text << ": " << left.value << ", not " << expected.value;
        return true;
    }
};

TEST_F(UsualExpression, ComputesAsTheSteps) {
    for (const char *text : {"1 ",
                             "one,X",
                             "1+2 ",
                             "2+3*4 ",
                             "2*3+4 ",
                             "1+6<<1 ",
                             "1+4&6 ",
                             "1+7%4 ",
                             "1+7%%100 ",
                             "8/2*2 ",
                             "2*8/4 ",
                             "1==1+1 ",
                             "-2*3 ",
                             "5-2-1 ",
                             "3-(1+1) ",
                             "-(2) ",
                             "~0 ",
                             "!5 ",
                             "2+(3)*4 ",
                             "2*(3)*4 ",
                             "one*(size)*later*2 ",
                             "7!one ",
                             "7~one*2 ",
                             "1--2 ",
                             "1-~2*3 ",
                             "((1+2)*(3+4))%5,Y",
                             "one+Loop_2-a_long_name_of_a_port ",
                             "%101&$F+'A' ",
                             "10%%11*2 ",
                             "unknown+later+unknown ",
                             "v.1*size/3%%10,X"}) {
        EXPECT_TRUE(agrees(text)) << text;
    }
}

TEST_F(UsualExpression, LeavesTheRestAlone) {
    for (const char *text : {"1/0 ", "1%(1-1) ", "() ", "(1+) ", "1<2 ", "(5)$ ", "new+1 ", "1+ ",
                             "1+2: ", "(1 ", "1) ", "1+X ", "+1 ", "12AB ", "", "1+2=3 "}) {
        EXPECT_FALSE(agrees(text)) << text;
    }
    (void)take_output();
}

TEST_F(UsualExpression, EntersANewNameThatStandsAloneOnly) {
    EXPECT_FALSE(is_usual("new+1 "));
    EXPECT_EQ(getsym("new"), nullptr);
    EXPECT_TRUE(is_usual("new "));
    EXPECT_NE(getsym("new"), nullptr);
}

TEST_F(UsualExpression, IsNotDeeperThanTheMachinesStackAllows) {
    const std::string open(2000, '(');
    EXPECT_FALSE(is_usual(open + "1" + std::string(2000, ')') + " "));
    EXPECT_FALSE(is_usual(std::string(4000, '-') + "1 "));
    std::string product = "1";
    for (int i = 0; i < 2000; ++i) {
        product += "*1";
    }
    EXPECT_FALSE(is_usual(product + " "));
    EXPECT_TRUE(is_usual(std::string(20, '(') + "1" + std::string(20, ')') + " "));
}

TEST_F(UsualExpression, CountsMoreSymbolsThanItKeeps) {
    std::string sum = "one";
    for (int i = 1; i < 20; ++i) {
        sum += "+one";
    }
    EXPECT_TRUE(agrees(sum + " "));
    EXPECT_FALSE(agrees(sum + "+one "));
}

TEST_F(UsualExpression, AgreesWithTheStepsOnRandomTokens) {
    const std::vector<std::string> operands = {"1",    "2",   "$FF",   "%1011",     "'q'",
                                               "0",    "one", "later", "size",      "Loop_2",
                                               "4096", "v.1", "(3)",   "(one-size)"};
    const std::vector<std::string> operators = {
        "+",  "-",  "*",  "/",  "%",  "%%1", "&", "|", "^",     "<<", ">>",
        "==", "!=", "<=", ">=", "&&", "||",  "!", "~", "-(2)*", "<"};
    const std::vector<std::string> prefixes = {"", "", "", "", "-", "~", "!", "("};
    std::minstd_rand random(7);
    const auto one_of = [&](const std::vector<std::string> &words) {
        return words[random() % words.size()];
    };
    int usual = 0;
    for (int run = 0; run < 20000; ++run) {
        std::string text = one_of(prefixes) + one_of(operands);
        for (std::size_t i = random() % 6; i > 0; --i) {
            text += one_of(operators) + one_of(prefixes) + one_of(operands);
        }
        for (std::size_t i = random() % 3; i > 0; --i) {
            text.insert(random() % (text.size() + 1), 1, ')');
        }
        usual += agrees(text + (random() % 2 == 0 ? " " : ",X")) ? 1 : 0;
    }
    EXPECT_GT(usual, 3000);
    (void)take_output();
}

} // namespace
