// The syntax check of expressions.
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

TEST_F(ExpressionCheck, KeepsWhereTheTokenBeginsAtWhichItStopped) {
    begin("#12<<ab,X");
    ++Col_Ptr;
    ASSERT_EQ(p00(), STATUS_OK);
    EXPECT_EQ(last_token - Line.begin(), 7);
    begin("12+(3+)+SP");
    EXPECT_EQ(p00(), STATUS_RESERVED_WORD);
    EXPECT_EQ(last_token - Line.begin(), 8);
}

TEST_F(ExpressionCheck, TakesAsManyTokensAsALineHolds) {
    begin(std::string(kLineReadLimit, '-'));
    EXPECT_EQ(p00(), STATUS_UNTERMINATED);
    EXPECT_EQ(last_token - Line.begin(), static_cast<std::ptrdiff_t>(kLineReadLimit));
}

} // namespace
