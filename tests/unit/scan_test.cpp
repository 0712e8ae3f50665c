// The token scanner and the scanner of names.
#include "as/asPlace.h"
#include "target/scan.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "tests/unit/support.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using Codes = std::vector<int>;

const std::string kDelimiterMarks = "!%&()*+,-./:;<=>[]^{|}~";

class TokenScanner : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_source_file("t.szirpa", "");
        enter_final_pass();
    }

    static std::ptrdiff_t column() { return Col_Ptr - Line.begin(); }

    // The first token of a text.
    static int token(const std::string &text, int mode = kExpressionMode) {
        begin_line(text);
        return gettoken(mode);
    }

    // The tokens up to the end of a text.
    static Codes tokens(const std::string &text, int mode = kExpressionMode) {
        begin_line(text);
        Codes codes;
        while (*Col_Ptr != '\0') {
            codes.push_back(gettoken(mode));
        }
        return codes;
    }

    static bool reads_name(const std::string &text) {
        begin_line(text);
        return valid_sym() == 1;
    }

    std::string error(const std::string &text) const {
        return directory + "/t.szirpa (0) Error: " + text + "\n";
    }
};

char byte(int code) { return static_cast<char>(static_cast<unsigned char>(code)); }

bool is_delimiter_code(int code) {
    return code < 33 || code > 127 || kDelimiterMarks.find(byte(code)) != std::string::npos;
}

// ---- A token as it stands in the text ----

TEST_F(TokenScanner, ALookAtATokenMovesNothing) {
    begin_line("#$1F+x");
    ctoken = TOK_NAME;
    const ScannedToken number = scan_token(Line.begin() + 1, kExpressionMode, 0);
    EXPECT_EQ(number.token, TOK_NUMBER);
    EXPECT_EQ(number.number, 31);
    EXPECT_EQ(number.end, Line.begin() + 4);
    EXPECT_EQ(column(), 0);
    EXPECT_EQ(ctoken, TOK_NAME);
}

TEST_F(TokenScanner, TheTokenBeforeIsAsTheCallerSays) {
    begin_line("%1");
    ctoken = TOK_NUMBER;
    EXPECT_EQ(scan_token(Col_Ptr, kExpressionMode, TOK_PLUS).token, TOK_NUMBER);
    ctoken = TOK_PLUS;
    EXPECT_EQ(scan_token(Col_Ptr, kExpressionMode, TOK_NUMBER).token, TOK_REMAINDER);
}

TEST_F(TokenScanner, TheCodesFallIntoKinds) {
    for (const int code : {0, 32, 255}) {
        EXPECT_TRUE(is_character(code)) << code;
    }
    for (int code = 257; code <= 294; ++code) {
        EXPECT_FALSE(is_character(code)) << code;
        EXPECT_EQ(is_operand(code), code == 276 || code == 277) << code;
        EXPECT_EQ(is_operator(code), (code >= 258 && code <= 275) || code == 286) << code;
    }
    EXPECT_FALSE(is_operand(44));
    EXPECT_FALSE(is_operator(44));
}

TEST_F(TokenScanner, OnlyTheCharactersOfAnOperatorBelongToIt) {
    const std::vector<std::string> pairs = {"==", "!=", "<=", "<<", ">=", ">>", "||", "&&"};
    for (const char first : std::string("()*+-/^~|&!=<>")) {
        for (int code = 1; code < 256; ++code) {
            const std::string text = {first, byte(code)};
            const bool is_pair = std::find(pairs.begin(), pairs.end(), text) != pairs.end();
            const int read = token(text);
            EXPECT_EQ(column(), is_pair ? 2 : 1) << first << ' ' << code;
            EXPECT_EQ(is_character(read), !is_pair && first == '=') << first << ' ' << code;
        }
    }
}

// ---- Names ----

TEST_F(TokenScanner, NamesBeginWithALetterOrAnUnderscore) {
    for (int code = 1; code < 256; ++code) {
        const bool expected =
            (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z') || code == '_';
        EXPECT_EQ(reads_name(std::string(1, byte(code)) + "b"), expected) << code;
        EXPECT_EQ(column(), expected ? 2 : 0) << code;
    }
    EXPECT_FALSE(reads_name(""));
}

TEST_F(TokenScanner, NamesGoOnWithLettersDigitsDollarsPointsAndUnderscores) {
    ASSERT_TRUE(reads_name("aZ_9$.x-y"));
    EXPECT_EQ(yytext, "aZ_9$.x");
    EXPECT_EQ(column(), 7);
}

TEST_F(TokenScanner, NamesOfUpTo128CharactersAreReadWhole) {
    for (const std::size_t length : {std::size_t{1}, kNameLimit - 1, kNameLimit}) {
        const std::string name(length, 'n');
        ASSERT_TRUE(reads_name(name + " "));
        EXPECT_EQ(yytext, name);
        EXPECT_EQ(column(), static_cast<std::ptrdiff_t>(length));
    }
}

TEST_F(TokenScanner, ALongerNameIsReadAsTwo) {
    EXPECT_EQ(kNameLimit, 128U);
    const std::string name = std::string(128, 'n') + "mo";
    begin_line(name);
    EXPECT_EQ(gettoken(kExpressionMode), TOK_NAME);
    EXPECT_EQ(yytext, name.substr(0, 128));
    EXPECT_EQ(column(), 128);
    EXPECT_EQ(gettoken(kExpressionMode), TOK_NAME);
    EXPECT_EQ(yytext, "mo");
}

TEST_F(TokenScanner, ANameOf129CharactersLeavesOneBehind) {
    ASSERT_TRUE(reads_name(std::string(128, 'n') + "m"));
    EXPECT_EQ(yytext, std::string(128, 'n'));
    EXPECT_EQ(column(), 128);
}

TEST_F(TokenScanner, AByteFrom128UpRightBehindMakesItNoName) {
    for (int code = 1; code < 256; ++code) {
        if (code == '$' || code == '.' || code == '_' || (code >= '0' && code <= '9') ||
            (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z')) {
            continue;
        }
        EXPECT_EQ(reads_name(std::string("ab") + byte(code)), code < 128) << code;
        EXPECT_EQ(column(), code < 128 ? 2 : 0) << code;
    }
}

TEST_F(TokenScanner, ANameThatIsNoneGivesItsFirstCharacter) {
    EXPECT_EQ(token("ab\xE9"), 'a');
    EXPECT_EQ(column(), 1);
    EXPECT_EQ(take_output(), "");
}

// ---- Registers ----

TEST_F(TokenScanner, SingleLettersAreRegistersInBothModes) {
    for (const int mode : {kExpressionMode, kOperandMode}) {
        for (const char *end : {"", " ", ",", "+", "-", "\n", "\xE9"}) {
            EXPECT_EQ(token(std::string("A") + end, mode), TOK_A) << end;
            EXPECT_EQ(token(std::string("a") + end, mode), TOK_A) << end;
            EXPECT_EQ(token(std::string("X") + end, mode), TOK_X) << end;
            EXPECT_EQ(token(std::string("x") + end, mode), TOK_X) << end;
            EXPECT_EQ(token(std::string("Y") + end, mode), TOK_Y) << end;
            EXPECT_EQ(token(std::string("y") + end, mode), TOK_Y) << end;
            EXPECT_EQ(column(), 1);
        }
    }
}

TEST_F(TokenScanner, PairsOfLettersAreRegistersInEveryCase) {
    for (const int mode : {kExpressionMode, kOperandMode}) {
        for (const char *text : {"SP", "sp", "Sp", "sP", "SP,", "sp+"}) {
            EXPECT_EQ(token(text, mode), TOK_SP) << text;
            EXPECT_EQ(column(), 2) << text;
        }
        for (const char *text : {"CC", "cc", "Cc", "cC", "CC,", "cc "}) {
            EXPECT_EQ(token(text, mode), TOK_CC) << text;
            EXPECT_EQ(column(), 2) << text;
        }
    }
}

TEST_F(TokenScanner, LongerWordsAreNames) {
    for (const char *text : {"AX", "A1", "X_", "ya", "SPX", "SP1", "CC_", "ccr", "S", "C", "P", "B",
                             "SC", "CP", "AA"}) {
        EXPECT_EQ(token(text), TOK_NAME) << text;
        EXPECT_EQ(yytext, text);
    }
}

TEST_F(TokenScanner, DollarsAndPointsEndARegister) {
    EXPECT_EQ(token("X.1"), TOK_X);
    EXPECT_EQ(column(), 1);
    EXPECT_EQ(token("A$"), TOK_A);
    EXPECT_EQ(column(), 1);
    EXPECT_EQ(token("SP.x"), TOK_SP);
    EXPECT_EQ(column(), 2);
    EXPECT_EQ(token("CC$1"), TOK_CC);
    EXPECT_EQ(column(), 2);
}

// ---- Operators ----

TEST_F(TokenScanner, ExpressionModeReadsOperators) {
    const std::vector<std::pair<std::string, int>> operators = {
        {"==", 258}, {"!=", 259}, {"<=", 260}, {">=", 261}, {"||", 262}, {"&&", 264}, {"!", 265},
        {"~", 266},  {"^", 267},  {"-", 268},  {"+", 269},  {"*", 270},  {"/", 271},  {"<<", 272},
        {">>", 273}, {"&", 274},  {"|", 275},  {"<", 284},  {">", 285},  {"(", 287},  {")", 288}};
    for (const auto &[text, code] : operators) {
        EXPECT_EQ(token(text + "1"), code) << text;
        EXPECT_EQ(column(), static_cast<std::ptrdiff_t>(text.size())) << text;
        EXPECT_EQ(ctoken, code) << text;
    }
}

TEST_F(TokenScanner, TheLongerOperatorIsTriedFirst) {
    EXPECT_EQ(tokens("<<="), (Codes{272, '='}));
    EXPECT_EQ(tokens("<=="), (Codes{260, '='}));
    EXPECT_EQ(tokens("==="), (Codes{258, '='}));
    EXPECT_EQ(tokens("&&&"), (Codes{264, 274}));
    EXPECT_EQ(tokens("|||"), (Codes{262, 275}));
    EXPECT_EQ(tokens("!=="), (Codes{259, '='}));
    EXPECT_EQ(tokens(">>>"), (Codes{273, 285}));
}

TEST_F(TokenScanner, ALoneEqualsSignIsAPlainCharacter) {
    EXPECT_EQ(token("=1"), '=');
    EXPECT_EQ(column(), 1);
}

TEST_F(TokenScanner, OperandModeReadsOperatorsAsPlainCharacters) {
    for (const char ch : std::string("!<>|&()+-/^~=,#")) {
        EXPECT_EQ(token(std::string(2, ch), kOperandMode), ch);
        EXPECT_EQ(column(), 1);
        EXPECT_EQ(ctoken, ch);
    }
}

TEST_F(TokenScanner, TheEndOfTheLineIsATokenLikeAnyOther) {
    begin_line("");
    ctoken = TOK_NUMBER;
    EXPECT_EQ(gettoken(kExpressionMode), 0);
    EXPECT_EQ(ctoken, 0);
}

TEST_F(TokenScanner, OtherCharactersStandForThemselves) {
    for (const int mode : {kExpressionMode, kOperandMode}) {
        for (const char ch : std::string(" \t\n#,.:;?@[\\]`{}\"")) {
            EXPECT_EQ(token(std::string(1, ch) + "b", mode), ch);
            EXPECT_EQ(column(), 1);
            EXPECT_EQ(ctoken, ch);
        }
    }
    EXPECT_EQ(token(""), 0);
}

TEST_F(TokenScanner, AStarIsTheLocationCounterAtTheStartOfAnOperand) {
    EXPECT_EQ(token("*", kOperandMode), TOK_LC);
    EXPECT_EQ(column(), 1);
    EXPECT_EQ(tokens(",*", kOperandMode), (Codes{',', TOK_LC}));
}

TEST_F(TokenScanner, AStarMultipliesBehindAnOperand) {
    EXPECT_EQ(tokens("4*2", kOperandMode), (Codes{TOK_NUMBER, TOK_MULTIPLY, TOK_NUMBER}));
    EXPECT_EQ(tokens("n1*2", kOperandMode), (Codes{TOK_NAME, TOK_MULTIPLY, TOK_NUMBER}));
    EXPECT_EQ(tokens("**", kOperandMode), (Codes{TOK_LC, TOK_MULTIPLY}));
}

TEST_F(TokenScanner, AStarAlwaysMultipliesInAnExpression) {
    EXPECT_EQ(tokens("4*2"), (Codes{TOK_NUMBER, TOK_MULTIPLY, TOK_NUMBER}));
    EXPECT_EQ(token("*2"), TOK_MULTIPLY);
}

TEST_F(TokenScanner, APercentSignIsTheRemainderBehindAnOperand) {
    EXPECT_EQ(tokens("10%3"), (Codes{TOK_NUMBER, TOK_REMAINDER, TOK_NUMBER}));
    EXPECT_EQ(tokens("n1%3"), (Codes{TOK_NAME, TOK_REMAINDER, TOK_NUMBER}));
    EXPECT_EQ(tokens(")%3"), (Codes{TOK_CLOSE, TOK_REMAINDER, TOK_NUMBER}));
    EXPECT_EQ(tokens("'A'%3"), (Codes{TOK_NUMBER, TOK_REMAINDER, TOK_NUMBER}));
    EXPECT_EQ(tokens("*%3", kOperandMode), (Codes{TOK_LC, TOK_REMAINDER, TOK_NUMBER}));
}

TEST_F(TokenScanner, APercentSignElsewhereOpensABinaryNumber) {
    EXPECT_EQ(token("%101"), TOK_NUMBER);
    EXPECT_EQ(yyval, 5);
    EXPECT_EQ(tokens("(%101"), (Codes{TOK_OPEN, TOK_NUMBER}));
    EXPECT_EQ(tokens("+%101"), (Codes{TOK_PLUS, TOK_NUMBER}));
    EXPECT_EQ(tokens("7%%100"), (Codes{TOK_NUMBER, TOK_REMAINDER, TOK_NUMBER}));
    EXPECT_EQ(yyval, 4);
}

TEST_F(TokenScanner, FourTokensEndAnOperand) {
    for (int code = 0; code < 300; ++code) {
        EXPECT_EQ(is_operand_ending(code), code == 257 || code == 276 || code == 277 || code == 288)
            << code;
    }
}

TEST_F(TokenScanner, ALineBeginsWithoutAPreviousToken) {
    ctoken = TOK_NUMBER;
    scan_new_line();
    EXPECT_EQ(ctoken, 0);
}

// ---- Numbers ----

TEST_F(TokenScanner, NumbersAreReadInThreeBases) {
    EXPECT_EQ(token("1234"), TOK_NUMBER);
    EXPECT_EQ(yyval, 1234);
    EXPECT_EQ(column(), 4);
    EXPECT_EQ(token("0017"), TOK_NUMBER);
    EXPECT_EQ(yyval, 17);
    EXPECT_EQ(token("$1F"), TOK_NUMBER);
    EXPECT_EQ(yyval, 31);
    EXPECT_EQ(token("$ff"), TOK_NUMBER);
    EXPECT_EQ(yyval, 255);
    EXPECT_EQ(token("%1010"), TOK_NUMBER);
    EXPECT_EQ(yyval, 10);
    EXPECT_EQ(token("$9afAF", kOperandMode), TOK_NUMBER);
    EXPECT_EQ(yyval, 0x9AFAF);
    EXPECT_EQ(ctoken, TOK_NUMBER);
}

TEST_F(TokenScanner, NumbersAreTakenModulo2ToThe32AndSigned) {
    EXPECT_EQ(token("$FFFFFFFF"), TOK_NUMBER);
    EXPECT_EQ(yyval, -1);
    EXPECT_EQ(token("$7FFFFFFF"), TOK_NUMBER);
    EXPECT_EQ(yyval, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(token("$80000000"), TOK_NUMBER);
    EXPECT_EQ(yyval, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(token("$100000000"), TOK_NUMBER);
    EXPECT_EQ(yyval, 0);
    EXPECT_EQ(token("4294967295"), TOK_NUMBER);
    EXPECT_EQ(yyval, -1);
    EXPECT_EQ(token("4294967296"), TOK_NUMBER);
    EXPECT_EQ(yyval, 0);
    EXPECT_EQ(token("99999999999999999999"), TOK_NUMBER);
    EXPECT_EQ(yyval, 1661992959);
    EXPECT_EQ(token("%" + std::string(70, '1')), TOK_NUMBER);
    EXPECT_EQ(yyval, -1);
    EXPECT_EQ(take_output(), "");
}

TEST_F(TokenScanner, DecimalNumbersEndAtDelimitersAlone) {
    for (int code = 1; code < 256; ++code) {
        const std::string text = std::string("12") + byte(code);
        if (is_delimiter_code(code)) {
            EXPECT_EQ(token(text), TOK_NUMBER) << code;
            EXPECT_EQ(yyval, 12) << code;
            EXPECT_EQ(column(), 2) << code;
            EXPECT_EQ(take_output(), "") << code;
        } else if (code >= '0' && code <= '9') {
            EXPECT_EQ(token(text), TOK_NUMBER) << code;
            EXPECT_EQ(yyval, 120 + code - '0') << code;
        } else {
            EXPECT_EQ(token(text), TOK_END) << code;
            EXPECT_EQ(column(), 3) << code;
            EXPECT_EQ(take_output(), error("Illegal decimal digit")) << code;
        }
    }
}

TEST_F(TokenScanner, HexadecimalNumbersEndAtDelimitersAlone) {
    const std::string digits = "0123456789abcdefABCDEF";
    for (int code = 1; code < 256; ++code) {
        const std::string text = std::string("$1") + byte(code);
        if (is_delimiter_code(code)) {
            EXPECT_EQ(token(text), TOK_NUMBER) << code;
            EXPECT_EQ(column(), 2) << code;
            EXPECT_EQ(take_output(), "") << code;
        } else if (digits.find(byte(code)) != std::string::npos) {
            EXPECT_EQ(token(text), TOK_NUMBER) << code;
            EXPECT_EQ(column(), 3) << code;
        } else {
            EXPECT_EQ(token(text), TOK_END) << code;
            EXPECT_EQ(column(), 3) << code;
            EXPECT_EQ(take_output(), error("Illegal hexadecimal digit")) << code;
        }
    }
}

TEST_F(TokenScanner, BinaryNumbersEndAtDelimitersAlone) {
    for (int code = 1; code < 256; ++code) {
        const std::string text = std::string("%1") + byte(code);
        if (is_delimiter_code(code)) {
            EXPECT_EQ(token(text), TOK_NUMBER) << code;
            EXPECT_EQ(column(), 2) << code;
            EXPECT_EQ(take_output(), "") << code;
        } else if (code == '0' || code == '1') {
            EXPECT_EQ(token(text), TOK_NUMBER) << code;
            EXPECT_EQ(yyval, 2 + code - '0') << code;
        } else {
            EXPECT_EQ(token(text), TOK_END) << code;
            EXPECT_EQ(column(), 3) << code;
            EXPECT_EQ(take_output(), error("Illegal binary digit")) << code;
        }
    }
}

TEST_F(TokenScanner, APrefixWithoutADigitIsABadDigit) {
    for (const char *text : {"$", "$,", "$ ", "$\xE9", "$G"}) {
        EXPECT_EQ(token(text), TOK_END) << text;
        EXPECT_EQ(take_output(), error("Illegal hexadecimal digit")) << text;
    }
    for (const char *text : {"%", "%,", "% ", "%\xE9", "%2"}) {
        EXPECT_EQ(token(text), TOK_END) << text;
        EXPECT_EQ(take_output(), error("Illegal binary digit")) << text;
    }
}

TEST_F(TokenScanner, BadDigitsAreReported) {
    EXPECT_EQ(token("$1G"), TOK_END);
    EXPECT_EQ(take_output(), error("Illegal hexadecimal digit"));
    EXPECT_EQ(token("%102"), TOK_END);
    EXPECT_EQ(take_output(), error("Illegal binary digit"));
    EXPECT_EQ(token("12a"), TOK_END);
    EXPECT_EQ(take_output(), error("Illegal decimal digit"));
    EXPECT_EQ(Line_Done, 1);
}

TEST_F(TokenScanner, ThereIsNoPreviousTokenBehindABadDigit) {
    for (const char *text : {"12a", "$", "%2"}) {
        begin_line(text);
        ctoken = TOK_PLUS;
        EXPECT_EQ(gettoken(kExpressionMode), TOK_END) << text;
        EXPECT_EQ(ctoken, 0) << text;
        take_output();
    }
}

TEST_F(TokenScanner, ThereAreNoPrefixesOrSuffixesOfOtherDialects) {
    for (const char *text : {"0x10", "0b10", "10H", "10B", "17O", "17Q"}) {
        EXPECT_EQ(token(text), TOK_END) << text;
        EXPECT_EQ(take_output(), error("Illegal decimal digit")) << text;
    }
}

TEST_F(TokenScanner, BadDigitsAreSilentBeforeTheFinalPass) {
    Pass = 1;
    Pass2 = 0;
    EXPECT_EQ(token("12a"), TOK_END);
    EXPECT_EQ(take_output(), "");
}

// ---- Characters ----

TEST_F(TokenScanner, AQuotedCharacterIsANumber) {
    EXPECT_EQ(token("'A'+"), TOK_NUMBER);
    EXPECT_EQ(yyval, 65);
    EXPECT_EQ(column(), 3);
    EXPECT_EQ(ctoken, TOK_NUMBER);
    EXPECT_EQ(token("' '", kOperandMode), TOK_NUMBER);
    EXPECT_EQ(yyval, 32);
    EXPECT_EQ(token("'''"), TOK_NUMBER);
    EXPECT_EQ(yyval, 39);
    EXPECT_EQ(token("'\\'"), TOK_NUMBER);
    EXPECT_EQ(yyval, 92);
    EXPECT_EQ(token("'A'B"), TOK_NUMBER);
    EXPECT_EQ(column(), 3);
}

TEST_F(TokenScanner, AQuotedByteIsSigned) {
    EXPECT_EQ(token("'\xE9'"), TOK_NUMBER);
    EXPECT_EQ(yyval, -23);
    EXPECT_EQ(token("'\x80'"), TOK_NUMBER);
    EXPECT_EQ(yyval, -128);
    EXPECT_EQ(token("'\xFF'"), TOK_NUMBER);
    EXPECT_EQ(yyval, -1);
    EXPECT_EQ(token("'\x7F'"), TOK_NUMBER);
    EXPECT_EQ(yyval, 127);
}

TEST_F(TokenScanner, AQuoteWithoutItsPartnerIsAPlainCharacter) {
    for (const char *text : {"'", "'A", "'AB'", "''", "'\\n'"}) {
        EXPECT_EQ(token(text), '\'') << text;
        EXPECT_EQ(column(), 1) << text;
    }
    EXPECT_EQ(take_output(), "");
}

// ---- What a token leaves behind ----

TEST_F(TokenScanner, EachTokenClearsTextAndValue) {
    begin_line("name 5,");
    EXPECT_EQ(gettoken(kExpressionMode), TOK_NAME);
    EXPECT_EQ(yytext, "name");
    EXPECT_EQ(ctoken, TOK_NAME);
    EXPECT_EQ(gettoken(kExpressionMode), ' ');
    EXPECT_EQ(yytext, "");
    EXPECT_EQ(gettoken(kExpressionMode), TOK_NUMBER);
    EXPECT_EQ(yyval, 5);
    EXPECT_EQ(gettoken(kExpressionMode), ',');
    EXPECT_EQ(yyval, 0);
}

TEST_F(TokenScanner, LookaheadTakesTheExpectedCharacterOnly) {
    begin_line(",X");
    EXPECT_EQ(lookahead('X'), 0);
    EXPECT_EQ(column(), 0);
    EXPECT_EQ(lookahead(','), 1);
    EXPECT_EQ(column(), 1);
    EXPECT_EQ(lookahead('x'), 0);
    EXPECT_EQ(column(), 1);
}

TEST_F(TokenScanner, TheSemicolonIsTheOnlyCommentCharacter) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(IsCommentChar(byte(code)), code == ';' ? 1 : 0) << code;
    }
}

} // namespace
