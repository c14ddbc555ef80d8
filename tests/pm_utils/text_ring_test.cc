// SPDX-License-Identifier: Apache-2.0
// Tests of the rotating text slots and of the routines' use of them.
#include "pm_utils/text_ring.h"

#include <cstddef>
#include <cstdint>

#include <gtest/gtest.h>

#include "pm_utils/address_text.h"
#include "pm_utils/unshown_address_text.h"
#include "pm_utils/unshown_value_text.h"
#include "pm_utils/value_text.h"
#include "tests/fakes/platform_text_fake.h"

namespace {

TEST(TextRing, TenResultsLiveAtOnce) {
    const char *results[] = {pm_count_or_all_str(1), pm_count_or_all_str(2), pm_count_or_all_str(3),
                             pm_count_or_all_str(4), pm_count_or_all_str(5), pm_count_or_all_str(6),
                             pm_count_or_all_str(7), pm_count_or_all_str(8), pm_count_or_all_str(9),
                             pm_count_or_all_str(10)};
    const char *expected[] = {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"};
    for (std::size_t at = 0; at < std::size(expected); ++at) {
        EXPECT_STREQ(results[at], expected[at]) << "result " << at;
    }
}

TEST(TextRing, EleventhResultOverwritesTheFirstOnly) {
    const char *results[] = {pm_count_or_all_str(1),  pm_count_or_all_str(2), pm_count_or_all_str(3),
                             pm_count_or_all_str(4),  pm_count_or_all_str(5), pm_count_or_all_str(6),
                             pm_count_or_all_str(7),  pm_count_or_all_str(8), pm_count_or_all_str(9),
                             pm_count_or_all_str(10), pm_count_or_all_str(11)};
    const char *expected[] = {"11", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"};
    for (std::size_t at = 0; at < std::size(expected); ++at) {
        EXPECT_STREQ(results[at], expected[at]) << "result " << at;
    }
}

TEST(TextRing, DifferentRoutinesShareTheSlots) {
    const std::uint8_t mac[] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
    const char *first = pm_count_or_all_str(7);
    for (int call = 0; call < 9; ++call) {
        static_cast<void>(pm_truncate_name("gold", 32));
    }
    EXPECT_STREQ(first, "7");
    static_cast<void>(pm_mac_str(mac));
    EXPECT_STREQ(first, "0011.2233.4455");
}

TEST(TextRing, SlotsAreOfFullSizeAndDoNotOverlap) {
    const char *slot = pm_next_text_slot();
    for (int call = 0; call < 9; ++call) {
        const char *other = pm_next_text_slot();
        EXPECT_GE(other < slot ? slot - other : other - slot, 256);
    }
    EXPECT_EQ(pm_next_text_slot(), slot);
}

// How many slots, modulo ten, a routine takes.
template <class Routine>
int slots_taken(Routine routine) {
    const char *before = pm_next_text_slot();
    routine();
    int left = 1;
    while (pm_next_text_slot() != before) {
        ++left;
    }
    return 10 - left;
}

TEST(TextRing, EveryBuiltTextTakesOneSlot) {
    reset_platform_text_fake();
    const pm_address_type ipv4{PM_ADDRESS_IPV4, {10, 1, 1, 1}};
    const pm_address_type ethernet{PM_ADDRESS_ETHERNET, {0x00, 0x11, 0x22, 0x33, 0x44, 0x55}};
    const pm_prefix_t prefix{2, 16, {10, 1}};
    const std::uint32_t values[] = {1, 2, 3};
    EXPECT_EQ(slots_taken([&] { return pm_address_to_str(&ipv4); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_address_to_str(&ethernet); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_address_value_str(&ethernet); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_mac_str(ethernet.value); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_prefix_str(&prefix); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_nodeid_str(4); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_ifname_str(4); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_udp_port_str(862); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_count_or_all_str(3); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_u32_list_str(values, 3); }), 1);
    EXPECT_EQ(slots_taken([&] { return pm_truncate_name("gold", 32); }), 1);
}

TEST(TextRing, ConstantResultsTakeASlotToo) {
    reset_platform_text_fake();
    platform_fake.node_error = ERRCODE_NOT_FOUND;
    EXPECT_EQ(slots_taken([] { return pm_address_to_str(nullptr); }), 1);
    EXPECT_EQ(slots_taken([] { return pm_prefix_str(nullptr); }), 1);
    EXPECT_EQ(slots_taken([] { return pm_nodeid_str(4); }), 1);
    EXPECT_EQ(slots_taken([] { return pm_udp_port_str(0); }), 1);
    EXPECT_EQ(slots_taken([] { return pm_count_or_all_str(0); }), 1);
    EXPECT_EQ(slots_taken([] { return pm_u32_list_str(nullptr, 0); }), 1);
}

TEST(TextRing, NullNamesAndTextsWithBuffersOfTheirOwnTakeNoSlot) {
    reset_platform_text_fake();
    const pm_address_type ipv4{PM_ADDRESS_IPV4, {10, 1, 1, 1}};
    const std::uint8_t mac[] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
    EXPECT_EQ(slots_taken([] { return pm_truncate_name(nullptr, 32); }), 0);
    EXPECT_EQ(slots_taken([&] { return pm_mac_to_dotted_str(mac, 6); }), 0);
    EXPECT_EQ(slots_taken([] { return pm_ifh_str(0x2a); }), 0);
    EXPECT_EQ(slots_taken([&] { return pm_address_value_str(&ipv4); }), 0);
}

}  // namespace
