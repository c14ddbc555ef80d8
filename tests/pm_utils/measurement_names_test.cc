// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/measurement_names.h.
#include "pm_utils/measurement_names.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(MeasurementNames, TransportTypesHaveTheirNames) {
    expect_names(pm_transport_type_str,
                 {{0, "Interface"}, {1, "RSVP-TE"}, {2, "SR Policy"}, {3, "Endpoint"}, {4, "Generic"}},
                 "Transport Type Unknown");
}

TEST(MeasurementNames, MeasurementTypesHaveTheirNames) {
    expect_names(pm_measurement_type_str,
                 {{0, "Delay Measurement"}, {1, "Loss Measurement"}, {2, "Liveness Detection"}, {3, "Probe"}},
                 "Measurement Type Unknown");
}

TEST(MeasurementNames, ThresholdChecksNameTheComparedDelay) {
    expect_names(pm_threshold_check_type_str, {{0, "Average-delay"}, {1, "Minimum-delay"}, {2, "Maximum-delay"}},
                 "Threshold-check Type Unknown");
}

TEST(MeasurementNames, DelayModesHaveTheirNames) {
    expect_names(pm_delay_mode_str, {{0, "One-way"}, {1, "Two-way"}, {2, "Loopback"}, {3, "Not-set"}}, "Unknown");
}

TEST(MeasurementNames, ProbeTypesTellNotSetFromNotInitialized) {
    expect_names(pm_probe_type_str, {{0, "Probe Type Not Set"}, {1, "Path Tracing"}, {2, "Path Assurance"}},
                 "Probe Type Not Initialized");
}

TEST(MeasurementNames, SrPolicyOriginsAreDecadesAndZeroIsEmpty) {
    expect_names(pm_srpolicy_origin_str, {{10, "PCE"}, {20, "BGP"}, {30, "Configured"}}, "");
}

TEST(MeasurementNames, EveryEncapsulationButOneIsMpls) { expect_names(pm_udp_mpls_str, {{1, "UDP"}}, "MPLS"); }

TEST(MeasurementNames, PmProtocolIsNamedAfterItsEncapsulation) {
    EXPECT_STREQ(pm_protocol_name_str(0, 1), "PM-UDP");
    EXPECT_STREQ(pm_protocol_name_str(0, 0), "PM-MPLS");
    EXPECT_STREQ(pm_protocol_name_str(0, 2), "PM-MPLS");
    EXPECT_STREQ(pm_protocol_name_str(0, -1), "PM-MPLS");
}

TEST(MeasurementNames, TwampLightHasOneNameForAllEncapsulations) {
    EXPECT_STREQ(pm_protocol_name_str(1, 0), "TWAMP-light");
    EXPECT_STREQ(pm_protocol_name_str(1, 1), "TWAMP-light");
    EXPECT_STREQ(pm_protocol_name_str(1, -1), "TWAMP-light");
}

TEST(MeasurementNames, OtherProtocolsAreUnknownWhateverTheEncapsulation) {
    EXPECT_STREQ(pm_protocol_name_str(2, 1), "Unknown");
    EXPECT_STREQ(pm_protocol_name_str(2, 0), "Unknown");
    EXPECT_STREQ(pm_protocol_name_str(-1, 1), "Unknown");
}

TEST(MeasurementNames, PpsPoolTypesAreEmptyOutsideTheTable) {
    expect_names(pm_pps_pool_type_str, {{0, "Single PPS Pool"}, {1, "Multiple PPS Pool"}}, "");
}

}  // namespace
