// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_engine_names.h.
#include "pm_utils/unshown_engine_names.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(EngineNames, BatchTypesKeepTheirMixedCase) {
    expect_names(pm_batch_type_str,
                 {{0, "DM/LM attr publish"},
                  {1, "dm/lm attr unpublish"},
                  {2, "pm caps create"},
                  {3, "pm caps delete"},
                  {4, "pm path tracing attr update"}},
                 "unknown batch type");
}

TEST(EngineNames, TimersCountFromOneAndRetiredNumbersAreUnknown) {
    expect_names(pm_timer_type_str,
                 {{1, "Probe start"},
                  {2, "Burst"},
                  {3, "Probe end"},
                  {4, "IM DM/LM attribute publish batch"},
                  {5, "Collab timeout"},
                  {6, "UNKNOWN"},
                  {7, "UNKNOWN"},
                  {8, "Process exit"},
                  {9, "UNKNOWN"},
                  {10, "UNKNOWN"},
                  {11, "UNKNOWN"},
                  {12, "VRF timeout"},
                  {13, "KPKT retry timeout"},
                  {14, "HWO sess create/delete retry timeout"},
                  {15, "HA session state timeout"},
                  {16, "UDP port failure recovery timeout"}},
                 "UNKNOWN");
}

TEST(EngineNames, OnlyPuntTypeOneHasAName) { expect_names(pm_punt_type_str, {{1, "RX punt"}}, "UNKNOWN"); }

TEST(EngineNames, LowestBitNamesTheConfigurationOperation) {
    EXPECT_STREQ(pm_cfg_op_str(1), "Create");
    EXPECT_STREQ(pm_cfg_op_str(2), "Set");
    EXPECT_STREQ(pm_cfg_op_str(4), "Delete");
    EXPECT_STREQ(pm_cfg_op_str(3), "Create");
    EXPECT_STREQ(pm_cfg_op_str(5), "Create");
    EXPECT_STREQ(pm_cfg_op_str(6), "Set");
    EXPECT_STREQ(pm_cfg_op_str(7), "Create");
}

TEST(EngineNames, ConfigurationBitsAboveTheThirdDoNotCount) {
    EXPECT_STREQ(pm_cfg_op_str(0), "Unknown");
    EXPECT_STREQ(pm_cfg_op_str(8), "Unknown");
    EXPECT_STREQ(pm_cfg_op_str(0x80000000), "Unknown");
    EXPECT_STREQ(pm_cfg_op_str(12), "Delete");
    EXPECT_STREQ(pm_cfg_op_str(0xFFFFFFFC), "Delete");
    EXPECT_STREQ(pm_cfg_op_str(0xFFFFFFFF), "Create");
}

TEST(EngineNames, UdpPortKindsHaveTheirNames) {
    expect_names(pm_udp_port_kind_str,
                 {{0, "Twamp querier source"},
                  {1, "PM UDP querier source"},
                  {2, "Unknown"},
                  {3, "Twamp querier destination"},
                  {4, "PM UDP querier destination"},
                  {5, "Unknown"},
                  {6, "PM IANA"},
                  {7, "TWAMP-Light querier destination default port"}},
                 "Unknown");
}

TEST(EngineNames, CheckpointTypesHaveTheirNames) {
    expect_names(pm_chkpt_type_str, {{0, "SCB_CHKPT"}, {1, "DR_CHKPT"}, {2, "DR_DB_SESSION_CHKPT"}}, "Unknown");
}

}  // namespace
