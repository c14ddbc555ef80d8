// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/control_code.h.
#include "pm_utils/control_code.h"

#include <string>

#include <gtest/gtest.h>

namespace {

// By code; an empty text means a code without a name.
const std::string EXPECTED[] = {
    "",
    "Success",
    "Data Format Invalid",
    "Initialization in Progress",
    "Data Reset Occurred",
    "Resource Temporarily Unavailable",
    "",
    "",
    "",
    "",
    "",
    "",
    "",
    "Probe not running due to High Link PPS",
    "",
    "",
    "Unspecified Error",
    "Unsupported Version",
    "Unsupported Control Code",
    "Unsupported Data Format",
    "Authentication Failure",
    "Invalid Destination Node Identifier",
    "Connection Mismatch",
    "Unsupported Mandatory TLV Object",
    "Unsupported Query Interval",
    "Administrative Block",
    "Resource Unavailable",
    "Resource Released",
    "Invalid Message",
    "Protocol Error",
};

TEST(ControlCode, EveryByteHasItsTextOrIsUnknown) {
    ASSERT_EQ(std::size(EXPECTED), 30U);
    for (std::uint32_t code = 0; code <= 0xFF; ++code) {
        const bool has_name = code < std::size(EXPECTED) && !EXPECTED[code].empty();
        EXPECT_EQ(pm_control_code_str(code), has_name ? EXPECTED[code] : "Unknown control code")
            << "for the code " << code;
    }
}

TEST(ControlCode, ZeroAndThirtyAreUnknown) {
    EXPECT_STREQ(pm_control_code_str(0), "Unknown control code");
    EXPECT_STREQ(pm_control_code_str(30), "Unknown control code");
}

TEST(ControlCode, OnlyTheLowByteCounts) {
    EXPECT_STREQ(pm_control_code_str(0x101), "Success");
    EXPECT_STREQ(pm_control_code_str(0xFFFFFF1D), "Protocol Error");
    EXPECT_STREQ(pm_control_code_str(0x100), "Unknown control code");
}

}  // namespace
