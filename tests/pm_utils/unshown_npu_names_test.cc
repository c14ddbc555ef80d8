// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_npu_names.h.
#include "pm_utils/unshown_npu_names.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(NpuNames, SessionProtocolsHaveTheirNames) {
    expect_names(pm_npu_session_protocol_str, {{0, "PM MPLS"}, {1, "PM TWAMP"}}, "UNKNOWN");
}

TEST(NpuNames, HardwareProtocolTwoIsUnknownBetweenTwoKnownOnes) {
    expect_names(pm_hw_protocol_str, {{0, "None"}, {1, "PM MPLS"}, {2, "Unknown"}, {3, "TWAMP-light"}}, "Unknown");
}

TEST(NpuNames, ErrorsBelowEightAreTheNpusOwn) {
    EXPECT_STREQ(pm_npu_error_str(0), "Success");
    EXPECT_STREQ(pm_npu_error_str(1), "Internal error");
    EXPECT_STREQ(pm_npu_error_str(2), "Invalid parameter");
    EXPECT_STREQ(pm_npu_error_str(3), "Session exists");
    EXPECT_STREQ(pm_npu_error_str(4), "No space left");
    EXPECT_STREQ(pm_npu_error_str(5), "Invalid memory");
    EXPECT_STREQ(pm_npu_error_str(6), "Session not found");
    EXPECT_STREQ(pm_npu_error_str(7), "Uknown error");
}

TEST(NpuNames, ErrorsFromEightOnHaveThePlatformsText) {
    EXPECT_STREQ(pm_npu_error_str(8), "errcode 8");
    EXPECT_STREQ(pm_npu_error_str(0x80000000), "errcode 2147483648");
    EXPECT_STREQ(pm_npu_error_str(0xFFFFFFFF), "errcode 4294967295");
}

TEST(NpuNames, CreateFailReasonsCountFromOne) {
    expect_names(pm_npu_create_fail_reason_str,
                 {{1, "PM profile not configured"}, {2, "No NPU capacity"}, {3, "Label allocation from LSD failed"}},
                 "none");
}

}  // namespace
