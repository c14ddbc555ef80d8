// SPDX-License-Identifier: Apache-2.0
// Texts of single values, read and written.
#include "perf-store/datasets/value_text.h"

#include <array>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using namespace perf_store;
using namespace std::string_literals;

struct number_case {
    std::string_view text;
    std::uint64_t value;
    bool negative;
};

class GoodNumber : public testing::TestWithParam<number_case> {};

TEST_P(GoodNumber, IsRead) {
    std::uint64_t value = 77;
    bool negative = !GetParam().negative;
    ASSERT_EQ(parse_integer(GetParam().text, &value, &negative), number_result::ok) << GetParam().text;
    EXPECT_EQ(value, GetParam().value) << GetParam().text;
    EXPECT_EQ(negative, GetParam().negative) << GetParam().text;
}

constexpr number_case GOOD_NUMBERS[] = {
    // Decimal.
    {"0", 0, false},
    {"7", 7, false},
    {"1234567890", 1234567890, false},
    {"4294967295", 4294967295, false},
    {"4294967296", 4294967296, false},
    {"9223372036854775807", 9223372036854775807, false},
    {"9223372036854775808", 9223372036854775808U, false},
    {"18446744073709551615", 18446744073709551615U, false},
    // Hexadecimal, both cases of the prefix and of the digits.
    {"0x0", 0, false},
    {"0x1f", 31, false},
    {"0X1F", 31, false},
    {"0xAbCdEf", 0xABCDEF, false},
    {"0x000000000000000000001", 1, false},
    {"0xffffffffffffffff", 18446744073709551615U, false},
    // Octal.
    {"00", 0, false},
    {"017", 15, false},
    {"0777", 511, false},
    {"01777777777777777777777", 18446744073709551615U, false},
    // Negative, as two's complement.
    {"-1", 0xFFFFFFFFFFFFFFFF, true},
    {"-0x10", 0xFFFFFFFFFFFFFFF0, true},
    {"-010", 0xFFFFFFFFFFFFFFF8, true},
    {"-9223372036854775808", 0x8000000000000000, true},
    {"-0x8000000000000000", 0x8000000000000000, true},
    // Minus zero is zero.
    {"-0", 0, false},
    {"-0x0", 0, false},
};

INSTANTIATE_TEST_SUITE_P(ReadInteger, GoodNumber, testing::ValuesIn(GOOD_NUMBERS));

TEST(ReadInteger, WhatIsNoIntegerIsRefused) {
    for (const std::string_view text :
         {"",    " ",   "-",    "--1",   "+1",    "- 1", " 1", "1 ",  "1\n",  "x",
          "0x",  "-0x", "0x-1", "0xg",   "0x1g",  "x1f", "1f", "08",  "09",   "0o7",
          "018", "1.0", "1e3",  "1,000", "0x1.8", "1u",  "1L", "ten", "0 x1", "18446744073709551616x"}) {
        std::uint64_t value = 0;
        bool negative = false;
        EXPECT_EQ(parse_integer(text, &value, &negative), number_result::not_a_number) << '"' << text << '"';
    }
}

TEST(ReadInteger, AZeroByteIsNoDigit) {
    std::uint64_t value = 0;
    bool negative = false;
    EXPECT_EQ(parse_integer("1\0"s, &value, &negative), number_result::not_a_number);
}

TEST(ReadInteger, NumbersBeyondSixtyFourBitsAreOutOfRange) {
    for (const std::string_view text :
         {"18446744073709551616", "99999999999999999999999999", "0x10000000000000000", "02000000000000000000000",
          "-9223372036854775809", "-0x8000000000000001", "-18446744073709551615", "-18446744073709551616"}) {
        std::uint64_t value = 0;
        bool negative = false;
        EXPECT_EQ(parse_integer(text, &value, &negative), number_result::out_of_range) << text;
    }
}

TEST(ReadInteger, ReadsNoFurtherThanItsText) {
    const std::string_view text = std::string_view("12345").substr(0, 2);
    std::uint64_t value = 0;
    bool negative = false;
    ASSERT_EQ(parse_integer(text, &value, &negative), number_result::ok);
    EXPECT_EQ(value, 12U);
}

// Octets in the order in which they stand.
template <std::size_t Count>
std::string shown(const std::array<std::uint8_t, Count> &octets) {
    std::string text;
    append_hexadecimal(octets.data(), Count, &text);
    return text;
}

TEST(Ipv4, IsReadInNetworkByteOrder) {
    std::array<std::uint8_t, 4> octets{};
    ASSERT_TRUE(parse_ipv4("10.1.2.255", octets.data()));
    EXPECT_EQ(shown(octets), "0a0102ff");
    ASSERT_TRUE(parse_ipv4("0.0.0.0", octets.data()));
    EXPECT_EQ(shown(octets), "00000000");
    ASSERT_TRUE(parse_ipv4("255.255.255.255", octets.data()));
    EXPECT_EQ(shown(octets), "ffffffff");
}

TEST(Ipv4, OtherTextsAreRefused) {
    std::array<std::uint8_t, 4> octets{};
    for (const std::string_view text : {"", "10", "10.0.0", "10.0.0.", "10.0.0.256", "10.0.0.1.2", "10.0.0.-1",
                                        "10.0.0.1 ", " 10.0.0.1", "a.b.c.d", "::1", "10.0.0.1/24", "0x0a.0.0.1"}) {
        EXPECT_FALSE(parse_ipv4(text, octets.data())) << text;
    }
    EXPECT_FALSE(parse_ipv4("10.0.0.1\0"s, octets.data()));
    EXPECT_FALSE(parse_ipv4(std::string(1000, '1'), octets.data()));
}

TEST(Ipv4, IsWrittenDotted) {
    const std::uint8_t octets[] = {192, 0, 2, 1};
    std::string text = "at ";
    append_ipv4(octets, &text);
    EXPECT_EQ(text, "at 192.0.2.1");
}

TEST(Ipv6, AllFormsAreRead) {
    std::array<std::uint8_t, 16> octets{};
    ASSERT_TRUE(parse_ipv6("2001:db8::1", octets.data()));
    EXPECT_EQ(shown(octets), "20010db8000000000000000000000001");
    ASSERT_TRUE(parse_ipv6("2001:0DB8:0:0:0:0:0:1", octets.data()));
    EXPECT_EQ(shown(octets), "20010db8000000000000000000000001");
    ASSERT_TRUE(parse_ipv6("::", octets.data()));
    EXPECT_EQ(shown(octets), "00000000000000000000000000000000");
    ASSERT_TRUE(parse_ipv6("::ffff:10.0.0.1", octets.data()));
    EXPECT_EQ(shown(octets), "00000000000000000000ffff0a000001");
    // The longest form.
    ASSERT_TRUE(parse_ipv6("ffff:ffff:ffff:ffff:ffff:ffff:255.255.255.255", octets.data()));
    EXPECT_EQ(shown(octets), "ffffffffffffffffffffffffffffffff");
}

TEST(Ipv6, OtherTextsAreRefused) {
    std::array<std::uint8_t, 16> octets{};
    for (const std::string_view text :
         {"", ":", ":::", "1", "1:2:3:4:5:6:7", "1:2:3:4:5:6:7:8:9", "1::2::3", "g::", "12345::", "10.0.0.1",
          "2001:db8::1%eth0", "2001:db8::/64", "[::1]", " ::1", "::1 "}) {
        EXPECT_FALSE(parse_ipv6(text, octets.data())) << text;
    }
    EXPECT_FALSE(parse_ipv6("::1\0"s, octets.data()));
    EXPECT_FALSE(parse_ipv6(std::string(1000, ':'), octets.data()));
}

TEST(Ipv6, IsWrittenInItsShortestForm) {
    const std::uint8_t octets[16] = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xAB};
    const std::uint8_t zero[16] = {};
    std::string text = "at ";
    append_ipv6(octets, &text);
    EXPECT_EQ(text, "at 2001:db8::ab");
    text.clear();
    append_ipv6(zero, &text);
    EXPECT_EQ(text, "::");
}

TEST(Mac, BothFormsAreRead) {
    std::array<std::uint8_t, 6> octets{};
    ASSERT_TRUE(parse_mac("00:11:22:33:44:55", octets.data()));
    EXPECT_EQ(shown(octets), "001122334455");
    ASSERT_TRUE(parse_mac("aabb.ccdd.eeff", octets.data()));
    EXPECT_EQ(shown(octets), "aabbccddeeff");
    ASSERT_TRUE(parse_mac("AA:bB:0c:DD:ee:FF", octets.data()));
    EXPECT_EQ(shown(octets), "aabb0cddeeff");
    ASSERT_TRUE(parse_mac("0011.2233.4455", octets.data()));
    EXPECT_EQ(shown(octets), "001122334455");
}

TEST(Mac, OtherTextsAreRefused) {
    std::array<std::uint8_t, 6> octets{};
    for (const std::string_view text :
         {"", "001122334455", "00:11:22:33:44", "00:11:22:33:44:5", "00:11:22:33:44:555", "00-11-22-33-44-55",
          "00:11:22:33:44.55", "00.11.22.33.44.55", "0011:2233:4455", "0011.2233.445", "0011.2233.44556",
          "0011.22334.455", "0g:11:22:33:44:55", "00:11:22:33:44:5 ", " 0:11:22:33:44:55", "001122.334455",
          "0:11:22:33:44:555"}) {
        EXPECT_FALSE(parse_mac(text, octets.data())) << text;
    }
}

TEST(Mac, IsWrittenWithColons) {
    const std::uint8_t octets[] = {0x00, 0x1A, 0xB2, 0x33, 0x44, 0xFF};
    std::string text = "at ";
    append_mac(octets, &text);
    EXPECT_EQ(text, "at 00:1a:b2:33:44:ff");
}

TEST(Hexadecimal, IsReadInEitherCase) {
    std::array<std::uint8_t, 5> octets{};
    ASSERT_TRUE(parse_hexadecimal("00fFA19a7F", octets.data()));
    EXPECT_EQ(shown(octets), "00ffa19a7f");
}

TEST(Hexadecimal, NoDigitsAreNoBytes) {
    std::uint8_t untouched = 0x5A;
    EXPECT_TRUE(parse_hexadecimal("", &untouched));
    EXPECT_EQ(untouched, 0x5A);
}

TEST(Hexadecimal, AnOddNumberOfDigitsAndOtherLettersAreRefused) {
    std::array<std::uint8_t, 8> octets{};
    for (const std::string_view text :
         {"0", "000", "0g", "g0", "0x12", " 12 ", "1 ", "-1", "/0", ":0", "@0", "`0", "G0", "\xE1\x30"}) {
        EXPECT_FALSE(parse_hexadecimal(text, octets.data())) << text;
    }
}

TEST(Hexadecimal, IsWrittenInLowerCase) {
    const std::uint8_t octets[] = {0x00, 0xFF, 0xA1, 0x0B};
    std::string text = "at ";
    append_hexadecimal(octets, 4, &text);
    EXPECT_EQ(text, "at 00ffa10b");
    append_hexadecimal(octets, 0, &text);
    EXPECT_EQ(text, "at 00ffa10b");
}

TEST(AppendNumber, WritesTheEdgesOfEachWidth) {
    std::string text;
    append_number(std::uint32_t{0}, &text);
    append_number(std::int32_t{-2147483647 - 1}, &text);
    EXPECT_EQ(text, "0-2147483648");
    append_number(std::uint64_t{18446744073709551615U}, &text);
    EXPECT_EQ(text, "0-214748364818446744073709551615");
}

std::string json(std::string_view text) {
    std::string out = "at ";
    EXPECT_TRUE(append_json_text(text, &out));
    EXPECT_EQ(out.substr(0, 3), "at ");
    return out.substr(3);
}

TEST(JsonText, StandsInQuotes) {
    EXPECT_EQ(json(""), R"("")");
    EXPECT_EQ(json("eth0/1/0/4"), R"("eth0/1/0/4")");
    EXPECT_EQ(json("a b~!'<>&"), R"("a b~!'<>&")");
}

TEST(JsonText, QuotesAndBackslashesAreEscaped) {
    EXPECT_EQ(json(R"(")"), R"("\"")");
    EXPECT_EQ(json(R"(\)"), R"("\\")");
    EXPECT_EQ(json(R"(a\"b)"), R"("a\\\"b")");
}

TEST(JsonText, EveryControlByteIsEscapedByItsNumber) {
    EXPECT_EQ(json("\0"s), R"("\u0000")");
    EXPECT_EQ(json("\t\n\r\b\f"), R"("\u0009\u000a\u000d\u0008\u000c")");
    EXPECT_EQ(json("\x01\x1f"), R"("\u0001\u001f")");
    EXPECT_EQ(json("a\x1b[2Jb"), R"("a\u001b[2Jb")");
    EXPECT_EQ(json("\x7f"), R"("\u007f")");
    for (char byte = 0; byte < 0x20; ++byte) {
        EXPECT_EQ(json({&byte, 1}).size(), 8U) << static_cast<int>(byte);  // quotes and \u00XX
    }
}

TEST(JsonText, Utf8StaysAsItIsToTheEdgesOfEachLength) {
    for (const std::string_view text : {"\x20", "\x7e",                          // one byte
                                        "\xC2\x80", "\xDF\xBF",                  // two
                                        "\xE0\xA0\x80", "\xED\x9F\xBF",          // three, to the surrogates
                                        "\xEE\x80\x80", "\xEF\xBF\xBF",          // and after them
                                        "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF",  // four, to the last code point
                                        "K\xC3\xB6ln \xE6\x97\xA5 \xF0\x9F\x98\x80!"}) {
        EXPECT_EQ(json(text), '"' + std::string(text) + '"');
    }
}

struct broken_text {
    const char *what;
    std::string_view bytes;
};

constexpr broken_text BROKEN[] = {
    {"a lone continuation byte", "\x80"},
    {"the last continuation byte", "\xBF"},
    {"two bytes cut short", "\xC3"},
    {"three bytes cut to one", "\xE6"},
    {"three bytes cut to two", "\xE6\x97"},
    {"four bytes cut to one", "\xF0"},
    {"four bytes cut to two", "\xF0\x9F"},
    {"four bytes cut to three", "\xF0\x9F\x98"},
    {"a letter for the second byte", "\xC3("},
    {"a letter for the third byte", "\xE6\x97("},
    {"a letter for the fourth byte", "\xF0\x9F\x98("},
    {"a lead byte for the second byte", "\xC3\xC3"},
    {"an overlong slash of two bytes", "\xC0\xAF"},
    {"the largest overlong form of two bytes", "\xC1\xBF"},
    {"an overlong slash of three bytes", "\xE0\x80\xAF"},
    {"the largest overlong form of three bytes", "\xE0\x9F\xBF"},
    {"an overlong slash of four bytes", "\xF0\x80\x80\xAF"},
    {"the largest overlong form of four bytes", "\xF0\x8F\xBF\xBF"},
    {"the first surrogate", "\xED\xA0\x80"},
    {"the last surrogate", "\xED\xBF\xBF"},
    {"one beyond the last code point", "\xF4\x90\x80\x80"},
    {"a lead byte beyond Unicode", "\xF5\x80\x80\x80"},
    {"five bytes", "\xF8\x88\x80\x80\x80"},
    {"six bytes", "\xFC\x84\x80\x80\x80\x80"},
    {"FE", "\xFE"},
    {"FF", "\xFF"},
    {"Latin 1", "K\xF6ln"},
};

TEST(JsonText, WhatIsNotUtf8IsRefusedAndNothingAppended) {
    for (const broken_text &each : BROKEN) {
        std::string out = "before";
        EXPECT_FALSE(append_json_text(each.bytes, &out)) << each.what;
        EXPECT_EQ(out, "before") << each.what;
        EXPECT_FALSE(append_json_text("good " + std::string(each.bytes) + " good", &out)) << each.what;
        EXPECT_EQ(out, "before") << each.what;
    }
}

TEST(JsonText, ASequenceThatGoesOnBehindItsTextIsCutShort) {
    const std::string_view whole = "\xF0\x9F\x98\x80";
    for (std::size_t length = 1; length < whole.size(); ++length) {
        std::string out;
        EXPECT_FALSE(append_json_text(whole.substr(0, length), &out)) << length;
    }
}

TEST(IsUtf8, FindsABrokenSequenceWhereverItStands) {
    for (const broken_text &each : BROKEN) {
        for (std::size_t before = 0; before < 20; ++before) {
            const std::string text = std::string(before, 'x') + std::string(each.bytes);
            EXPECT_FALSE(is_utf8(text)) << each.what << " after " << before;
            EXPECT_FALSE(is_utf8(text + std::string(20, 'x'))) << each.what << " after " << before;
        }
    }
}

TEST(IsUtf8, TakesEveryGoodText) {
    EXPECT_TRUE(is_utf8(""));
    EXPECT_TRUE(is_utf8("eth0/1/0/4\n\x7f"));
    EXPECT_TRUE(is_utf8("a\0b"s));
    for (std::size_t before = 0; before < 20; ++before) {
        EXPECT_TRUE(
            is_utf8(std::string(before, 'x') + "\xC3\xB6\xE6\x97\xA5\xF0\x9F\x98\x80" + std::string(before, 'y')));
    }
}

}  // namespace
