// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_address_text.h.
#include "pm_utils/unshown_address_text.h"

#include <cstring>

#include <gtest/gtest.h>

#include "pm_utils/text_ring.h"

namespace {

constexpr pm_address_type ETHERNET{1, {0x00, 0x1A, 0xB2, 0x33, 0x44, 0xFF}};
constexpr pm_address_type IPV4{2, {10, 1, 1, 1}};
constexpr pm_address_type IPV6{3, {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}};
constexpr pm_address_type UNKNOWN{0, {10, 1, 1, 1}};
constexpr pm_address_type INVALID{4, {10, 1, 1, 1}};

TEST(AddressToStr, KindAndValueAreSeparatedByABlank) {
    EXPECT_STREQ(pm_address_to_str(&IPV4), "IPv4 10.1.1.1");
    EXPECT_STREQ(pm_address_to_str(&IPV6), "IPv6 2001:db8::1");
    EXPECT_STREQ(pm_address_to_str(&ETHERNET), "Ethernet 001a.b233.44ff");
}

TEST(AddressToStr, KindsWithoutAValueAreAlone) {
    EXPECT_STREQ(pm_address_to_str(&UNKNOWN), "Unknown address");
    EXPECT_STREQ(pm_address_to_str(&INVALID), "Invalid address");
}

TEST(AddressToStr, NullIsUnknown) { EXPECT_STREQ(pm_address_to_str(nullptr), "Unknown"); }

TEST(AddressValueStr, GivesTheBareValue) {
    EXPECT_STREQ(pm_address_value_str(&IPV4), "10.1.1.1");
    EXPECT_STREQ(pm_address_value_str(&IPV6), "2001:db8::1");
    EXPECT_STREQ(pm_address_value_str(&ETHERNET), "001a.b233.44ff");
}

TEST(AddressValueStr, NoValueIsNull) {
    EXPECT_EQ(pm_address_value_str(&UNKNOWN), nullptr);
    EXPECT_EQ(pm_address_value_str(&INVALID), nullptr);
    EXPECT_EQ(pm_address_value_str(nullptr), nullptr);
}

TEST(MacStr, GroupsFourLowerCaseDigits) { EXPECT_STREQ(pm_mac_str(ETHERNET.value), "001a.b233.44ff"); }

TEST(MacStr, LaterResultsLeaveItAlone) {
    const std::uint8_t zeros[6] = {};
    const char *first = pm_mac_str(ETHERNET.value);
    EXPECT_STREQ(pm_mac_str(zeros), "0000.0000.0000");
    EXPECT_STREQ(first, "001a.b233.44ff");
}

TEST(EndpointKey, JoinsFamilyValueAndVrf) {
    const pm_address_type address{2, {10, 0, 0, 1}};
    char key[64];
    pm_endpoint_key_str(&address, "default", key, sizeof key);
    EXPECT_STREQ(key, "IPv4-10.0.0.1-vrf-default");
    pm_endpoint_key_str(&IPV6, "red", key, sizeof key);
    EXPECT_STREQ(key, "IPv6-2001:db8::1-vrf-red");
    pm_endpoint_key_str(&ETHERNET, "", key, sizeof key);
    EXPECT_STREQ(key, "Ethernet-001a.b233.44ff-vrf-");
}

TEST(EndpointKey, AddressWithoutValuePrintsAsANullText) {
    char key[64];
    pm_endpoint_key_str(&UNKNOWN, "default", key, sizeof key);
    EXPECT_STREQ(key, "-(null)-vrf-default");
}

TEST(EndpointKey, IsCutToItsBufferAndTerminated) {
    char key[9];
    std::memset(key, 'x', sizeof key);
    pm_endpoint_key_str(&IPV4, "default", key, 8);
    EXPECT_STREQ(key, "IPv4-10");
    EXPECT_EQ(key[8], 'x');
}

TEST(EndpointKey, ShorterKeyStillTerminatesTheLastByte) {
    char key[64];
    std::memset(key, 'x', sizeof key);
    pm_endpoint_key_str(&IPV4, "default", key, sizeof key);
    EXPECT_STREQ(key, "IPv4-10.1.1.1-vrf-default");
    EXPECT_EQ(key[63], '\0');
}

TEST(EndpointKey, NullPointersAndNoRoomDoNothing) {
    char key[8] = "before";
    pm_endpoint_key_str(nullptr, "default", key, sizeof key);
    EXPECT_STREQ(key, "before");
    pm_endpoint_key_str(&IPV4, nullptr, key, sizeof key);
    EXPECT_STREQ(key, "before");
    pm_endpoint_key_str(&IPV4, "default", key, 0);
    EXPECT_STREQ(key, "before");
    pm_endpoint_key_str(&IPV4, "default", nullptr, sizeof key);
}

}  // namespace
