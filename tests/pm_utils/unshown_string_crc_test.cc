// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_string_crc.h.
#include "pm_utils/unshown_string_crc.h"

#include <string>

#include <gtest/gtest.h>

namespace {

// The bits of the low `width` bits of `value` in reverse order.
std::uint32_t reflect(std::uint32_t value, int width) {
    std::uint32_t reflected = 0;
    for (int bit = 0; bit < width; ++bit) {
        reflected = (reflected << 1) | ((value >> bit) & 1);
    }
    return reflected;
}

// Entry `index` of the reflected IEEE 802.3 table, by long division with the unreflected polynomial.
std::uint32_t reflected_table_entry(std::uint32_t index) {
    std::uint32_t remainder = reflect(index, 8) << 24;
    for (int bit = 0; bit < 8; ++bit) {
        const bool carry = (remainder & 0x80000000) != 0;
        remainder <<= 1;
        if (carry) {
            remainder ^= 0x04C11DB7;
        }
    }
    return reflect(remainder, 32);
}

std::uint32_t bitwise_crc(const std::string &text) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char character : text) {
        crc = (crc << 8) ^ reflected_table_entry((crc >> 24) ^ static_cast<unsigned char>(character));
    }
    return ~crc;
}

TEST(StringCrc32, EmptyTextIsZero) { EXPECT_EQ(pm_string_crc32(""), 0U); }

// With the byte 0xFF the table's index is 0 and its entry 0: 0xFFFFFF00 remains, inverted 0xFF.
// With 0xFE the index is 1: 0xFFFFFF00 ^ 0x77073096 = 0x88F8CF96, inverted 0x77073069.
TEST(StringCrc32, OneByteIsItsTableEntryShiftedLeft) {
    EXPECT_EQ(pm_string_crc32("\xFF"), 0x000000FFU);
    EXPECT_EQ(pm_string_crc32("\xFE"), 0x77073069U);
}

// The second 0xFF has the index 0 again: 0xFFFF0000 remains.
TEST(StringCrc32, UpdateShiftsLeft) { EXPECT_EQ(pm_string_crc32("\xFF\xFF"), 0x0000FFFFU); }

// CBF43926 is the check value of the common CRC-32 for these digits, FC891918 that of its
// unreflected sister.
TEST(StringCrc32, IsNoStandardCrc) {
    EXPECT_NE(pm_string_crc32("123456789"), 0xCBF43926U);
    EXPECT_NE(pm_string_crc32("123456789"), 0xFC891918U);
}

TEST(StringCrc32, EveryTableEntryMatchesTheLongDivision) {
    for (int byte = 1; byte <= 255; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        EXPECT_EQ(pm_string_crc32(text.c_str()), bitwise_crc(text)) << "for the byte " << byte;
    }
}

TEST(StringCrc32, LongerTextsMatchTheLongDivision) {
    const std::string texts[] = {
        "a", "gold", "123456789", "eth0/1/0/4", "srte_c_100_ep_10.0.0.1", std::string(1000, '\x80')};
    for (const std::string &text : texts) {
        EXPECT_EQ(pm_string_crc32(text.c_str()), bitwise_crc(text)) << "for the text " << text;
    }
}

}  // namespace
