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

TEST(MeasurementNames, OnlyDelayAndLossHaveShortNames) {
    expect_names(pm_measurement_type_short_str, {{0, "DM"}, {1, "LM"}}, "Measurement Type Unknown");
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

TEST(MeasurementNames, HistoryTypesAreEmptyOutsideTheTable) {
    expect_names(pm_history_type_str,
                 {{0, "DM PROBE"},
                  {1, "DM PKT"},
                  {2, "DM AGGR"},
                  {3, "DM ADV"},
                  {4, "LIVE"},
                  {5, "LM PROBE"},
                  {6, "LM PKT"},
                  {7, "LM AGGR"},
                  {8, "LM ADV"}},
                 "");
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

TEST(MeasurementNames, ProbeProtocolsHaveTheirNames) {
    expect_names(pm_probe_protocol_str, {{0, "PM DM"}, {1, "TWAMP-light"}, {2, "PM LM"}}, "Unknown");
}

TEST(MeasurementNames, PpsClassesHaveTheirNames) {
    expect_names(pm_pps_class_str,
                 {{0, "IPv4-T1"}, {1, "IPv4-T2"}, {2, "IPv6-T1"}, {3, "IPv6-T2"}, {4, "MPLS-T1"}, {5, "MPLS-T2"}},
                 "Unknown");
}

TEST(MeasurementNames, PpsPoolTypesAreEmptyOutsideTheTable) {
    expect_names(pm_pps_pool_type_str, {{0, "Single PPS Pool"}, {1, "Multiple PPS Pool"}}, "");
}

TEST(MeasurementNames, UpDownErrorStatesHaveTheirNames) {
    expect_names(pm_up_down_error_str, {{0, "Up"}, {1, "Down"}, {2, "Error"}}, "Unknown");
}

TEST(MeasurementNames, PrefixDatabasesHaveTheirNames) {
    expect_names(pm_prefix_db_str, {{0, "Querier Prefix DB"}, {1, "Responder Prefix DB"}}, "Unknown Prefix DB");
}

TEST(MeasurementNames, PrefixSourcesHaveTheirNames) {
    expect_names(pm_prefix_source_str, {{0, "Prefix-CFG"}, {1, "SR-Policy"}, {2, "Endpoint-CFG"}}, "INVALID");
}

}  // namespace
