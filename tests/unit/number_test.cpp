// Numeric fields: the conversions of bare numbers.
#include "util/number.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

namespace {

constexpr std::uint32_t kUntouched32 = 0xDEADBEEF;

using Value32 = std::optional<std::uint32_t>;

// Each of these gives the value, or nothing after checking that a failure is -1 and stores nothing.
Value32 based(const std::string &text, int base) {
    std::uint32_t value = kUntouched32;
    const int result = base_to_number(text.c_str(), value, base);
    if (result == 0) {
        return value;
    }
    EXPECT_EQ(result, -1) << text;
    EXPECT_EQ(value, kUntouched32) << text;
    return {};
}

Value32 chosen(const std::string &text) {
    std::uint32_t value = kUntouched32;
    const int result = ascii_to_number(text.c_str(), value);
    if (result == 0) {
        return value;
    }
    EXPECT_EQ(result, -1) << text;
    EXPECT_EQ(value, kUntouched32) << text;
    return {};
}

// ---- base_to_number ----

TEST(BaseToNumber, FailsForAnEmptyText) {
    for (const int base : {16, 10, 2}) {
        EXPECT_EQ(based("", base), Value32()) << base;
    }
}

TEST(BaseToNumber, ReadsEachBase) {
    EXPECT_EQ(based("19afAF", 16), Value32(0x19AFAF));
    EXPECT_EQ(based("0190", 10), Value32(190));
    EXPECT_EQ(based("0101", 2), Value32(5));
}

TEST(BaseToNumber, AnyOtherBaseIsBinary) {
    for (const int base : {0, 8, -1, 17}) {
        EXPECT_EQ(based("11", base), Value32(3)) << base;
        EXPECT_EQ(based("7", base), Value32()) << base;
    }
}

TEST(BaseToNumber, AcceptsEachHexadecimalPrefix) {
    EXPECT_EQ(based("0x1F", 16), Value32(0x1F));
    EXPECT_EQ(based("0X1F", 16), Value32(0x1F));
    EXPECT_EQ(based("$1F", 16), Value32(0x1F));
}

TEST(BaseToNumber, AcceptsOnePrefixOnly) {
    EXPECT_EQ(based("$0x1", 16), Value32());
    EXPECT_EQ(based("0x$1", 16), Value32());
    EXPECT_EQ(based("$$1", 16), Value32());
}

TEST(BaseToNumber, APrefixBelongsToBase16Only) {
    EXPECT_EQ(based("0x1", 10), Value32());
    EXPECT_EQ(based("$1", 10), Value32());
    EXPECT_EQ(based("0x1", 2), Value32());
    EXPECT_EQ(based("$1", 2), Value32());
}

TEST(BaseToNumber, ALeadingMinusNegatesInEveryBase) {
    EXPECT_EQ(based("-10", 16), Value32(0xFFFFFFF0));
    EXPECT_EQ(based("-0x10", 16), Value32(0xFFFFFFF0));
    EXPECT_EQ(based("-$10", 16), Value32(0xFFFFFFF0));
    EXPECT_EQ(based("-10", 10), Value32(0xFFFFFFF6));
    EXPECT_EQ(based("-10", 2), Value32(0xFFFFFFFE));
    EXPECT_EQ(based("--1", 10), Value32());
}

TEST(BaseToNumber, AFieldWithoutDigitsIs0) {
    for (const int base : {16, 10, 2}) {
        EXPECT_EQ(based(":", base), Value32(0)) << base;
        EXPECT_EQ(based(" 5", base), Value32(0)) << base;
        EXPECT_EQ(based("-", base), Value32(0)) << base;
    }
    EXPECT_EQ(based("$", 16), Value32(0));
    EXPECT_EQ(based("0x:", 16), Value32(0));
}

TEST(BaseToNumber, AFieldEndsAtAColonOrABlank) {
    for (const std::string end : {":9", " 9", "\t9", "\n", "\x01"}) {
        EXPECT_EQ(based("1F" + end, 16), Value32(0x1F));
        EXPECT_EQ(based("12" + end, 10), Value32(12));
        EXPECT_EQ(based("10" + end, 2), Value32(2));
    }
}

TEST(BaseToNumber, BytesFrom128UpCountAsBlanks) {
    EXPECT_EQ(based("1F\x80", 16), Value32(0x1F));
    EXPECT_EQ(based("12\xFF", 10), Value32(12));
    EXPECT_EQ(based("10\xE9", 2), Value32(2));
}

TEST(BaseToNumber, AnyOtherByteFails) {
    EXPECT_EQ(based("1G", 16), Value32());
    EXPECT_EQ(based("1,2", 16), Value32());
    EXPECT_EQ(based("12A", 10), Value32());
    EXPECT_EQ(based("1-", 10), Value32());
    EXPECT_EQ(based("12;", 10), Value32());
    EXPECT_EQ(based("102", 2), Value32());
}

TEST(BaseToNumber, WrapsSilentlyAt32Bits) {
    EXPECT_EQ(based("FFFFFFFF", 16), Value32(0xFFFFFFFF));
    EXPECT_EQ(based("100000000", 16), Value32(0));
    EXPECT_EQ(based("123456789A", 16), Value32(0x3456789A));
    EXPECT_EQ(based("4294967295", 10), Value32(0xFFFFFFFF));
    EXPECT_EQ(based("4294967296", 10), Value32(0));
    EXPECT_EQ(based("4294967297", 10), Value32(1));
    EXPECT_EQ(based(std::string(33, '1'), 2), Value32(0xFFFFFFFF));
    EXPECT_EQ(based("-4294967295", 10), Value32(1));
}

// ---- ascii_to_number ----

TEST(AsciiToNumber, ALowerCasePrefixAloneMakesHexadecimal) {
    EXPECT_EQ(chosen("0x10"), Value32(16));
    EXPECT_EQ(chosen("0xfF"), Value32(255));
    EXPECT_EQ(chosen("0X10"), Value32());
}

TEST(AsciiToNumber, ALeading0IsDecimal) {
    EXPECT_EQ(chosen("010"), Value32(10));
    EXPECT_EQ(chosen("0"), Value32(0));
    EXPECT_EQ(chosen("09"), Value32(9));
    EXPECT_EQ(chosen("0:"), Value32(0));
}

TEST(AsciiToNumber, ADollarMakesHexadecimal) {
    EXPECT_EQ(chosen("$1f"), Value32(31));
    EXPECT_EQ(chosen("$1G"), Value32());
    EXPECT_EQ(chosen("$-10"), Value32());
    EXPECT_EQ(chosen("0x-10"), Value32());
}

TEST(AsciiToNumber, AMinusTakesDecimalDigitsOnly) {
    EXPECT_EQ(chosen("-5"), Value32(0xFFFFFFFB));
    EXPECT_EQ(chosen("-$5"), Value32());
    EXPECT_EQ(chosen("-0x5"), Value32());
    EXPECT_EQ(chosen("-A"), Value32());
    EXPECT_EQ(chosen("--5"), Value32());
}

TEST(AsciiToNumber, AMinusWithoutDigitsIs0) {
    EXPECT_EQ(chosen("-:"), Value32(0));
    EXPECT_EQ(chosen("- 5"), Value32(0));
    EXPECT_EQ(chosen("-"), Value32(0));
}

TEST(AsciiToNumber, AFieldEndsAtAColonOrABlank) {
    EXPECT_EQ(chosen("12:"), Value32(12));
    EXPECT_EQ(chosen("12:34"), Value32(12));
    EXPECT_EQ(chosen("12 34"), Value32(12));
    EXPECT_EQ(chosen("$1F\n"), Value32(31));
    EXPECT_EQ(chosen("-5:x"), Value32(0xFFFFFFFB));
    EXPECT_EQ(chosen("12\xE9"), Value32(12));
}

TEST(AsciiToNumber, AnythingElseFails) {
    for (const char *text : {"", "abc", ":", " 5", "%101", "+5", "'A'", "12A", "F", "\xE9"}) {
        EXPECT_EQ(chosen(text), Value32()) << text;
    }
}

TEST(AsciiToNumber, WrapsSilentlyAt32Bits) {
    EXPECT_EQ(chosen("4294967295"), Value32(0xFFFFFFFF));
    EXPECT_EQ(chosen("4294967296"), Value32(0));
    EXPECT_EQ(chosen("$100000001"), Value32(1));
}

} // namespace
