// SPDX-License-Identifier: Apache-2.0
// Tests of the command table, through pm_show_build_request of front/dispatch.h.
#include "front/advert_legend.h"
#include "front/command_table.h"
#include "front/dispatch.h"
#include "tests/front/front_test.h"

namespace {

constexpr char MAIN[] = "/oper/perf_meas/main/";
constexpr char RESP[] = "/oper/perf_meas/resp/";
constexpr char RX[] = "/oper/perf_meas/rx/";
constexpr char CHKPT[] = "/oper/perf_meas/chkpt/";

constexpr bool LIST = false;
constexpr bool SINGLE = true;

constexpr std::uint32_t HOST = 0x800;  // where the interface "X" is

enum nodes { ALL, LOCAL, HOSTING };

class BuildRequestTest : public FrontTest {
protected:
    struct row {
        const char *arguments;
        const char *root;
        const char *item_path;
        const char *record;
        std::uint32_t size;
        std::uint32_t batch;
        bool single;
        nodes read;
    };

    void SetUp() override {
        FrontTest::SetUp();
        fake.interfaces["X"] = {IFNX_KIND_NODE_CARD, {0, 1, 0}, {}};
        fake.processor = HOST;
        fake.address_text_code = ERRCODE_INVALID_ARGUMENT;
    }

    void expect(const row &expected) {
        SCOPED_TRACE(expected.arguments);
        given(expected.arguments);
        pm_show_request request{};
        pm_show_path item_path = "";
        const printed output =
            capture([&] { ASSERT_EQ(pm_show_build_request(&request, item_path), pm_show_build::ready); });
        EXPECT_EQ(output.out + output.err, "");
        EXPECT_STREQ(request.base_path, expected.root);
        EXPECT_STREQ(request.item_path, expected.item_path);
        EXPECT_STREQ(request.start_key, "");
        EXPECT_NE(request.display, nullptr);
        ASSERT_NE(request.parcel_desc, nullptr);
        EXPECT_STREQ(request.parcel_desc->name, expected.record);
        EXPECT_EQ(request.decoded_size, expected.size);
        EXPECT_EQ(request.batch_size, expected.batch);
        EXPECT_EQ(request.single_item, expected.single ? 1U : 0U);
        EXPECT_EQ(pm_show_options.local_node_only, expected.read == LOCAL);
        EXPECT_EQ(pm_show_options.node_id, expected.read == HOSTING ? HOST : PM_SHOW_ALL_NODES);
    }
    void expect_all(std::initializer_list<row> rows) {
        for (const row &expected : rows) {
            expect(expected);
        }
    }

    // The request of a valid command line.
    pm_show_request request_of(const std::string &arguments) {
        given(arguments);
        pm_show_request request{};
        pm_show_path item_path = "";
        EXPECT_EQ(pm_show_build_request(&request, item_path), pm_show_build::ready) << arguments;
        request.item_path = nullptr;  // gone
        return request;
    }

    // What a command line that is refused prints on standard error.
    std::string refused(const std::string &arguments) {
        given(arguments);
        pm_show_request request{};
        pm_show_path item_path = "";
        const printed output = capture(
            [&] { EXPECT_EQ(pm_show_build_request(&request, item_path), pm_show_build::refused) << arguments; });
        EXPECT_EQ(output.out, "") << arguments;
        return output.err;
    }
};

TEST_F(BuildRequestTest, InterfaceCommands) {
    expect_all({
        {"-c 1", MAIN, "intf/detail/", "pm_intf_parcel", 288, 200, LIST, ALL},
        {"-c 1 -i X", MAIN, "intf/detail/X", "pm_intf_parcel", 288, 200, SINGLE, HOSTING},
        {"-c 2", MAIN, "intf/detail/", "pm_intf_parcel", 288, 200, LIST, ALL},
        {"-c 2 -i X", MAIN, "intf/detail/X", "pm_intf_parcel", 288, 200, SINGLE, HOSTING},
        {"-c 7", RESP, "intf/", "pm_resp_intf_parcel", 168, 200, LIST, ALL},
        {"-c 7 -i X", RESP, "intf/X", "pm_resp_intf_parcel", 168, 200, SINGLE, ALL},
        {"-c 8", RESP, "intf/", "pm_resp_intf_parcel", 168, 200, LIST, ALL},
        {"-c 8 -i X", RESP, "intf/X", "pm_resp_intf_parcel", 168, 200, SINGLE, ALL},
    });
}

TEST_F(BuildRequestTest, SessionCommands) {
    expect_all({
        {"-c 6", MAIN, "session/", "pm_session_parcel", 584, 200, LIST, ALL},
        {"-c 6 -s 0", MAIN, "session/", "pm_session_parcel", 584, 200, LIST, ALL},
        {"-c 6 -s 0x1f -i X", MAIN, "session/1f", "pm_session_parcel", 584, 200, SINGLE, ALL},
        {"-c 35", MAIN, "probe-session/", "pm_session_parcel", 584, 200, LIST, ALL},
        {"-c 35 -i X", MAIN, "probe-session/", "pm_session_parcel", 584, 200, LIST, ALL},
        {"-c 35 -s 0x1f", MAIN, "probe-session/1f", "pm_session_parcel", 584, 200, SINGLE, ALL},
    });
}

TEST_F(BuildRequestTest, CommandsOfOneItemOnAllNodes) {
    expect_all({
        {"-c 9", MAIN, "summary", "pm_summary_parcel", 1616, 0, SINGLE, ALL},
        {"-c 9 -i X", MAIN, "summary", "pm_summary_parcel", 1616, 0, SINGLE, ALL},
        {"-c 10", RESP, "summary", "pm_resp_summary_parcel", 112, 0, SINGLE, ALL},
        {"-c 11", RX, "summary", "pm_rx_summary_parcel", 272, 0, SINGLE, ALL},
        {"-c 13", MAIN, "proc_fsm", "pm_mgmt_proc_fsm", 64, 0, SINGLE, ALL},
        {"-c 14", MAIN, "counters/batch", "pm_stats_batch_t", 280, 0, SINGLE, ALL},
        {"-c 30", MAIN, "pps_summary", "pm_pps_summary_parcel", 192, 0, SINGLE, ALL},
        {"-c 31", MAIN, "capability", "pm_capability_parcel", 16, 0, SINGLE, ALL},
        {"-c 36", MAIN, "allowed-querier/summary", "pm_querier_prefixes_summary", 80, 0, SINGLE, ALL},
        {"-c 37", MAIN, "allowed-responder/summary", "pm_responder_prefixes_summary", 88, 0, SINGLE, ALL},
    });
}

TEST_F(BuildRequestTest, CommandsOfOneItemOnTheLocalNode) {
    expect_all({
        {"-c 32", MAIN, "npu_db", "pm_dr_lc_npu_info", 24, 0, SINGLE, LOCAL},
        {"-c 34", MAIN, "dr_retry_queue", "pm_dr_retry_queue_info", 16, 0, SINGLE, LOCAL},
    });
}

TEST_F(BuildRequestTest, CheckpointAndDistributionListings) {
    expect_all({
        {"-c 12", CHKPT, "scb", "pm_chkpt_scb_parcel", 16, 200, LIST, ALL},
        {"-c 12 -i X", CHKPT, "scb", "pm_chkpt_scb_parcel", 16, 200, LIST, ALL},
        {"-c 24", MAIN, "dr/", "pm_dr_info", 48, 200, LIST, LOCAL},
        {"-c 24 -i X", MAIN, "dr/", "pm_dr_info", 48, 200, LIST, LOCAL},
        {"-c 25", CHKPT, "dr", "pm_chkpt_dr_info", 16, 200, LIST, LOCAL},
        {"-c 33", CHKPT, "dr-db-session", "pm_chkpt_dr_db_sess_info", 24, 200, LIST, LOCAL},
    });
}

TEST_F(BuildRequestTest, RsvpTeCommands) {
    expect_all({
        {"-c 15", MAIN, "rsvpte/detail/", "pm_rsvpte_parcel", 32, 200, LIST, LOCAL},
        {"-c 15 -i X", MAIN, "rsvpte/detail/X", "pm_rsvpte_parcel", 32, 200, SINGLE, LOCAL},
        {"-c 15 -a 1 -i X", MAIN, "rsvpte/detail-filter/0x1,________/X", "pm_rsvpte_parcel", 32, 200, SINGLE, LOCAL},
        {"-c 16", MAIN, "rsvpte/counters/", "pm_rsvpte_counters_parcel", 24, 200, LIST, LOCAL},
        {"-c 16 -a 1 -i X", MAIN, "rsvpte/counters/X", "pm_rsvpte_counters_parcel", 24, 200, SINGLE, LOCAL},
    });
}

TEST_F(BuildRequestTest, SrPolicyCommands) {
    expect_all({
        {"-c 17", MAIN, "srpolicy/detail/", "pm_srpolicy_parcel", 96, 200, LIST, ALL},
        {"-c 17 -i X", MAIN, "srpolicy/detail/X", "pm_srpolicy_parcel", 96, 200, SINGLE, HOSTING},
        {"-c 17 -f 1", MAIN,
         "srpolicy/detail-filter/0x1,________,________,________,________,________,________,________,________,________,"
         "________/",
         "pm_srpolicy_parcel", 96, 200, LIST, ALL},
        {"-c 18", MAIN, "srpolicy/counters/", "pm_srpolicy_counters_parcel", 40, 200, LIST, ALL},
        {"-c 18 -i X", MAIN, "srpolicy/counters/X", "pm_srpolicy_counters_parcel", 40, 200, SINGLE, HOSTING},
        {"-c 18 -f 1 -i X", MAIN,
         "srpolicy/counters-filter/0x1,________,________,________,________,________,________,________,________,"
         "________,________/X",
         "pm_srpolicy_counters_parcel", 40, 200, SINGLE, HOSTING},
    });
}

TEST_F(BuildRequestTest, EndpointCommands) {
    expect_all({
        {"-c 26", MAIN, "endpoint/detail/", "pm_endpoint_common", 56, 200, LIST, LOCAL},
        {"-c 26 -i X", MAIN, "endpoint/detail/X", "pm_endpoint_common", 56, 200, SINGLE, LOCAL},
        {"-c 26 -h 2", MAIN, "endpoint/detail-filter/________,________,________,0x2/", "pm_endpoint_common", 56, 200,
         LIST, LOCAL},
        {"-c 28", MAIN, "endpoint/counters/", "pm_endpoint_counters_parcel", 24, 200, LIST, LOCAL},
        {"-c 28 -i X", MAIN, "endpoint/counters/X", "pm_endpoint_counters_parcel", 24, 200, SINGLE, LOCAL},
        {"-c 28 -h 2 -i X", MAIN, "endpoint/counters-filter/________,________,________,0x2/X",
         "pm_endpoint_counters_parcel", 24, 200, SINGLE, LOCAL},
    });
}

TEST_F(BuildRequestTest, InterfaceHistories) {
    expect_all({
        {"-c 4 -t 3", MAIN, "intf/delay/probe-history/", "pm_intf_history_parcel", 56, 200, LIST, ALL},
        {"-c 4 -t 3 -i X", MAIN, "intf/delay/probe-history/X", "pm_intf_history_parcel", 56, 200, SINGLE, HOSTING},
        {"-c 4 -t 3 -L 1 -i X", MAIN, "intf/loss/probe-history/X", "pm_intf_history_parcel", 56, 200, SINGLE, HOSTING},
        {"-c 4 -t 3 -D 0", MAIN, "intf/delay/probe-history/", "pm_intf_history_parcel", 56, 200, LIST, ALL},
        {"-c 5 -t 3", MAIN, "intf/delay/aggr-history/", "pm_intf_history_parcel", 56, 200, LIST, ALL},
        {"-c 5 -t 3 -L 1 -i X", MAIN, "intf/loss/aggr-history/X", "pm_intf_history_parcel", 56, 200, SINGLE, HOSTING},
        {"-c 20 -t 3", MAIN, "intf/delay/adv-history/", "pm_intf_history_parcel", 56, 200, LIST, ALL},
        {"-c 20 -t 3 -L 1 -i X", MAIN, "intf/loss/adv-history/X", "pm_intf_history_parcel", 56, 200, SINGLE, HOSTING},
        {"-c 22 -t 3", MAIN, "intf/loss/pkt-history/", "pm_intf_history_parcel", 56, 200, LIST, ALL},
        {"-c 22 -t 3 -i X", MAIN, "intf/loss/pkt-history/X", "pm_intf_history_parcel", 56, 200, SINGLE, HOSTING},
    });
}

TEST_F(BuildRequestTest, SrPolicyHistories) {
    expect_all({
        {"-c 4 -t 19", MAIN, "srpolicy/delay/probe-history/", "pm_srpolicy_history_parcel", 56, 200, LIST, ALL},
        {"-c 4 -t 19 -i X", MAIN, "srpolicy/delay/probe-history/X", "pm_srpolicy_history_parcel", 56, 200, SINGLE, ALL},
        {"-c 4 -t 19 -f 1", MAIN,
         "srpolicy/delay/probe-history-filter/0x1,________,________,________,________,________,________,________,"
         "________,________,________/",
         "pm_srpolicy_history_parcel", 56, 200, LIST, ALL},
        {"-c 5 -t 19", MAIN, "srpolicy/delay/aggr-history/", "pm_srpolicy_history_parcel", 56, 200, LIST, ALL},
        {"-c 5 -t 19 -f 1 -i X", MAIN,
         "srpolicy/delay/aggr-history-filter/0x1,________,________,________,________,________,________,________,"
         "________,________,________/X",
         "pm_srpolicy_history_parcel", 56, 200, SINGLE, ALL},
        {"-c 20 -t 19", MAIN, "srpolicy/delay/adv-history/", "pm_srpolicy_history_parcel", 56, 200, LIST, ALL},
        {"-c 20 -t 19 -f 1", MAIN,
         "srpolicy/delay/adv-history-filter/0x1,________,________,________,________,________,________,________,"
         "________,________,________/",
         "pm_srpolicy_history_parcel", 56, 200, LIST, ALL},
    });
}

TEST_F(BuildRequestTest, RsvpTeHistoriesAreLocal) {
    expect_all({
        {"-c 4 -t 21", MAIN, "rsvpte/delay/probe-history/", "pm_rsvpte_history_parcel", 24, 200, LIST, LOCAL},
        {"-c 4 -t 21 -i X", MAIN, "rsvpte/delay/probe-history/X", "pm_rsvpte_history_parcel", 24, 200, SINGLE, LOCAL},
        {"-c 4 -t 21 -a 1", MAIN, "rsvpte/delay/probe-history-filter/0x1,________/", "pm_rsvpte_history_parcel", 24,
         200, LIST, LOCAL},
        {"-c 5 -t 21", MAIN, "rsvpte/delay/aggr-history/", "pm_rsvpte_history_parcel", 24, 200, LIST, LOCAL},
        {"-c 5 -t 21 -a 1", MAIN, "rsvpte/delay/aggr-history-filter/0x1,________/", "pm_rsvpte_history_parcel", 24, 200,
         LIST, LOCAL},
        {"-c 20 -t 21", MAIN, "rsvpte/delay/adv-history/", "pm_rsvpte_history_parcel", 24, 200, LIST, LOCAL},
        {"-c 20 -t 21 -a 1 -i X", MAIN, "rsvpte/delay/adv-history-filter/0x1,________/X", "pm_rsvpte_history_parcel",
         24, 200, SINGLE, LOCAL},
    });
}

TEST_F(BuildRequestTest, EndpointHistoriesAreNotLocal) {
    expect_all({
        {"-c 4 -t 29", MAIN, "endpoint/delay/probe-history/", "pm_endpoint_history_parcel", 88, 200, LIST, ALL},
        {"-c 4 -t 29 -i X", MAIN, "endpoint/delay/probe-history/X", "pm_endpoint_history_parcel", 88, 200, SINGLE, ALL},
        {"-c 4 -t 29 -h 2", MAIN, "endpoint/delay/probe-history-filter/________,________,________,0x2/",
         "pm_endpoint_history_parcel", 88, 200, LIST, ALL},
        {"-c 5 -t 29", MAIN, "endpoint/delay/aggr-history/", "pm_endpoint_history_parcel", 88, 200, LIST, ALL},
        {"-c 5 -t 29 -h 2", MAIN, "endpoint/delay/aggr-history-filter/________,________,________,0x2/",
         "pm_endpoint_history_parcel", 88, 200, LIST, ALL},
        {"-c 20 -t 29", MAIN, "endpoint/delay/adv-history/", "pm_endpoint_history_parcel", 88, 200, LIST, ALL},
        {"-c 20 -t 29 -h 2 -i X", MAIN, "endpoint/delay/adv-history-filter/________,________,________,0x2/X",
         "pm_endpoint_history_parcel", 88, 200, SINGLE, ALL},
    });
}

TEST_F(BuildRequestTest, LiveHistories) {
    expect_all({
        {"-c 27 -t 29", MAIN, "endpoint/delay/live-history/", "pm_endpoint_history_parcel", 88, 200, LIST, ALL},
        {"-c 27 -t 29 -h 2 -i X", MAIN, "endpoint/delay/live-history-filter/________,________,________,0x2/X",
         "pm_endpoint_history_parcel", 88, 200, SINGLE, ALL},
        {"-c 27 -t 19 -i X", MAIN, "srpolicy/liveness/live-history/X", "pm_srpolicy_history_parcel", 56, 200, SINGLE,
         ALL},
        {"-c 27 -t 19 -f 1", MAIN,
         "srpolicy/liveness/live-history-filter/0x1,________,________,________,________,________,________,________,"
         "________,________,________/",
         "pm_srpolicy_history_parcel", 56, 200, LIST, ALL},
    });
}

TEST_F(BuildRequestTest, ProfilesAreNamedThenGlobalThenAll) {
    expect_all({
        {"-c 23 -P -S -D 1 -T 4 -Q gold", MAIN, "name-profile/0x1/0x4/<gold>", "pm_name_profile_parcel", 352, 200,
         SINGLE, ALL},
        {"-c 23 -P -D 1 -T 4", MAIN, "name-profile/0x1/0x4/", "pm_name_profile_parcel", 352, 200, LIST, ALL},
        {"-c 23 -P -D 1 -T 2 -Q gold", MAIN, "name-profile-filter/0x1,0x2,<gold>/0x1,0x2,<gold>",
         "pm_name_profile_parcel", 352, 200, SINGLE, ALL},
        {"-c 23 -P", MAIN, "name-profile-filter/________,________,________", "pm_name_profile_parcel", 352, 200, LIST,
         ALL},
        {"-c 23 -S -D 1 -T 4 -Q gold", MAIN, "profile", "pm_profile_parcel", 1824, 0, SINGLE, ALL},
        {"-c 23 -D 1 -T 4 -Q gold -i X", MAIN, "all-profile/", "pm_name_profile_parcel", 352, 200, LIST, ALL},
    });
}

TEST_F(BuildRequestTest, AProfileNameThatCannotBeEncodedLeavesNothingToShow) {
    fake.encode_code = 22;
    given("-c 23 -P -Q gold");
    pm_show_request request{};
    pm_show_path item_path = "";
    const printed output =
        capture([&] { EXPECT_EQ(pm_show_build_request(&request, item_path), pm_show_build::nothing); });
    EXPECT_EQ(output.err, "pm_show_compose_name_profile_filter: Error encoding name name gold: errcode 22 (0x16)");
}

TEST_F(BuildRequestTest, OnlyCheckpointedSessionsAreListedWithoutBlankLines) {
    EXPECT_EQ(request_of("-c 12").spacing, pm_show_spacing::dense);
    for (const char *const arguments : {"-c 1", "-c 6", "-c 20 -t 3", "-c 23", "-c 25", "-c 33"}) {
        EXPECT_EQ(request_of(arguments).spacing, pm_show_spacing::spaced) << arguments;
    }
}

TEST_F(BuildRequestTest, OnlyAdvertisementHistoriesHaveALegend) {
    for (const char *const subtype : {"3", "19", "21", "29"}) {
        EXPECT_EQ(request_of(std::string("-c 20 -t ") + subtype).legend, pm_show_advert_legend) << subtype;
    }
    for (const char *const arguments : {"-c 4 -t 3", "-c 5 -t 19", "-c 22 -t 3", "-c 27 -t 29", "-c 1", "-c 9"}) {
        EXPECT_EQ(request_of(arguments).legend, nullptr) << arguments;
    }
}

TEST_F(BuildRequestTest, InvalidTypesAreRefusedWithTheirNumber) {
    EXPECT_EQ(refused(""), "Show command type invalid 0\n");
    EXPECT_EQ(refused("-c 3"), "Show command type invalid 3\n");
    EXPECT_EQ(refused("-c 19"), "Show command type invalid 19\n");
    EXPECT_EQ(refused("-c 21"), "Show command type invalid 21\n");
    EXPECT_EQ(refused("-c 29"), "Show command type invalid 29\n");
    const std::string after_last = std::to_string(pm_show_commands().back().type + 1);
    EXPECT_EQ(refused("-c " + after_last), "Show command type invalid " + after_last + "\n");
    EXPECT_EQ(refused("-c 0xffffffff"), "Show command type invalid 4294967295\n");
}

TEST_F(BuildRequestTest, InvalidSubtypesOfHistoriesAreRefusedWithTheirNumber) {
    for (const char *type : {"-c 4", "-c 5", "-c 20", "-c 22"}) {
        const std::string arguments(type);
        EXPECT_EQ(refused(arguments), "Show command subtype invalid 0\n");
        EXPECT_EQ(refused(arguments + " -t 4"), "Show command subtype invalid 4\n");
        EXPECT_EQ(refused(arguments + " -t 30"), "Show command subtype invalid 30\n");
    }
}

TEST_F(BuildRequestTest, PacketHistoryIsOfInterfacesOnly) {
    EXPECT_EQ(refused("-c 22 -t 19"), "Show command subtype invalid 19\n");
    EXPECT_EQ(refused("-c 22 -t 21"), "Show command subtype invalid 21\n");
    EXPECT_EQ(refused("-c 22 -t 29"), "Show command subtype invalid 29\n");
}

TEST_F(BuildRequestTest, LiveHistoryIsOfPoliciesAndEndpointsOnly) {
    for (const char *arguments : {"-c 27", "-c 27 -t 3", "-c 27 -t 21", "-c 27 -t 4"}) {
        EXPECT_EQ(refused(arguments), "Liveness history only supported for SR Policy and Endpoint") << arguments;
    }
}

TEST_F(BuildRequestTest, ASubtypeOfACommandWithoutSubtypesMeansNothing) {
    expect({"-c 9 -t 77", MAIN, "summary", "pm_summary_parcel", 1616, 0, SINGLE, ALL});
}

TEST_F(BuildRequestTest, AnEmptyNameIsANameAndThePathEndsAtThePrefix) {
    expect_all({
        // two blanks: an empty argument of -i between them
        {"-i  -c 1", MAIN, "intf/detail/", "pm_intf_parcel", 288, 200, SINGLE, ALL},
        {"-i  -c 7", RESP, "intf/", "pm_resp_intf_parcel", 168, 200, SINGLE, ALL},
        {"-i  -c 16", MAIN, "rsvpte/counters/", "pm_rsvpte_counters_parcel", 24, 200, SINGLE, LOCAL},
        {"-i  -c 17", MAIN, "srpolicy/detail/", "pm_srpolicy_parcel", 96, 200, SINGLE, ALL},
        {"-i  -c 4 -t 3 -L 1", MAIN, "intf/loss/probe-history/", "pm_intf_history_parcel", 56, 200, SINGLE, ALL},
        {"-i  -c 26 -h 2", MAIN, "endpoint/detail-filter/________,________,________,0x2/", "pm_endpoint_common", 56,
         200, SINGLE, LOCAL},
    });
}

// The commands that look for the node of the interface in -i.
constexpr const char *LOOKING_FOR_A_NODE[] = {
    "-c 1", "-c 2", "-c 17", "-c 18", "-c 22 -t 3", "-c 4 -t 3", "-c 5 -t 3", "-c 20 -t 3",
};

TEST_F(BuildRequestTest, AnInterfaceNameThatDoesNotParseLeavesAllNodes) {
    for (const char *const command : LOOKING_FOR_A_NODE) {
        SCOPED_TRACE(command);
        SetUp();
        given(std::string(command) + " -i nonsense");
        pm_show_request request{};
        pm_show_path item_path = "";
        const printed output =
            capture([&] { EXPECT_EQ(pm_show_build_request(&request, item_path), pm_show_build::ready); });
        EXPECT_EQ(output.out + output.err, "");
        EXPECT_EQ(fake.calls, std::vector<std::string>{"parse nonsense 0"});
        EXPECT_EQ(pm_show_options.node_id, PM_SHOW_ALL_NODES);
        EXPECT_FALSE(pm_show_options.local_node_only);
        EXPECT_EQ(request.single_item, 1U);
    }
}

TEST_F(BuildRequestTest, AllNodesKeepAnInterfaceFromBeingLookedFor) {
    for (const char *const command : LOOKING_FOR_A_NODE) {
        SCOPED_TRACE(command);
        given(std::string(command) + " -A -i X");
        pm_show_request request{};
        pm_show_path item_path = "";
        EXPECT_EQ(pm_show_build_request(&request, item_path), pm_show_build::ready);
        EXPECT_EQ(fake.calls, std::vector<std::string>{});
        EXPECT_EQ(pm_show_options.node_id, PM_SHOW_ALL_NODES);
        EXPECT_EQ(request.single_item, 1U);
    }
}

TEST_F(BuildRequestTest, ANodeThatTheUserChoseIsNotReplacedByTheInterfacesNode) {
    given("-c 1 -i X -N 0x200");
    pm_show_request request{};
    pm_show_path item_path = "";
    EXPECT_EQ(pm_show_build_request(&request, item_path), pm_show_build::ready);
    EXPECT_EQ(pm_show_options.node_id, 0x200U);
}

}  // namespace
