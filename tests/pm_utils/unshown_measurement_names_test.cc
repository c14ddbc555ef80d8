// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_measurement_names.h.
#include "pm_utils/unshown_measurement_names.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(MeasurementNames, OnlyDelayAndLossHaveShortNames) {
    expect_names(pm_measurement_type_short_str, {{0, "DM"}, {1, "LM"}}, "Measurement Type Unknown");
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

TEST(MeasurementNames, ProbeProtocolsHaveTheirNames) {
    expect_names(pm_probe_protocol_str, {{0, "PM DM"}, {1, "TWAMP-light"}, {2, "PM LM"}}, "Unknown");
}

TEST(MeasurementNames, PpsClassesHaveTheirNames) {
    expect_names(pm_pps_class_str,
                 {{0, "IPv4-T1"}, {1, "IPv4-T2"}, {2, "IPv6-T1"}, {3, "IPv6-T2"}, {4, "MPLS-T1"}, {5, "MPLS-T2"}},
                 "Unknown");
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
