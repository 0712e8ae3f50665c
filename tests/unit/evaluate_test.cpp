// The evaluation of expressions, and the faults with which it is refused.
#include "expr/evaluate.h"

#include "as/asOptions.h"
#include "as/asPlace.h"
#include "expr/check.h"
#include "expr/record.h"
#include "symtab/symtab.h"
#include "target/scan.h"
#include "tests/unit/support.h"
#include "util/ahead.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

class Expression : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_source_file("t.szirpa", "");
        enter_final_pass();
        at_line(10);
    }

    static void at_line(int line) {
        realline = line;
        listline = line;
    }

    static void enter_first_pass() {
        Pass = 1;
        Pass2 = 0;
    }

    static void begin(const std::string &text) {
        begin_line(text);
        ClearOp(opnd1);
    }

    static std::ptrdiff_t column() { return Col_Ptr - Line.begin(); }

    static int evaluate(const std::string &text, int report = 1) {
        begin(text);
        return ppexpr(opnd1, report);
    }

    // The value of an expression, by both ways of evaluating it.
    static std::int64_t value(const std::string &text) {
        EXPECT_EQ(evaluate(text), 0) << text;
        begin(text);
        EXPECT_EQ(evalexp(Line.begin(), 0), opnd1_value(text)) << text;
        return opnd1_value(text);
    }

    static void expect_values(const std::vector<std::pair<std::string, std::int64_t>> &expected) {
        for (const auto &[text, number] : expected) {
            EXPECT_EQ(value(text), number) << text;
        }
    }

    // Both ways of evaluating report a syntax fault alike.
    void expect_fault(const std::string &text, const std::string &message, int position) {
        const std::string expected =
            error(message + ", Position[" + std::to_string(position) + "]");
        EXPECT_EQ(evaluate(text, 1), 1) << text;
        EXPECT_EQ(take_output(), expected) << text;
        begin(text);
        EXPECT_EQ(evalexp(Line.begin(), 0), 0) << text;
        EXPECT_EQ(take_output(), expected) << text;
        EXPECT_EQ(column(), 0) << text;
    }

    static Symbol *define(const std::string &name, std::int32_t number, std::int32_t line = 1,
                          std::uint32_t flags = SYM_DEFINED) {
        return putsym(name, number, line, flags, 0, nullptr, 0);
    }

    std::string error(const std::string &text) const {
        return directory + "/t.szirpa (0) Error: " + text + "\n";
    }

  private:
    static std::int64_t opnd1_value(const std::string &text) {
        begin(text);
        EXPECT_EQ(ppexpr(opnd1, 0), 0) << text;
        return opnd1.value;
    }
};

// ---- Values ----

TEST_F(Expression, LiteralsEnterAs32BitSignedNumbers) {
    expect_values({{"5", 5},
                   {"0017", 17},
                   {"$ff", 255},
                   {"%101", 5},
                   {"'A'", 65},
                   {"'\xE9'", -23},
                   {"$7FFFFFFF", 2147483647},
                   {"$80000000", -2147483648LL},
                   {"$FFFFFFFF", -1},
                   {"$100000000", 0},
                   {"4294967296", 0}});
}

TEST_F(Expression, ArithmeticIsDoneIn64Bits) {
    expect_values({{"$7FFFFFFF+1", 2147483648LL},
                   {"$7FFFFFFF*2", 4294967294LL},
                   {"1<<40", 1099511627776LL},
                   {"-$7FFFFFFF-2", -2147483649LL}});
}

TEST_F(Expression, ArithmeticWraps) {
    expect_values({{"$7FFFFFFF*$7FFFFFFF*$7FFFFFFF", 4611686024869838847LL},
                   {"(1<<63)-1", std::numeric_limits<std::int64_t>::max()},
                   {"(1<<63)*3", kLeast}});
}

TEST_F(Expression, ProductsBindTighterThanSums) {
    expect_values({{"2+3*4", 14},
                   {"2*3+4", 10},
                   {"10-2*3", 4},
                   {"2*3*4", 24},
                   {"1+2*3+4*5", 27},
                   {"2*-3", -6}});
}

TEST_F(Expression, QuotientsAndRemaindersBindTighterRightBehindAnOperandOnly) {
    expect_values({{"2*8/4", 4},
                   {"10-6/3", 8},
                   {"1+7%4", 0},
                   {"1+7%%100", 4},
                   {"1-7%%100", -2},
                   {"2*7%%100", 6}});
}

TEST_F(Expression, OtherOperatorsTakeAllThatCameBefore) {
    expect_values(
        {{"1+6<<1", 14}, {"1+4&6", 4}, {"1|2&2", 2}, {"8-1>>1", 3}, {"1+2==3", 1}, {"2-1&&0", 0}});
}

TEST_F(Expression, OtherOperatorsTakeTheNextTermAlone) {
    expect_values(
        {{"1==1+1", 2}, {"3==1+2", 2}, {"1<<2+1", 5}, {"6&3+1", 3}, {"0||0+5", 5}, {"7%4+2", 5}});
}

TEST_F(Expression, TheNextTermMayBeAProduct) {
    expect_values({{"8/2*2", 2}, {"7%4*2", 7}, {"1<<2*3", 64}, {"6==2*3", 1}, {"8/4/2", 4}});
}

TEST_F(Expression, ChainedQuotientsAreTakenFromTheRight) {
    EXPECT_EQ(evaluate("6/2/3"), 0);
    EXPECT_EQ(opnd1.value, 0);
    EXPECT_EQ(take_output(), error("Integer divide by zero"));
}

TEST_F(Expression, DifferencesGoFromLeftToRight) {
    expect_values({{"5-2-1", 2}, {"5-3+2", 4}, {"1-2-3-4", -8}, {"10-2*3-1", 3}});
}

TEST_F(Expression, AMinusNegatesTheRestOfTheSum) {
    expect_values({{"-5", -5},
                   {"-2*3", -6},
                   {"--5", 5},
                   {"5--3", 8},
                   {"-7/2", -3},
                   {"-8>>1", -4},
                   {"1==-1", 0}});
}

TEST_F(Expression, DivisionTruncatesTowardZero) {
    expect_values({{"7/2", 3}, {"(0-7)/2", -3}, {"7/-2", -3}, {"(0-7)%2", -1}, {"7%-4", 3}});
}

TEST_F(Expression, TheMostNegativeValueDividedByMinus1DoesNotTrap) {
    expect_values({{"(1<<63)/-1", kLeast}, {"(1<<63)%-1", 0}});
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, ComparisonsGive1Or0) {
    expect_values({{"1==1", 1},
                   {"1==2", 0},
                   {"1!=1", 0},
                   {"1!=2", 1},
                   {"1<=1", 1},
                   {"2<=1", 0},
                   {"-1<=1", 1},
                   {"1>=1", 1},
                   {"1>=2", 0},
                   {"2&&4", 1},
                   {"2&&0", 0},
                   {"0||4", 1},
                   {"0||0", 0}});
}

TEST_F(Expression, BitwiseOperatorsWorkOnAllBits) {
    expect_values({{"6&3", 2}, {"6|3", 7}, {"6^3", 5}, {"-1&$FF", 255}, {"-1^0", -1}});
}

TEST_F(Expression, ShiftsTakeTheirCountModulo64) {
    expect_values({{"1<<0", 1},
                   {"1<<63", kLeast},
                   {"1<<64", 1},
                   {"1<<65", 2},
                   {"1<<-1", kLeast},
                   {"256>>4", 16},
                   {"256>>68", 16},
                   {"-1>>63", -1}});
}

TEST_F(Expression, NegationsTakeTheNextTerm) {
    expect_values({{"~0", -1},
                   {"!5", 0},
                   {"!0", 1},
                   {"2+!0", 3},
                   {"-~0", 1},
                   {"-!0", -1},
                   {"1-~0", 2},
                   {"!0+1", 2},
                   {"~0*5", -1},
                   {"!!5", 1},
                   {"~~5", 5}});
}

TEST_F(Expression, ANegationBehindAnOperandDropsIt) { expect_values({{"5!3", 0}, {"5~3", -4}}); }

TEST_F(Expression, ParenthesesGroup) {
    expect_values({{"(1+2)", 3},
                   {"((2))", 2},
                   {"2*(3+4)*5", 70},
                   {"(1+2)*(3+4)", 21},
                   {"10-(2+3)-1", 4},
                   {"3-(1+1)", 1},
                   {"-(2)", -2},
                   {"8/(2+2)", 2},
                   {"1+(6<<1)", 13},
                   {"5-(1==1)", 4},
                   {"!(1)", 0},
                   {"~(0)+1", 0},
                   {"((1+2)*(1+1))*2", 12}});
}

TEST_F(Expression, AClosingParenthesisEndsATerm) {
    expect_values({{"2+(3)*4", 20}, {"2+3*(4)", 14}, {"(2)*3+4", 10}, {"1+(8)/4", 2}});
}

TEST_F(Expression, AClosingParenthesisNeedsNoOperandBeforeIt) {
    expect_values({{"(1+)", 1}, {"()", 0}, {"()+5", 5}, {"3+()", 3}});
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, ALoneEqualsSignEndsAnExpression) {
    EXPECT_EQ(evaluate("1=2"), 0);
    EXPECT_EQ(opnd1.value, 1);
    EXPECT_EQ(column(), 1);
}

TEST_F(Expression, DelimitersEndAnExpression) {
    for (const char *end : {",X", " +5", "\t", "\n", ";", ":", "]", "[", "{", ".", "\xE9"}) {
        EXPECT_EQ(evaluate(std::string("1+2") + end), 0) << end;
        EXPECT_EQ(opnd1.value, 3) << end;
        EXPECT_EQ(column(), 3) << end;
    }
    EXPECT_EQ(take_output(), "");
}

// ---- Division by zero ----

TEST_F(Expression, DivisionByZeroGivesTheSumSoFar) {
    EXPECT_EQ(evaluate("10/0"), 0);
    EXPECT_EQ(opnd1.value, 0);
    EXPECT_EQ(status, STATUS_STOPPED);
    EXPECT_EQ(take_output(), error("Integer divide by zero"));
    EXPECT_EQ(evaluate("5+10/0"), 0);
    EXPECT_EQ(opnd1.value, 5);
    EXPECT_EQ(take_output(), error("Integer divide by zero"));
}

TEST_F(Expression, RemainderByZeroIsSilent) {
    EXPECT_EQ(evaluate("10%0"), 0);
    EXPECT_EQ(opnd1.value, 0);
    EXPECT_EQ(status, STATUS_STOPPED);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, EvaluationGoesOnStepByStepAfterADivisionByZero) {
    EXPECT_EQ(evaluate("10/0+5"), 0);
    EXPECT_EQ(opnd1.value, 5);
    EXPECT_EQ(column(), 6);
    EXPECT_EQ(take_output(), error("Integer divide by zero"));
    EXPECT_EQ(evaluate("10%0+5"), 0);
    EXPECT_EQ(opnd1.value, 5);
    EXPECT_EQ(evaluate("10%0-5"), 0);
    EXPECT_EQ(opnd1.value, 5);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, TheNextExpressionStartsAfreshAfterADivisionByZero) {
    evaluate("10/0");
    EXPECT_EQ(evaluate("2+3*4"), 0);
    EXPECT_EQ(opnd1.value, 14);
    EXPECT_EQ(status, STATUS_OK);
}

TEST_F(Expression, DivisionByZeroIsSilentBeforeTheFinalPass) {
    enter_first_pass();
    EXPECT_EQ(evaluate("10/0"), 0);
    EXPECT_EQ(take_output(), "");
}

// ---- Syntax faults ----

TEST_F(Expression, ParenthesesMustBalance) {
    expect_fault("(1+2", "Missing Parenthesis", 4);
    expect_fault("((1)", "Missing Parenthesis", 4);
    expect_fault("(1 )", "Missing Parenthesis", 2);
    expect_fault("1+2)", "Unexpected Parenthesis", 3);
    expect_fault(")", "Unexpected Parenthesis", 0);
    expect_fault("(1))", "Unexpected Parenthesis", 3);
}

TEST_F(Expression, OperatorsNeedAnOperandBefore) {
    expect_fault("+1", "Operand expected", 0);
    expect_fault("1+*2", "Operand expected", 2);
    expect_fault("-+1", "Operand expected", 1);
    for (const std::string sign :
         {"==", "!=", "<=", ">=", "||", "&&", "^", "+", "*", "/", "<<", ">>", "&", "|"}) {
        expect_fault(sign + "1", "Operand expected", 0);
        expect_fault("1+" + sign + "1", "Operand expected", 2);
    }
}

TEST_F(Expression, OperandsNeedAnOperatorBetween) {
    define("ab", 1);
    expect_fault("ab'c'", "Missing operator", 2);
    expect_fault("'A''B'", "Missing operator", 3);
    expect_fault("(1)2", "Missing operator", 3);
}

TEST_F(Expression, ExpressionsNeedAnEnd) {
    expect_fault("1+", "Unterminated expression", 2);
    expect_fault("", "Unterminated expression", 0);
    expect_fault("-", "Unterminated expression", 1);
    expect_fault(" 1", "Unterminated expression", 0);
    expect_fault(",1", "Unterminated expression", 0);
    expect_fault("1+,", "Unterminated expression", 2);
    expect_fault("[1]", "Unterminated expression", 0);
    expect_fault("=1", "Unterminated expression", 0);
    expect_fault("\xE9", "Unterminated expression", 0);
}

TEST_F(Expression, OtherCharactersAreIllegal) {
    define("ab", 1);
    for (const std::string sign : {"#", "?", "@", "\\", "`", "\"", "'"}) {
        expect_fault(sign, "Illegal character", 0);
        expect_fault("1+" + sign, "Illegal character", 2);
        expect_fault("ab" + sign, "Illegal character", 2);
    }
    expect_fault("ab\xE9", "Illegal character", 0);
}

TEST_F(Expression, RegistersAreReservedWords) {
    for (const std::string name : {"A", "X", "Y", "SP", "CC", "a", "x", "y", "sp", "Cc"}) {
        expect_fault(name, "Illegal use of reserved word", 0);
        expect_fault("1+" + name, "Illegal use of reserved word", 2);
        expect_fault("(" + name + ")", "Missing Parenthesis", 1);
    }
}

TEST_F(Expression, AnOpenParenthesisWinsOverEveryOtherFault) {
    define("ab", 1);
    expect_fault("1(2)", "Missing Parenthesis", 1);
    expect_fault("(+1)", "Missing Parenthesis", 1);
    expect_fault("(ab'c')", "Missing Parenthesis", 3);
    expect_fault("(1+", "Missing Parenthesis", 3);
    expect_fault("(?)", "Missing Parenthesis", 1);
}

TEST_F(Expression, ABadDigitGivesTwoMessages) {
    const std::vector<std::pair<std::string, std::string>> texts = {
        {"12AB", "Illegal decimal digit"},
        {"$", "Illegal hexadecimal digit"},
        {"$1G", "Illegal hexadecimal digit"},
        {"%", "Illegal binary digit"},
        {"%2", "Illegal binary digit"}};
    for (const auto &[text, message] : texts) {
        EXPECT_EQ(evaluate(text), 1) << text;
        EXPECT_EQ(take_output(), error(message) + error("Unterminated expression, Position[0]"))
            << text;
    }
    EXPECT_EQ(evaluate("1+7%%4"), 1);
    EXPECT_EQ(take_output(),
              error("Illegal binary digit") + error("Unterminated expression, Position[4]"));
}

TEST_F(Expression, SyntaxFaultsAreSilentBeforeTheFinalPass) {
    enter_first_pass();
    EXPECT_EQ(evaluate("1+"), 1);
    EXPECT_EQ(evaluate("12AB"), 1);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, PositionsCountFromTheStartOfTheLine) {
    begin(" LDA #1+");
    Col_Ptr += 6;
    EXPECT_EQ(ppexpr(opnd1, 1), 1);
    EXPECT_EQ(take_output(), error("Unterminated expression, Position[8]"));
    EXPECT_EQ(offset, 8);
    begin("#if 1+");
    EXPECT_EQ(evalexp(Line.begin() + 4, 0), 0);
    EXPECT_EQ(take_output(), error("Unterminated expression, Position[6]"));
    EXPECT_EQ(column(), 4);
}

TEST_F(Expression, LessAndGreaterPassTheCheckButCannotBeEvaluated) {
    for (const char *text : {"1<2", "1>2"}) {
        begin(text);
        EXPECT_EQ(p00(), STATUS_OK) << text;
        EXPECT_EQ(evaluate(text), 0) << text;
        EXPECT_EQ(take_output(), error("Reached unreacheable point in Parser..P0")) << text;
    }
}

// ---- One step alone ----

class EvaluationStep : public Expression {
  protected:
    static std::int64_t step(const std::string &text, std::int64_t accumulated, int node_kind = 0,
                             int mode = 0) {
        begin(text);
        status = STATUS_OK;
        in_paren = 0;
        end_of_input = 0;
        return p0(accumulated, node_kind, 0, mode, nullptr);
    }
};

TEST_F(EvaluationStep, StartsFromTheValueSoFar) {
    EXPECT_EQ(step("+3", 5), 8);
    EXPECT_EQ(column(), 2);
    EXPECT_EQ(step("<<2", 5), 20);
    EXPECT_EQ(step("*3", 5), 15);
}

TEST_F(EvaluationStep, EndsBehindATerm) {
    EXPECT_EQ(step("3+4", 0), 3);
    EXPECT_EQ(column(), 1);
    EXPECT_EQ(end_of_input, 0);
    EXPECT_EQ(step("3*4+1", 0), 12);
    EXPECT_EQ(column(), 3);
}

TEST_F(EvaluationStep, EndsOnTheCharacterThatEndsTheExpression) {
    EXPECT_EQ(step(",X", 7), 7);
    EXPECT_EQ(column(), 0);
    EXPECT_EQ(end_of_input, 1);
    EXPECT_EQ(step("", 7), 7);
    EXPECT_EQ(column(), 0);
    EXPECT_EQ(end_of_input, 1);
}

TEST_F(EvaluationStep, DoesNotDependOnNodeKindAndMode) {
    EXPECT_EQ(step("+3*2", 5, 99, 7), step("+3*2", 5));
    EXPECT_EQ(step("&(3+1)", 5, -1, -1), 4);
}

TEST_F(EvaluationStep, EndsAtAParenthesisThatIsNoDeeperThanItself) {
    begin("-(4)");
    status = STATUS_OK;
    in_paren = 0;
    end_of_input = 0;
    EXPECT_EQ(p0(5, 0, 1, 0, nullptr), 5);
    EXPECT_EQ(column(), 2);
    EXPECT_EQ(in_paren, 1);
}

// ---- Evaluating into an operand record ----

TEST_F(Expression, ARecordWithoutSymbolsSaysSo) {
    ASSERT_EQ(evaluate("1+2"), 0);
    EXPECT_EQ(opnd1.value, 3);
    EXPECT_EQ(opnd1.forward_references, 0);
    EXPECT_EQ(opnd1.first_symbol, nullptr);
    EXPECT_EQ(opnd1.symbol_count, 0);
    EXPECT_EQ(opnd1.symbol_size, -1);
    EXPECT_EQ(opnd1.external_offset, 0);
    EXPECT_EQ(opnd1.term_count, 1);
}

TEST_F(Expression, ARecordListsItsSymbolsInOrder) {
    Symbol *one = define("one", 1);
    Symbol *two = define("two", 2);
    ASSERT_EQ(evaluate("two+one*two"), 0);
    EXPECT_EQ(opnd1.value, 4);
    EXPECT_EQ(opnd1.first_symbol, two);
    EXPECT_EQ(opnd1.symbol_count, 3);
    EXPECT_EQ(opnd1.symbols[0], two);
    EXPECT_EQ(opnd1.symbols[1], one);
    EXPECT_EQ(opnd1.symbols[2], two);
    EXPECT_EQ(opnd1.term_count, 1);
    EXPECT_EQ(opnd1.external_offset, 0);
}

TEST_F(Expression, ARecordHoldsTheSizeOfTheLastSymbol) {
    define("label1", 1);
    define("small", 100, 1, SYM_DEFINED | SYM_ABSOLUTE);
    define("large", 1000, 1, SYM_DEFINED | SYM_ABSOLUTE);
    evaluate("large+small+1");
    EXPECT_EQ(opnd1.symbol_size, 8);
    evaluate("small+large");
    EXPECT_EQ(opnd1.symbol_size, 16);
    evaluate("small+label1");
    EXPECT_EQ(opnd1.symbol_size, -1);
}

TEST_F(Expression, ARecordLists30SymbolsAndCountsAll) {
    EXPECT_EQ(kOperandSymbolLimit, 30U);
    std::vector<Symbol *> symbols;
    for (int i = 0; i < 31; ++i) {
        symbols.push_back(define("s" + std::to_string(i), 1 << (i % 8)));
    }
    for (const std::size_t count : {29U, 30U, 31U}) {
        std::string text;
        std::int64_t sum = 0;
        for (std::size_t i = 0; i < count; ++i) {
            text += (i == 0 ? "s" : "+s") + std::to_string(i);
            sum += symbols[i]->value;
        }
        ASSERT_EQ(evaluate(text), 0);
        EXPECT_EQ(opnd1.value, sum);
        EXPECT_EQ(opnd1.symbol_count, static_cast<std::int32_t>(count));
        EXPECT_EQ(opnd1.first_symbol, symbols[0]);
        for (std::size_t i = 0; i < kOperandSymbolLimit; ++i) {
            EXPECT_EQ(opnd1.symbols[i], i < count ? symbols[i] : nullptr) << i << " of " << count;
        }
    }
}

TEST_F(Expression, SymbolsEnterAs32BitSignedNumbers) {
    define("minus", -2);
    define("high", std::numeric_limits<std::int32_t>::min());
    expect_values({{"minus", -2},
                   {"minus*3", -6},
                   {"high-1", -2147483649LL},
                   {"minus%2", 0},
                   {"8/minus", -4},
                   {"1+minus%%11", -1}});
}

TEST_F(Expression, NamesOf128CharactersAreReadWhole) {
    for (const std::size_t length : {127U, 128U}) {
        const std::string name(length, 'n');
        define(name, static_cast<std::int32_t>(length));
        EXPECT_EQ(value(name), static_cast<std::int64_t>(length));
        EXPECT_EQ(value(name + "+1"), static_cast<std::int64_t>(length + 1));
    }
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, ALongerNameIsTwoOperands) {
    expect_fault(std::string(129, 'n'), "Missing operator", 128);
    expect_fault(std::string(130, 'n') + "+1", "Missing operator", 128);
}

TEST_F(Expression, SilentFaultsAreSilentAndDoNotMove) {
    for (const char *text : {"(1+2", "1)", "+1", "'A''B'", "1+", "SP", ",X", "", "ab\xE9"}) {
        EXPECT_EQ(evaluate(text, 0), 1) << text;
        EXPECT_EQ(column(), 0) << text;
    }
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, AnIllegalCharacterEndsASilentEvaluation) {
    EXPECT_EQ(evaluate("(5)#3", 0), 0);
    EXPECT_EQ(opnd1.value, 5);
    EXPECT_EQ(column(), 3);
    EXPECT_EQ(evaluate("?", 0), 0);
    EXPECT_EQ(opnd1.value, 0);
    EXPECT_EQ(column(), 0);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, AnIllegalCharacterThatIsALetterOrUnderscoreIsASilentFault) {
    EXPECT_EQ(evaluate("ab\xE9", 0), 1);
    EXPECT_EQ(evaluate("_\xE9", 0), 1);
    EXPECT_EQ(evaluate("1+q1\xE9", 0), 1);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, AnUndefinedNameIsReportedInEitherMode) {
    for (const int report : {0, 1}) {
        EXPECT_EQ(evaluate("nowhere+1", report), 0);
        EXPECT_EQ(opnd1.value, 1);
        EXPECT_EQ(take_output(), error("Undefined symbol 'nowhere'"));
    }
}

TEST_F(Expression, AnUndefinedNameIsSilentBeforeTheFinalPass) {
    enter_first_pass();
    EXPECT_EQ(evaluate("nowhere+1"), 0);
    EXPECT_EQ(opnd1.value, 1);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, OnlyTheLastForwardReferenceIsLookedAt) {
    at_line(1);
    define("later", 3, 5);
    EXPECT_EQ(evaluate("nowhere+later"), 0);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(evaluate("later+nowhere"), 0);
    EXPECT_EQ(take_output(), error("Undefined symbol 'nowhere'"));
}

TEST_F(Expression, AMultiplyDefinedNameIsNeitherDefinedNorUndefined) {
    define("twice", 3, 1, SYM_MULTIPLE);
    EXPECT_EQ(evaluate("twice+1"), 0);
    EXPECT_EQ(opnd1.value, 4);
    EXPECT_EQ(opnd1.forward_references, 0);
    EXPECT_EQ(errorsp, nullptr);
    EXPECT_EQ(take_output(), "");
}

// ---- Forward references ----

TEST_F(Expression, BeforeTheFinalPassTheFirstReferenceToANameCountsTwice) {
    enter_first_pass();
    Line_no = 7;
    ASSERT_EQ(evaluate("later"), 0);
    EXPECT_EQ(opnd1.forward_references, 2);
    EXPECT_EQ(opnd1.first_symbol->flags, SYM_UNDEFINED | SYM_FORWARD);
    EXPECT_EQ(opnd1.first_symbol->first_reference_line, 7);
    Line_no = 8;
    ASSERT_EQ(evaluate("later"), 0);
    EXPECT_EQ(opnd1.forward_references, 1);
    EXPECT_EQ(opnd1.first_symbol->first_reference_line, 7);
    ASSERT_EQ(evaluate("later+later"), 0);
    EXPECT_EQ(opnd1.forward_references, 2);
}

TEST_F(Expression, BeforeTheFinalPassANewNameSetsTheCountAnew) {
    enter_first_pass();
    ASSERT_EQ(evaluate("one1+two2"), 0);
    EXPECT_EQ(opnd1.forward_references, 2);
}

TEST_F(Expression, BeforeTheFinalPassADefinedNameCountsNot) {
    enter_first_pass();
    define("later", 3, 50);
    ASSERT_EQ(evaluate("later"), 0);
    EXPECT_EQ(opnd1.forward_references, 0);
    EXPECT_EQ(forwardref, 0);
}

TEST_F(Expression, InTheFinalPassANameDefinedFurtherOnCountsTwice) {
    Symbol *later = define("later", 3, 11);
    ASSERT_EQ(evaluate("later"), 0);
    EXPECT_EQ(opnd1.forward_references, 2);
    EXPECT_EQ(errorsp, later);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, InTheFinalPassANameDefinedUpToThisLineCountsNot) {
    define("here", 3, 10);
    define("before", 3, 9);
    ASSERT_EQ(evaluate("here+before"), 0);
    EXPECT_EQ(opnd1.forward_references, 0);
    EXPECT_EQ(errorsp, nullptr);
}

TEST_F(Expression, InTheFinalPassAnUndefinedNameCountsOnce) {
    ASSERT_EQ(evaluate("nowhere"), 0);
    EXPECT_EQ(opnd1.forward_references, 1);
    EXPECT_EQ(errorsp, opnd1.first_symbol);
}

TEST_F(Expression, EachExpressionCountsAnew) {
    evaluate("nowhere");
    evaluate("1");
    EXPECT_EQ(forwardref, 0);
    EXPECT_EQ(errorsp, nullptr);
    EXPECT_EQ(opnd1.forward_references, 0);
    begin("nowhere");
    evalexp(Line.begin(), 0);
    EXPECT_EQ(forwardref, 1);
    begin("1");
    evalexp(Line.begin(), 0);
    EXPECT_EQ(forwardref, 0);
    EXPECT_EQ(errorsp, nullptr);
}

// ---- Evaluating a text ----

TEST_F(Expression, EvaluatingATextDoesNotMoveTheScanPosition) {
    begin("#if 1+2 ");
    Col_Ptr += 2;
    EXPECT_EQ(evalexp(Line.begin() + 4, 1), 3);
    EXPECT_EQ(column(), 2);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, AFaultyTextGetsTheScanPosition) {
    begin("#if 1+ ");
    EXPECT_EQ(evalexp(Line.begin() + 4, 1), 0);
    EXPECT_EQ(column(), 4);
}

TEST_F(Expression, ACopiedWordIsReportedAtItsColumnInTheLine) {
    begin("##if 1+");
    const std::string word = "1+";
    EXPECT_EQ(evalexp(word.c_str(), 0, 5), 0);
    EXPECT_EQ(take_output(), error("Unterminated expression, Position[7]"));
    EXPECT_EQ(Col_Ptr, word.c_str());
}

TEST_F(Expression, ACopiedWordIsReadAheadAsFarAsTextsAre) {
    begin("");
    for (const std::string head : {"", "1", "q", "1+", "(1)", "-(", "1-"}) {
        for (const char *tail : {"", "S", "C", "'", "'A", "$", "%", "<", "7", "q", "!", "+", ")"}) {
            // Exactly as large as that, so that any byte read after it is noticed.
            const std::string word = head + tail;
            const auto copy = std::make_unique<char[]>(word.size() + kLookAhead);
            word.copy(copy.get(), word.size());
            evalexp(copy.get(), 0, 0);
        }
    }
    EXPECT_NE(take_output(), "");
}

TEST_F(Expression, UndefinedNamesAreReportedOnDemand) {
    begin("nowhere+1");
    EXPECT_EQ(evalexp(Line.begin(), 0), 1);
    EXPECT_EQ(take_output(), "");
    begin("nowhere+1");
    EXPECT_EQ(evalexp(Line.begin(), 1), 1);
    EXPECT_EQ(take_output(), error("Undefined symbol 'nowhere'"));
}

TEST_F(Expression, UndefinedNamesAreNotReportedBeforeTheFinalPass) {
    enter_first_pass();
    begin("nowhere+1");
    EXPECT_EQ(evalexp(Line.begin(), 1), 1);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, ANameDefinedFurtherOnIsNotUndefined) {
    define("later", 3, 11);
    begin("later");
    EXPECT_EQ(evalexp(Line.begin(), 1), 3);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Expression, AForwardReferenceThatTheListingHasPassedIsReportedWithoutAName) {
    realline = 10;
    listline = 20;
    define("later", 3, 15);
    begin("later");
    EXPECT_EQ(evalexp(Line.begin(), 1), 3);
    EXPECT_EQ(take_output(), error("Undefined Symbol"));
    begin("later");
    EXPECT_EQ(evalexp(Line.begin(), 0), 3);
    EXPECT_EQ(take_output(), "");
}

} // namespace
