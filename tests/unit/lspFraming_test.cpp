// Messages out of a stream of bytes.
#include "zirpa/lsp/framing.h"

#include <gtest/gtest.h>

namespace {

using lsp::Framing;

TEST(Framing, AMessageComesInAnyPieces) {
    const std::string bytes = lsp::framed("{}") + lsp::framed("") + lsp::framed("[1]");
    for (std::size_t size = 1; size < bytes.size(); ++size) {
        Framing framing;
        std::vector<std::string> messages;
        for (std::size_t i = 0; i < bytes.size(); i += size) {
            framing.feed(std::string_view(bytes).substr(i, size));
            while (auto message = framing.next()) {
                messages.push_back(*message);
            }
        }
        EXPECT_EQ(messages, (std::vector<std::string>{"{}", "", "[1]"})) << size;
    }
}

TEST(Framing, OtherFieldsArePassedOver) {
    Framing framing;
    framing.feed("X: 1\r\ncontent-LENGTH:2 \r\nContent-Type: any\r\n\r\n{}");
    EXPECT_EQ(framing.next(), "{}");
    EXPECT_EQ(framing.next(), std::nullopt);
}

TEST(Framing, AHeaderWithoutSizeIsPassedOver) {
    for (const char *size : {"", "-1", "x", "1x", "268435457", "99999999999999999999"}) {
        Framing framing;
        framing.feed("Content-Length: " + std::string(size) + "\r\n\r\n" + lsp::framed("{}"));
        EXPECT_EQ(framing.next(), "{}") << size;
    }
}

TEST(Framing, ALineWithoutEndIsDropped) {
    Framing framing;
    for (int i = 0; i < 100; ++i) {
        framing.feed(std::string(8193, 'x'));
        EXPECT_EQ(framing.next(), std::nullopt);
    }
    framing.feed("\n" + lsp::framed("{}"));
    EXPECT_EQ(framing.next(), "{}");
}

} // namespace
