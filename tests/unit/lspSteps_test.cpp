// The steps of expressions: their last one is always followed by the value of the whole.
#include "zirpa/lsp/steps.h"

#include "door/door.h"

#include <gtest/gtest.h>

#include <random>

namespace {

std::string shown(std::string_view text) {
    std::string all;
    const auto value_of = [](std::size_t) { return std::optional<std::int32_t>(3); };
    for (const lsp::Step &step : lsp::steps_of(text, value_of)) {
        all += step.text + "=" + std::to_string(step.value) + " ";
    }
    return all;
}

TEST(Steps, GoFromLeftToRight) {
    EXPECT_EQ(shown("1+7%4"), "1+7=8 ");
    EXPECT_EQ(shown("1+2+3"), "1+2=3 ");
    EXPECT_EQ(shown("1+6<<1"), "1+6=7 ");
}

TEST(Steps, ProductsAreFinishedFirst) {
    EXPECT_EQ(shown("2+3*4"), "3*4=12 ");
    EXPECT_EQ(shown("2+3*4+1"), "3*4=12 2+3*4=14 ");
    // The whole is one product.
    EXPECT_EQ(shown("8/2*2"), "");
}

TEST(Steps, ParenthesesAreFinishedFirst) {
    EXPECT_EQ(shown("3-(1+1)"), "1+1=2 ");
    EXPECT_EQ(shown("(1+2)*(3+4)"), "1+2=3 3+4=7 ");
    EXPECT_EQ(shown("((1+2)+1)+1"), "1+2=3 (1+2)+1=4 ");
}

TEST(Steps, NamesHaveTheValuesThatTheyAreGiven) { EXPECT_EQ(shown("n+1+n"), "n+1=4 "); }

TEST(Steps, NothingIsSaidOfWhatIsFaulty) {
    EXPECT_EQ(shown(""), "");
    EXPECT_EQ(shown(")"), "");
    EXPECT_EQ(shown("5"), "");
    EXPECT_EQ(shown("((("), "");
}

TEST(Steps, NumbersAreRead) {
    EXPECT_EQ(lsp::number_of("$1f"), 31);
    EXPECT_EQ(lsp::number_of("%11"), 3);
    EXPECT_EQ(lsp::number_of("'A'"), 65);
    EXPECT_EQ(lsp::number_of("12"), 12);
    EXPECT_EQ(lsp::number_of("$1g"), std::nullopt);
    EXPECT_EQ(lsp::number_of("%"), std::nullopt);
}

// Each step is a part of the text, and no text makes it fail.
TEST(Steps, ArePartsOfAnyText) {
    std::mt19937 random(1);
    const std::string characters = "12n+-*/%()&|<>=!~$' ";
    for (int i = 0; i < 300; ++i) {
        std::string text;
        for (std::size_t size = random() % 12; size > 0; --size) {
            text += characters[random() % characters.size()];
        }
        for (const lsp::Step &step :
             lsp::steps_of(text, [](std::size_t) { return std::nullopt; })) {
            EXPECT_NE(text.find(step.text), std::string::npos) << text;
        }
    }
}

} // namespace
