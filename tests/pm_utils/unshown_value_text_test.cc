// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_value_text.h.
#include "pm_utils/unshown_value_text.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "tests/fakes/platform_text_fake.h"

namespace {

class UnshownValueText : public testing::Test {
protected:
    void SetUp() override { reset_platform_text_fake(); }
};

using NodeIdStr = UnshownValueText;
using InterfaceName = UnshownValueText;

TEST_F(NodeIdStr, GivesThePlatformsName) {
    EXPECT_STREQ(pm_nodeid_str(17), "lc17");
    EXPECT_EQ(platform_fake.size_seen, 256U);
}

TEST_F(NodeIdStr, UnknownNodeIsNotAvailable) {
    platform_fake.node_error = ERRCODE_NOT_FOUND;
    EXPECT_STREQ(pm_nodeid_str(17), "N/A");
}

TEST_F(InterfaceName, DisplayNameIsThePlatforms) {
    EXPECT_STREQ(pm_ifname_str(0x2a), "eth0/1/0/4");
    EXPECT_EQ(platform_fake.size_seen, 256U);
    EXPECT_EQ(platform_fake.flags_seen, 0U);
}

TEST(UdpPortStr, NonZeroIsConfigured) {
    EXPECT_STREQ(pm_udp_port_str(862), "configured port 862");
    EXPECT_STREQ(pm_udp_port_str(65535), "configured port 65535");
}

TEST(UdpPortStr, ZeroIsRandom) { EXPECT_STREQ(pm_udp_port_str(0), "random port"); }

TEST(UdpPortStr, OnlyTheLowSixteenBitsCount) {
    EXPECT_STREQ(pm_udp_port_str(0x10000), "random port");
    EXPECT_STREQ(pm_udp_port_str(0xFFFF0001), "configured port 1");
}

constexpr std::uint32_t SEVENTEEN[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};

TEST(U32ListStr, LastCommaStays) {
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, 1), "1,");
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, 3), "1,2,3,");
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, 15), "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,");
}

TEST(U32ListStr, NoValuesAreEmpty) {
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, 0), "");
    EXPECT_STREQ(pm_u32_list_str(nullptr, 0), "");
}

TEST(U32ListStr, EveryOtherCountPrintsSixteen) {
    const char *sixteen = "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,";
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, 16), sixteen);
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, 17), sixteen);
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, 20), sixteen);
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, INT32_MAX), sixteen);
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, -1), sixteen);
    EXPECT_STREQ(pm_u32_list_str(SEVENTEEN, INT32_MIN), sixteen);
}

TEST(U32ListStr, SixteenWidestValuesFitASlot) {
    std::uint32_t values[16];
    std::string expected;
    for (std::uint32_t &value : values) {
        value = 4294967295U;
        expected += "4294967295,";
    }
    EXPECT_EQ(pm_u32_list_str(values, 16), expected);
}

}  // namespace
