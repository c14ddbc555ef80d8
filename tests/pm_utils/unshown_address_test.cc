// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_address.h.
#include "pm_utils/unshown_address.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

#include <gtest/gtest.h>

#include "tests/pm_utils/expect_names.h"

namespace {

// An address of `type` whose value begins with `octets` and goes on with zeros.
pm_address_type address_of(std::uint32_t type, std::initializer_list<std::uint8_t> octets) {
    pm_address_type address{type, {}};
    std::copy(octets.begin(), octets.end(), address.value);
    return address;
}

// 10.1.1.1 in network byte order.
std::uint32_t ten_one_one_one() {
    const std::uint8_t octets[] = {10, 1, 1, 1};
    std::uint32_t address;
    std::memcpy(&address, octets, sizeof address);
    return address;
}

TEST(AddressType, KindsHaveTheirNames) {
    expect_names(pm_address_type_str, {{0, "Unknown address"}, {1, "Ethernet"}, {2, "IPv4"}, {3, "IPv6"}},
                 "Invalid address");
}

TEST(AddressType, FamilyPrefixIsEmptyForUnknownAndInvalid) {
    expect_names(pm_address_family_prefix_str, {{1, "Ethernet"}, {2, "IPv4"}, {3, "IPv6"}}, "");
}

TEST(AddressType, OnlyIpHasAnAddressFamily) {
    EXPECT_EQ(pm_address_type_to_af(0), 0U);
    EXPECT_EQ(pm_address_type_to_af(1), 0U);
    EXPECT_EQ(pm_address_type_to_af(2), 1U);
    EXPECT_EQ(pm_address_type_to_af(3), 2U);
    EXPECT_EQ(pm_address_type_to_af(4), 0U);
    EXPECT_EQ(pm_address_type_to_af(0xFFFFFFFF), 0U);
}

TEST(AddressSet, Ipv4SetsTypeAndFirstFourBytes) {
    pm_address_type address = address_of(7, {9, 9, 9, 9, 9});
    pm_address_set_ipv4(&address, ten_one_one_one());
    const std::uint8_t expected[] = {10, 1, 1, 1, 9};
    EXPECT_EQ(address.type, 2U);
    EXPECT_EQ(std::memcmp(address.value, expected, sizeof expected), 0);
    EXPECT_EQ(pm_address_ipv4(address), ten_one_one_one());
}

TEST(AddressSet, Ipv4FromPointerSetsTheSame) {
    pm_address_type address = address_of(7, {});
    const std::uint32_t source = ten_one_one_one();
    pm_address_set_ipv4_from_ptr(&address, &source);
    EXPECT_EQ(address.type, 2U);
    EXPECT_EQ(pm_address_ipv4(address), ten_one_one_one());
}

TEST(AddressSet, Ipv6CopiesSixteenBytes) {
    pm_address_type address = address_of(7, {});
    const std::uint8_t octets[16] = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x42};
    pm_address_set_ipv6(&address, octets);
    EXPECT_EQ(address.type, 3U);
    EXPECT_EQ(std::memcmp(address.value, octets, sizeof octets), 0);
}

TEST(AddressSet, Ipv6FromNullIsAllZeros) {
    pm_address_type address = address_of(7, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    const std::uint8_t zeros[16] = {};
    pm_address_set_ipv6(&address, nullptr);
    EXPECT_EQ(address.type, 3U);
    EXPECT_EQ(std::memcmp(address.value, zeros, sizeof zeros), 0);
}

// A write through the null target would end the test program.
TEST(AddressSetDeath, NullTargetIsLeftAlone) {
    const auto set_all = [] {
        const std::uint32_t ipv4 = ten_one_one_one();
        const std::uint8_t ipv6[16] = {};
        pm_address_set_ipv4(nullptr, ipv4);
        pm_address_set_ipv4_from_ptr(nullptr, &ipv4);
        pm_address_set_ipv6(nullptr, ipv6);
        std::exit(0);
    };
    EXPECT_EXIT(set_all(), testing::ExitedWithCode(0), "");
}

TEST(AddressEqual, Ipv4ComparesFourBytes) {
    const pm_address_type a = address_of(2, {10, 1, 1, 1, 0xAA});
    const pm_address_type b = address_of(2, {10, 1, 1, 1, 0xBB});
    const pm_address_type c = address_of(2, {10, 1, 1, 2});
    EXPECT_TRUE(pm_address_equal(&a, &b));
    EXPECT_FALSE(pm_address_equal(&a, &c));
}

TEST(AddressEqual, Ipv6ComparesSixteenBytes) {
    const pm_address_type a = address_of(3, {0x20, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    const pm_address_type same = a;
    const pm_address_type b = address_of(3, {0x20, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2});
    EXPECT_TRUE(pm_address_equal(&a, &same));
    EXPECT_FALSE(pm_address_equal(&a, &b));
}

TEST(AddressEqual, DifferentTypesDiffer) {
    const pm_address_type a = address_of(2, {});
    const pm_address_type b = address_of(3, {});
    EXPECT_FALSE(pm_address_equal(&a, &b));
}

TEST(AddressEqual, NonIpAddressesNeverEqualEvenThemselves) {
    for (const std::uint32_t type : {0U, 1U, 4U, 0xFFFFFFFFU}) {
        const pm_address_type a = address_of(type, {1, 2, 3, 4, 5, 6});
        EXPECT_FALSE(pm_address_equal(&a, &a)) << "for the type " << type;
    }
}

TEST(AddressEqual, NullEqualsNothing) {
    const pm_address_type a = address_of(2, {10, 1, 1, 1});
    EXPECT_FALSE(pm_address_equal(&a, nullptr));
    EXPECT_FALSE(pm_address_equal(nullptr, &a));
    EXPECT_FALSE(pm_address_equal(nullptr, nullptr));
}

TEST(AddressToPrefix, Ipv4BecomesAHostPrefix) {
    const pm_address_type address = address_of(2, {10, 1, 1, 1, 0xAA});
    pm_prefix_t prefix{0, 0, {9, 9, 9, 9, 9}};
    EXPECT_TRUE(pm_addr_to_prefix(&address, &prefix));
    const std::uint8_t expected[] = {0x02, 0x20, 10, 1, 1, 1, 9};
    EXPECT_EQ(std::memcmp(&prefix, expected, sizeof expected), 0);
}

TEST(AddressToPrefix, Ipv6BecomesAHostPrefix) {
    const pm_address_type address = address_of(3, {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7});
    pm_prefix_t prefix{};
    EXPECT_TRUE(pm_addr_to_prefix(&address, &prefix));
    const std::uint8_t expected[] = {0x0A, 0x80, 0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7};
    EXPECT_EQ(std::memcmp(&prefix, expected, sizeof expected), 0);
}

TEST(AddressToPrefix, OtherTypesLeaveThePrefixUntouched) {
    for (const std::uint32_t type : {0U, 1U, 4U}) {
        const pm_address_type address = address_of(type, {1, 2, 3, 4, 5, 6});
        pm_prefix_t prefix{5, 6, {7, 8}};
        EXPECT_FALSE(pm_addr_to_prefix(&address, &prefix)) << "for the type " << type;
        const std::uint8_t expected[] = {5, 6, 7, 8};
        EXPECT_EQ(std::memcmp(&prefix, expected, sizeof expected), 0) << "for the type " << type;
    }
}

TEST(AddressToPrefixDeath, NullAddressAborts) {
    pm_prefix_t prefix{};
    EXPECT_DEATH(pm_addr_to_prefix(nullptr, &prefix), "NULL != pm_addr, pm_utils.*pm_addr_to_prefix");
}

TEST(AddressToPrefixDeath, NullPrefixAborts) {
    const pm_address_type address = address_of(2, {10, 1, 1, 1});
    EXPECT_DEATH(pm_addr_to_prefix(&address, nullptr), "NULL != out_prefix, pm_utils.*pm_addr_to_prefix");
}

std::uint32_t ipv4_of(std::initializer_list<std::uint8_t> octets) { return pm_address_ipv4(address_of(2, octets)); }

TEST(Ipv4Loopback, IsTheWholeBlockOf127) {
    EXPECT_TRUE(pm_ipv4_is_loopback(ipv4_of({127, 0, 0, 0})));
    EXPECT_TRUE(pm_ipv4_is_loopback(ipv4_of({127, 0, 0, 1})));
    EXPECT_TRUE(pm_ipv4_is_loopback(ipv4_of({127, 255, 255, 255})));
    EXPECT_FALSE(pm_ipv4_is_loopback(ipv4_of({126, 255, 255, 255})));
    EXPECT_FALSE(pm_ipv4_is_loopback(ipv4_of({128, 0, 0, 0})));
    EXPECT_FALSE(pm_ipv4_is_loopback(ipv4_of({1, 0, 0, 127})));
    EXPECT_FALSE(pm_ipv4_is_loopback(0));
}

bool ipv6_is_loopback(std::initializer_list<std::uint8_t> octets) {
    return pm_ipv6_is_loopback(address_of(3, octets).value);
}

TEST(Ipv6Loopback, MappedIpv4LoopbackCounts) {
    EXPECT_TRUE(ipv6_is_loopback({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 127, 0, 0, 0}));
    EXPECT_TRUE(ipv6_is_loopback({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 127, 255, 255, 255}));
    EXPECT_FALSE(ipv6_is_loopback({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 126, 0, 0, 1}));
    EXPECT_FALSE(ipv6_is_loopback({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 127, 0, 0, 1}));
    EXPECT_FALSE(ipv6_is_loopback({1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 127, 0, 0, 1}));
}

TEST(Ipv6Loopback, AllZerosCountsAndOneDoesNot) {
    EXPECT_TRUE(ipv6_is_loopback({}));
    EXPECT_FALSE(ipv6_is_loopback({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(Ipv6Loopback, NullIsNot) { EXPECT_FALSE(pm_ipv6_is_loopback(nullptr)); }

bool is_valid_unicast(std::uint32_t type, std::initializer_list<std::uint8_t> octets) {
    const pm_address_type address = address_of(type, octets);
    return pm_address_is_valid_unicast(&address);
}

TEST(ValidUnicast, Ipv4HostAddressesAreValid) {
    EXPECT_TRUE(is_valid_unicast(2, {10, 1, 1, 1}));
    EXPECT_TRUE(is_valid_unicast(2, {126, 255, 255, 255}));
    EXPECT_TRUE(is_valid_unicast(2, {128, 0, 0, 0}));
    EXPECT_TRUE(is_valid_unicast(2, {223, 255, 255, 255}));
}

TEST(ValidUnicast, OnlyTheWholeZeroIpv4AddressIsInvalid) {
    EXPECT_FALSE(is_valid_unicast(2, {0, 0, 0, 0}));
    EXPECT_FALSE(is_valid_unicast(2, {0, 0, 0, 0, 1}));  // the bytes after the address do not count
    EXPECT_TRUE(is_valid_unicast(2, {0, 0, 0, 1}));
}

TEST(ValidUnicast, Ipv4LoopbackMulticastAndReservedAreInvalid) {
    EXPECT_FALSE(is_valid_unicast(2, {127, 0, 0, 1}));
    EXPECT_FALSE(is_valid_unicast(2, {224, 0, 0, 0}));
    EXPECT_FALSE(is_valid_unicast(2, {239, 255, 255, 255}));
    EXPECT_FALSE(is_valid_unicast(2, {240, 0, 0, 0}));
    EXPECT_FALSE(is_valid_unicast(2, {255, 255, 255, 255}));
}

TEST(ValidUnicast, Ipv6HostAddressesAreValid) {
    EXPECT_TRUE(is_valid_unicast(3, {0x20, 0x01, 0x0d, 0xb8}));
    EXPECT_TRUE(is_valid_unicast(3, {0, 0, 0, 1}));
    EXPECT_TRUE(is_valid_unicast(3, {0xFD, 0, 0, 1}));
}

TEST(ValidUnicast, Ipv6MulticastIsInvalid) {
    EXPECT_FALSE(is_valid_unicast(3, {0xFF, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_FALSE(is_valid_unicast(3, {0xFF}));
}

TEST(ValidUnicast, Ipv6LinkLocalBlockEndsWithFebf) {
    EXPECT_FALSE(is_valid_unicast(3, {0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_FALSE(is_valid_unicast(3, {0xFE, 0xBF}));
    EXPECT_TRUE(is_valid_unicast(3, {0xFE, 0x7F}));
    EXPECT_TRUE(is_valid_unicast(3, {0xFE, 0xC0}));
}

TEST(ValidUnicast, Ipv6ZeroAndOneAreInvalidAndTheirNeighboursAreNot) {
    EXPECT_FALSE(is_valid_unicast(3, {}));
    EXPECT_FALSE(is_valid_unicast(3, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(is_valid_unicast(3, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2}));
    EXPECT_TRUE(is_valid_unicast(3, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 1}));
    EXPECT_TRUE(is_valid_unicast(3, {0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(is_valid_unicast(3, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(ValidUnicast, OtherTypesAndNullAreInvalid) {
    EXPECT_FALSE(is_valid_unicast(0, {10, 1, 1, 1}));
    EXPECT_FALSE(is_valid_unicast(1, {10, 1, 1, 1, 1, 1}));
    EXPECT_FALSE(is_valid_unicast(4, {10, 1, 1, 1}));
    EXPECT_FALSE(pm_address_is_valid_unicast(nullptr));
}

}  // namespace
