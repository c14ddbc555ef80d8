// SPDX-License-Identifier: Apache-2.0
// The descriptors that the schema compiler makes from the record catalogue.
#include "schema/pm_descriptors.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

namespace {

TEST(Descriptors, HaveDifferentNames) {
    std::set<std::string> names;
    for (const parcel_descriptor *each : pm_descriptors()) {
        names.insert(each->name);
        EXPECT_EQ(each->format, 1U);
    }
    EXPECT_EQ(names.size(), pm_descriptors().size());
    EXPECT_GE(names.size(), 200U);  // what the shows of the service need
}

TEST(Descriptors, GroupsHaveTheirVersionAndLibrary) {
    struct group {
        std::uint32_t major, minor;
        const char *library;
        const char *one_type;
    };
    std::size_t types = 0;
    for (const group &wanted : {group{19, 8, "lib_pm_show_parcel_desc.dll", "pm_values_parcel"},
                                group{1, 1, "libpm_common_show_parcel_desc.dll", "pm_queue_stats_parcel"},
                                group{2, 0, "lib_pm_chkpt_show_parcel_desc.dll", "pm_chkpt_dr_info"}}) {
        for (const parcel_descriptor *each : pm_descriptors()) {
            if (std::string(each->library) == wanted.library) {
                EXPECT_EQ(each->version_major, wanted.major) << each->name;
                EXPECT_EQ(each->version_minor, wanted.minor) << each->name;
                ++types;
            }
        }
        ASSERT_NE(pm_find_descriptor(wanted.one_type), nullptr);
        EXPECT_STREQ(pm_find_descriptor(wanted.one_type)->library, wanted.library);
    }
    EXPECT_EQ(types, pm_descriptors().size());  // no other group
}

TEST(Descriptors, AFlatTypeHasOneLayoutEntry) {
    const parcel_descriptor *values = pm_values_parcel_descriptor();
    EXPECT_STREQ(values->schema, "$56={Average}D{Minimum}D{Maximum}D{Variance}D;");
    EXPECT_STREQ(values->compact_schema, "$56=DDDD;");
    EXPECT_EQ(values->layout[0].number, 0U);
    EXPECT_EQ(values->layout[0].size, 16U);
    for (std::uint64_t i = 0; i < 4; ++i) {
        EXPECT_EQ(values->layout[0].offsets[i], 4 * i);
    }
}

TEST(Descriptors, ANestedTypeHasItsOwnDefinitionAndLayoutEntry) {
    const parcel_descriptor *results = pm_scb_probe_results_parcel_descriptor();
    EXPECT_STREQ(results->schema,
                 "$68={ProbeValues}$56{NumberOfPacketsSent}D{NumberOfPacketsReceived}D;"
                 "$56={Average}D{Minimum}D{Maximum}D{Variance}D;");
    EXPECT_STREQ(results->compact_schema, "$68=$56.DD;$56=DDDD;");
    ASSERT_EQ(results->layout[0].number, 1U);
    EXPECT_EQ(results->layout[0].size, 24U);
    EXPECT_EQ(results->layout[0].offsets[0], 0U);
    EXPECT_EQ(results->layout[0].offsets[1], 16U);
    EXPECT_EQ(results->layout[0].offsets[2], 20U);
    EXPECT_EQ(results->layout[1].number, 56U);
    EXPECT_EQ(results->layout[1].size, 16U);
    EXPECT_EQ(results->layout[1].offsets[3], 12U);
}

TEST(Descriptors, TheSummaryReachesThirtyThreeTypesNamedAndNumbered) {
    const parcel_descriptor *summary = pm_summary_parcel_descriptor();
    ASSERT_EQ(summary->layout[0].number, 33U);
    EXPECT_EQ(summary->layout[0].size, 1616U);
    std::set<std::uint64_t> numbers;
    for (std::uint64_t i = 1; i <= 33; ++i) {
        numbers.insert(summary->layout[i].number);
    }
    EXPECT_EQ(numbers.size(), 33U);
    EXPECT_TRUE(numbers.contains(52));
    EXPECT_TRUE(numbers.contains(60));
}

TEST(Descriptors, AUnionHasItsDiscriminatorInTheFullSchemaOnly) {
    const std::string full = pm_delay_counters_info_parcel_descriptor()->schema;
    const std::string compact = pm_delay_counters_info_parcel_descriptor()->compact_schema;
    EXPECT_NE(full.find("$60=?(<TransportType,pm_transport_type_e>,0:{InterfaceExclusiveCounters}$57,1:v,"
                        "2:{SRPolicyExclusiveCounters}$58,3:{EndpointExclusiveCounters}$59);"),
              std::string::npos);
    EXPECT_NE(compact.find("$60=?(,0:$57.,1:v,2:$58.,3:$59.);"), std::string::npos);
}

TEST(Descriptors, AUnionLaysItsArmsAfterTheDiscriminator) {
    const parcel_descriptor *segment = pm_segment_parcel_descriptor();
    for (std::uint64_t i = 1; i <= segment->layout[0].number; ++i) {
        if (segment->layout[i].number == 55) {  // an address: IPv4, IPv6, none
            EXPECT_EQ(segment->layout[i].size, 24U);
            EXPECT_EQ(segment->layout[i].offsets[0], 0U);
            EXPECT_EQ(segment->layout[i].offsets[1], 8U);
            EXPECT_EQ(segment->layout[i].offsets[2], 8U);
            return;
        }
    }
    FAIL() << "no layout entry for the address";
}

TEST(Descriptors, ARecursiveTypeIsDefinedOnce) {
    const std::string schema = pm_intf_history_parcel_descriptor()->schema;
    EXPECT_EQ(schema.find("$98="), 0U);
    EXPECT_EQ(schema.find("$98=", 1), std::string::npos);
    EXPECT_NE(schema.find("{BundleMembers}a($98)"), std::string::npos);
}

TEST(Descriptors, MarksStayInBothSchemas) {
    EXPECT_NE(std::string(pm_scb_parcel_descriptor()->schema).find("{TraceId}PD"), std::string::npos);
    EXPECT_EQ(std::string(pm_sl_session_info_descriptor()->compact_schema), "$192=sbPH;");
}

TEST(Descriptors, TheCatchAllArmStaysInBothSchemas) {
    const std::string full = pm_liveness_transport_profile_parcel_descriptor()->schema;
    const std::string compact = pm_liveness_transport_profile_parcel_descriptor()->compact_schema;
    EXPECT_NE(full.find("3:{EpLivenessDetection}$106,?:v);"), std::string::npos);
    EXPECT_NE(compact.find("$107=?(,2:$106.,3:$106.,?:v);"), std::string::npos);
}

TEST(Descriptors, NumbersAreLocalToAGroup) {
    EXPECT_EQ(std::string(pm_resp_summary_parcel_descriptor()->schema).find("$4={TotalInterfaces}D"), 0U);
    EXPECT_EQ(std::string(pm_rx_udp_ports_parcel_descriptor()->schema)
                  .find("$4={QueryUnAuthenticatedPmUdpDelayMeasurement}$3"),
              0U);
    EXPECT_STREQ(pm_chkpt_dr_db_sess_info_descriptor()->schema, "$3={CheckpointId}D{buf}a(c);");
}

TEST(Descriptors, AreFoundByName) {
    EXPECT_EQ(pm_find_descriptor("pm_summary_parcel"), pm_summary_parcel_descriptor());
    EXPECT_EQ(pm_find_descriptor("pm_no_such_parcel"), nullptr);
    EXPECT_EQ(pm_find_descriptor(""), nullptr);
}

}  // namespace
