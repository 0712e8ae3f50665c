// The syntax check of expressions, and the list of tokens that it leaves.
#include "expr/check.h"

#include "as/asPlace.h"
#include "target/scan.h"
#include "tests/unit/support.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace {

class ExpressionCheck : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        enter_final_pass();
    }

    static void begin(const std::string &text) { begin_line(text); }

    static std::ptrdiff_t column() { return Col_Ptr - Line.begin(); }

    static std::ptrdiff_t column_of(std::size_t token) {
        return expression_tokens.begin_of(token) - Line.begin();
    }
};

TEST_F(ExpressionCheck, TheCheckLeavesTheScanPositionBehindAGoodExpression) {
    begin("1+2,X");
    EXPECT_EQ(p00(), STATUS_OK);
    EXPECT_EQ(column(), 3);
    EXPECT_EQ(state, STATE_OPERAND_SEEN);
}

TEST_F(ExpressionCheck, TheCheckDoesNotMoveOnAFaultyExpression) {
    const std::vector<std::pair<std::string, int>> texts = {
        {"#(1+2", 3000}, {"#1)", 3001},   {"#+1", 3002}, {"#'A''B'", 3003},
        {"#1+", 3004},   {"#'A'?", 3005}, {"#SP", 3006}};
    for (const auto &[text, code] : texts) {
        begin(text);
        ++Col_Ptr;
        EXPECT_EQ(p00(), code) << text;
        EXPECT_EQ(column(), 1) << text;
    }
    EXPECT_EQ(take_output(), "");
}

TEST_F(ExpressionCheck, ReadsALeadingPercentByTheTokenBefore) {
    begin("%1");
    EXPECT_EQ(p00(), STATUS_OK);
    begin("%1");
    ctoken = TOK_NUMBER;
    EXPECT_EQ(p00(), STATUS_OPERAND_EXPECTED);
}

TEST_F(ExpressionCheck, LeavesTheCodeOfTheLastToken) {
    begin("1+2,X");
    p00();
    EXPECT_EQ(ctoken, ',');
    begin("1<2");
    p00();
    EXPECT_EQ(ctoken, TOK_LESS);
}

// ---- The tokens ----

using Tokens = ExpressionCheck;

TEST_F(Tokens, OfAnExpressionEndWithTheOneThatEndsIt) {
    begin("#12<<ab,X");
    ++Col_Ptr;
    ASSERT_EQ(p00(), STATUS_OK);
    ASSERT_EQ(expression_tokens.size(), 4U);
    const std::vector<std::pair<int, int>> expected = {
        {TOK_NUMBER, 1}, {TOK_SHIFT_LEFT, 3}, {TOK_NAME, 5}, {',', 7}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(expression_tokens[i].token, expected[i].first) << i;
        EXPECT_EQ(column_of(i), expected[i].second) << i;
    }
    EXPECT_EQ(expression_tokens[0].number, 12);
    EXPECT_EQ(expression_tokens.last().token, ',');
    EXPECT_EQ(expression_tokens.begin_of_last() - Line.begin(), 7);
}

TEST_F(Tokens, OfOneExpressionAreForgottenAtTheNext) {
    begin("1+2+3");
    p00();
    begin("4");
    p00();
    EXPECT_EQ(expression_tokens.size(), 2U);
    EXPECT_EQ(expression_tokens[0].number, 4);
}

TEST_F(Tokens, AreGoneThroughAgainFromTheFirst) {
    begin("1+2,X");
    p00();
    Col_Ptr = Line.begin();
    expression_tokens.rewind();
    EXPECT_EQ(expression_tokens.next().token, TOK_NUMBER);
    EXPECT_EQ(column(), 1);
    EXPECT_EQ(expression_tokens.next().token, TOK_PLUS);
    EXPECT_EQ(column(), 2);
    EXPECT_EQ(expression_tokens.size(), 4U);
}

TEST_F(Tokens, GoOnBeyondTheCheck) {
    begin("1<%1 ");
    ASSERT_EQ(p00(), STATUS_OK);
    ASSERT_EQ(expression_tokens.size(), 2U);
    Col_Ptr = Line.begin();
    expression_tokens.rewind();
    expression_tokens.next();
    expression_tokens.next();
    EXPECT_EQ(expression_tokens.next().token, TOK_NUMBER);
    EXPECT_EQ(column(), 4);
    EXPECT_EQ(ctoken, TOK_NUMBER);
    EXPECT_EQ(expression_tokens.next().token, ' ');
    EXPECT_EQ(expression_tokens.size(), 4U);
}

TEST_F(Tokens, FillALineAtMost) {
    begin(std::string(kLineReadLimit, '-'));
    EXPECT_EQ(p00(), STATUS_UNTERMINATED);
    EXPECT_EQ(expression_tokens.size(), kLineReadLimit + 1);
}

} // namespace
