// Texts under edits: lines and positions after any edit are those of the text as it is then.
#include "zirpa/lsp/document.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using lsp::Document;
using lsp::Encoding;
using lsp::Position;

void expect_same(const Document &one, const Document &other) {
    ASSERT_EQ(one.text(), other.text());
    ASSERT_EQ(one.line_count(), other.line_count());
    for (std::size_t i = 0; i <= one.line_count(); ++i) {
        ASSERT_EQ(one.line(i), other.line(i)) << i;
    }
}

TEST(Document, LinesEndInThreeWays) {
    const Document document("a\nb\r\nc\rd");
    ASSERT_EQ(document.line_count(), 4U);
    EXPECT_EQ(document.line(0), "a");
    EXPECT_EQ(document.line(1), "b");
    EXPECT_EQ(document.line(2), "c");
    EXPECT_EQ(document.line(3), "d");
    EXPECT_EQ(document.line(4), "");
}

TEST(Document, AnEmptyTextHasOneLine) {
    EXPECT_EQ(Document("").line_count(), 1U);
    EXPECT_EQ(Document("\n").line_count(), 2U);
}

TEST(Document, CharactersCountInTheEncoding) {
    // One, two, three and four bytes; the last is two units of UTF-16.
    const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9Ez";
    const Document units(text, Encoding::kUtf16);
    EXPECT_EQ(units.offset_of({0, 3}), 6U);
    EXPECT_EQ(units.offset_of({0, 4}), 6U); // in the middle of the last one
    EXPECT_EQ(units.offset_of({0, 5}), 10U);
    EXPECT_EQ(units.position_of(10), (Position{0, 5}));
    EXPECT_EQ(units.position_of(8), (Position{0, 3}));
    const Document bytes(text, Encoding::kUtf8);
    EXPECT_EQ(bytes.offset_of({0, 8}), 6U);
    EXPECT_EQ(bytes.position_of(10), (Position{0, 10}));
}

TEST(Document, PositionsBeyondAreTheEnd) {
    const Document document("ab\ncd\n");
    EXPECT_EQ(document.offset_of({0, 99}), 2U);
    EXPECT_EQ(document.offset_of({9, 0}), 6U);
    EXPECT_EQ(document.position_of(99), (Position{2, 0}));
}

TEST(Document, LinesAfterAnyEditAreThoseOfTheNewText) {
    std::mt19937 random(1);
    const std::vector<std::string> pieces = {"",     "a",    "\n",   "\r",
                                             "\r\n", "b\nc", "\n\r", "\xC3\xA4"};
    for (int run = 0; run < 200; ++run) {
        Document document("");
        for (int edit = 0; edit < 50; ++edit) {
            const auto size = static_cast<unsigned>(document.text().size() + 1);
            std::size_t begin = random() % size;
            std::size_t end = std::min<std::size_t>(begin + random() % 4, size - 1);
            const lsp::Range range = {document.position_of(begin), document.position_of(end)};
            document.apply(
                {range, pieces[random() % pieces.size()] + pieces[random() % pieces.size()]});
            expect_same(document, Document(document.text()));
        }
    }
}

TEST(Document, EveryPositionLeadsBackToItself) {
    const Document document("a\xC3\xA4\r\n\xF0\x9D\x84\x9E\r\rz\n");
    for (std::size_t i = 0; i < document.line_count(); ++i) {
        for (int character = 0; character < 3; ++character) {
            const Position position = {static_cast<int>(i), character};
            const std::size_t offset = document.offset_of(position);
            EXPECT_EQ(document.offset_of(document.position_of(offset)), offset);
        }
    }
}

} // namespace
