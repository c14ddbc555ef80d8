// SPDX-License-Identifier: Apache-2.0
// The formatter against the C library's.
#include "base/pm_format.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using pm_format_detail::ARGUMENT;
using pm_format_detail::PARSED_FORMAT;

constexpr std::size_t BUFFER_SIZE = 4096;
constexpr std::size_t COMPARISONS = 3'000'000;  // over all formats of the program

template <pm_format_literal Format, class... Arguments>
std::string formatted(Arguments... arguments) {
    char buffer[BUFFER_SIZE];
    const std::size_t length = pm_format_text<Format>(buffer, sizeof buffer, arguments...);
    return {buffer, length};
}

// What an argument of a format is.
enum class role { star, text, character, u32, i32, u64, i64 };

template <pm_format_literal Format>
constexpr auto roles() {
    std::array<role, PARSED_FORMAT<Format>.arguments> result{};
    std::size_t at = 0;
    for (std::size_t i = 0; i < PARSED_FORMAT<Format>.count; ++i) {
        const auto &segment = PARSED_FORMAT<Format>.segments[i];
        if (segment.conversion == 0) {
            continue;
        }
        for (const int size : {segment.width, segment.precision}) {
            if (size == ARGUMENT) {
                result[at++] = role::star;
            }
        }
        const bool is_signed = segment.conversion == 'd';
        result[at++] = segment.conversion == 's'   ? role::text
                       : segment.conversion == 'c' ? role::character
                       : segment.is_long           ? (is_signed ? role::i64 : role::u64)
                                                   : (is_signed ? role::i32 : role::u32);
    }
    return result;
}

// Values at the edges of what an argument can be, and random ones between.
class value_source {
public:
    int star() { return pick({0, 1, -1, 2, 5, 6, 7, 40, -40, 255, 300, -300}, -120, 120); }

    const char *text() {
        const std::size_t which = random_() % (texts_.size() + 1);
        return which == texts_.size() ? nullptr : texts_[which].c_str();
    }

    std::uint64_t number() {
        static constexpr std::uint64_t EDGES[] = {
            0,          1,          9,          10,         99,         100,   999,       1000,
            0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 1ULL << 32, 1ULL << 63, ~0ULL, ~0ULL - 1, (1ULL << 63) - 1};
        const std::uint64_t shape = random_();
        return shape % 2 == 0 ? EDGES[shape / 2 % std::size(EDGES)] : random_() >> (shape / 2 % 64);
    }

    char character() { return static_cast<char>('!' + random_() % 90); }

    std::size_t size() { return 1 + random_() % 300; }

private:
    int pick(std::initializer_list<int> edges, int low, int high) {
        const std::uint64_t which = random_();
        if (which % 2 == 0) {
            return edges.begin()[which / 2 % edges.size()];
        }
        return low + static_cast<int>(which / 2 % static_cast<std::uint64_t>(high - low + 1));
    }

    std::mt19937_64 random_{20240305};
    std::vector<std::string> texts_ = {"",
                                       "a",
                                       "eth0/1/0/4",
                                       std::string(8, 'b'),
                                       std::string(9, 'c'),
                                       std::string(25, 'd'),
                                       std::string(26, 'e'),
                                       std::string(47, 'f'),
                                       std::string(48, 'g'),
                                       std::string(64, 'h'),
                                       std::string(255, 'i'),
                                       std::string(256, 'j'),
                                       std::string(700, 'k'),
                                       "tab\tand \xc3\xa9"};
};

value_source &values() {
    static value_source the_source;
    return the_source;
}

// The argument as the C library expects it.
template <role Role>
auto make_argument() {
    if constexpr (Role == role::star) {
        return values().star();
    } else if constexpr (Role == role::text) {
        return values().text();
    } else if constexpr (Role == role::character) {
        return static_cast<int>(values().character());
    } else if constexpr (Role == role::u32) {
        return static_cast<unsigned>(values().number());
    } else if constexpr (Role == role::i32) {
        return static_cast<int>(values().number());
    } else if constexpr (Role == role::u64) {
        return static_cast<unsigned long>(values().number());
    } else {
        return static_cast<long>(values().number());
    }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
// Compares whole and cut results; returns whether they agree.
template <pm_format_literal Format, class... Arguments>
bool agrees(Arguments... arguments) {
    char expected[BUFFER_SIZE];
    char actual[BUFFER_SIZE];
    const std::size_t size = values().size();
    std::snprintf(expected, sizeof expected, Format.text, arguments...);
    const std::size_t length = pm_format_text<Format>(actual, sizeof actual, arguments...);
    EXPECT_STREQ(actual, expected) << "format: " << Format.text;
    EXPECT_EQ(length, std::strlen(expected));
    std::snprintf(expected, size, Format.text, arguments...);
    pm_format_text<Format>(actual, size, arguments...);
    EXPECT_STREQ(actual, expected) << "format: " << Format.text << " cut at " << size;
    return !testing::Test::HasFailure();
}
#pragma GCC diagnostic pop

template <pm_format_literal Format>
bool agrees_once() {
    return []<std::size_t... Index>(std::index_sequence<Index...>) {
        return agrees<Format>(make_argument<roles<Format>()[Index]>()...);
    }
    (std::make_index_sequence<PARSED_FORMAT<Format>.arguments>{});
}

std::size_t compared = 0;
std::size_t comparisons_per_format = 0;

template <pm_format_literal Format>
void check() {
    for (std::size_t i = 0; i < comparisons_per_format && agrees_once<Format>(); ++i) {
        ++compared;
    }
}

void check_all_formats() {
#include "formats.inc"
    if (comparisons_per_format == 0) {
        comparisons_per_format = COMPARISONS / FORMATS;
    }
}

TEST(Format, EveryFormatOfTheProgramPrintsWhatTheCLibraryPrints) {
    check_all_formats();  // finds out how many formats there are
    check_all_formats();
    EXPECT_GT(compared, COMPARISONS / 2);
}

TEST(Format, ConversionsOutsideTheProgramAgreeToo) {
    comparisons_per_format = 20'000;
    compared = 0;
    check<"%s|%5s|%-5s|%.3s|%8.3s|%-8.3s|%*.*s|%-*s">();
    check<"%u|%5u|%-5u|%05u|%*u|%-*u|%lu|%20lu|%-22lu|%024lu">();
    check<"%d|%5d|%-5d|%05d|%*d|%ld|%25ld|%-25ld|%025ld">();
    check<"%x|%5x|%-5x|%02x|%*x|%lx|%18lx|%-18lx|%018lx">();
    check<"%c%%%c|%3c|%-3c|100%%">();
    EXPECT_EQ(compared, 5 * comparisons_per_format);
}

TEST(Format, ThirtyTwoBitConversionsTakeTheLowBitsOfAWiderNumber) {
    EXPECT_EQ(formatted<"%u">(0x1'0000'0007ULL), "7");
    EXPECT_EQ(formatted<"%x">(0xABCDEF0123456789ULL), "23456789");
    EXPECT_EQ(formatted<"%d">(0xFFFFFFFFULL), "-1");
}

TEST(Format, SixtyFourBitConversionsWidenANarrowerNumber) {
    EXPECT_EQ(formatted<"%lu">(std::uint16_t{65535}), "65535");
    EXPECT_EQ(formatted<"%ld">(std::int32_t{-5}), "-5");
}

TEST(Format, AnEnumerationPrintsItsNumber) {
    enum sample : std::int32_t { NEGATIVE = -2 };
    EXPECT_EQ(formatted<"%d">(NEGATIVE), "-2");
    EXPECT_EQ(formatted<"%u">(NEGATIVE), "4294967294");
}

TEST(Format, ANullTextPrintsAWord) {
    const char *absent = nullptr;
    EXPECT_EQ(formatted<"[%s]">(absent), "[(null)]");
    EXPECT_EQ(formatted<"[%.5s]">(absent), "[]");
}

TEST(Format, ABufferOfOneByteHoldsTheTerminatorOnly) {
    char buffer[1] = {'x'};
    EXPECT_EQ(pm_format_text<"%s">(buffer, sizeof buffer, "text"), 0U);
    EXPECT_EQ(buffer[0], '\0');
}

}  // namespace
