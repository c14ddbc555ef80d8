// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/address_text.h.
#include "pm_utils/address_text.h"

#include <cstring>

#include <gtest/gtest.h>

#include "pm_utils/text_ring.h"
#include "pm_utils/unshown_address_text.h"

namespace {

TEST(MacToDotted, ShortInputEndsWithinAGroup) {
    const std::uint8_t bytes[] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
    EXPECT_STREQ(pm_mac_to_dotted_str(bytes, 1), "00");
    EXPECT_STREQ(pm_mac_to_dotted_str(bytes, 2), "0011");
    EXPECT_STREQ(pm_mac_to_dotted_str(bytes, 3), "0011.22");
    EXPECT_STREQ(pm_mac_to_dotted_str(bytes, 4), "0011.2233");
    EXPECT_STREQ(pm_mac_to_dotted_str(bytes, 5), "0011.2233.44");
    EXPECT_STREQ(pm_mac_to_dotted_str(bytes, 6), "0011.2233.4455");
}

TEST(MacToDotted, SeventhByteIsNotRead) {
    const std::uint8_t bytes[] = {0xA0, 0xB1, 0xC2, 0xD3, 0xE4, 0xF5, 0x66};
    EXPECT_STREQ(pm_mac_to_dotted_str(bytes, 7), "a0b1.c2d3.e4f5");
    EXPECT_STREQ(pm_mac_to_dotted_str(bytes, 1000), "a0b1.c2d3.e4f5");
}

TEST(MacToDotted, NoBytesGiveThePreviousResult) {
    const std::uint8_t bytes[] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
    static_cast<void>(pm_mac_to_dotted_str(bytes, 6));
    EXPECT_STREQ(pm_mac_to_dotted_str(nullptr, 0), "0011.2233.4455");
    EXPECT_STREQ(pm_mac_to_dotted_str(nullptr, -1), "0011.2233.4455");
}

TEST(MacToDotted, ItsOneBufferIsOverwrittenByTheNextCall) {
    const std::uint8_t bytes[] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
    const char *first = pm_mac_to_dotted_str(bytes, 6);
    static_cast<void>(pm_mac_to_dotted_str(bytes, 2));
    EXPECT_STREQ(first, "0011");
    const pm_address_type ethernet{PM_ADDRESS_ETHERNET, {0x00, 0x1A, 0xB2, 0x33, 0x44, 0xFF}};
    static_cast<void>(pm_address_to_str(&ethernet));
    EXPECT_STREQ(first, "001a.b233.44ff");
}

TEST(PrefixStr, AppendsTheLength) {
    const pm_prefix_t ipv4{2, 16, {10, 1}};
    const pm_prefix_t ipv6{10, 128, {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7}};
    EXPECT_STREQ(pm_prefix_str(&ipv4), "10.1.0.0/16");
    EXPECT_STREQ(pm_prefix_str(&ipv6), "2001:db8::7/128");
}

TEST(PrefixStr, LengthIsAByteWhateverTheFamily) {
    const pm_prefix_t prefix{2, 255, {10, 1}};
    EXPECT_STREQ(pm_prefix_str(&prefix), "10.1.0.0/255");
}

TEST(PrefixStr, LastByteOfItsSlotIsCleared) {
    const pm_prefix_t prefix{2, 16, {10, 1}};
    for (std::size_t slot = 0; slot < PM_TEXT_RING_SLOTS; ++slot) {
        pm_next_text_slot()[255] = 'x';
    }
    EXPECT_EQ(pm_prefix_str(&prefix)[255], '\0');
}

TEST(PrefixStr, NullIsTheEmptyPrefix) { EXPECT_STREQ(pm_prefix_str(nullptr), "Empty prefix"); }

}  // namespace
