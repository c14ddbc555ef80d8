// SPDX-License-Identifier: Apache-2.0
// Tests of front/walker.h.
#include "front/walker.h"
#include "front/advert_legend.h"
#include "tests/front/show_test.h"

namespace {

class WalkerTest : public ShowTest {
protected:
    void SetUp() override {
        ShowTest::SetUp();
        fake.nodes = {{1}, {2}, {3}};
    }

    static printed walk(const pm_show_request &request) {
        return capture([&] { generic_show_node_walker(&request); });
    }

    // Standard output of a walk over the single item of the nodes.
    static std::string walked(std::initializer_list<std::string> nodes, const std::string &end) {
        std::string text;
        for (const std::string &node : nodes) {
            text += header(node) + "[item]";
        }
        return text + end;
    }
};

TEST_F(WalkerTest, TheNodeThatTheUserChoseIsReadWithoutTheInventory) {
    given("-N 0x10");
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, walked({"lc16"}, "\n\n"));
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(calls_of("inventory"), calls{});
    EXPECT_EQ(calls_of("partner"), calls{});
    EXPECT_EQ(headers, std::vector<bool>{true});
}

TEST_F(WalkerTest, AChosenNodeWhoseReadFailsIsNotFollowedByBlankLines) {
    given("-N 0x10");
    fake.item_code = ERRCODE_NOT_FOUND;
    EXPECT_EQ(walk(single_request()).out, header("lc16") + "Item not found\n");
}

TEST_F(WalkerTest, AChosenNodeWhoseDisplayDidNotPrintNormallyIsNotFollowedByBlankLines) {
    given("-N 0x10");
    for (const int answer : {22, 125}) {
        results["item"] = answer;
        EXPECT_EQ(walk(single_request()).out, header("lc16") + "[item]") << answer;
    }
}

TEST_F(WalkerTest, AListingOfAChosenNodeIsFollowedByBlankLines) {
    given("-N 0x10");
    fake.batches = {batch_of(1, 2)};
    EXPECT_EQ(walk(list_request()).out, header("lc16") + "\n[d1]\n[d2]" + "\n\n");
    EXPECT_EQ(calls_of("inventory"), calls{});
}

TEST_F(WalkerTest, AListingOfAChosenNodeWhoseDisplayDidNotPrintNormallyIsStillFollowedByBlankLines) {
    given("-N 0x10");
    fake.batches = {batch_of(1, 1)};
    results["d1"] = 125;
    EXPECT_EQ(walk(list_request()).out, header("lc16") + "\n[d1]" + "\n\n");
}

TEST_F(WalkerTest, AnEmptyListingOfAChosenNodeIsFollowedByBlankLines) {
    given("-N 0x10");
    EXPECT_EQ(walk(list_request()).out, header("lc16") + "[no record]" + "\n\n");
    EXPECT_EQ(headers.size(), 1U);
}

TEST_F(WalkerTest, AListingThatIsNotRunningOnAChosenNodeIsFollowedByBlankLines) {
    given("-N 0x10");
    for (const errcode code : {0x40818600U, 0x40818a00U, 0x40819000U}) {
        fake_batch not_running;
        not_running.list_code = code;
        fake.batches = {not_running};
        const printed output = walk(list_request());
        EXPECT_EQ(output.out, header("lc16") + "PM process is not running\n" + "\n\n") << code;
        EXPECT_EQ(output.err, "") << code;
    }
}

TEST_F(WalkerTest, AChosenNodeComesBeforeTheLocalNode) {
    given("-N 0x10");
    pm_show_options.local_node_only = true;
    EXPECT_EQ(walk(single_request()).out, walked({"lc16"}, "\n\n"));
    EXPECT_EQ(calls_of("my_nodeid"), calls{});
}

TEST_F(WalkerTest, ALocalCommandReadsTheLocalNode) {
    pm_show_options.local_node_only = true;
    fake.my_node = 5;
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, walked({"lc5"}, "\n\n"));
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(calls_of("inventory"), calls{});
    EXPECT_EQ(headers, std::vector<bool>{true});
}

TEST_F(WalkerTest, ALocalCommandReadsTheLocalNodeOnlyAlsoWithAllNodes) {
    given("-A");
    pm_show_options.local_node_only = true;
    fake.my_node = 5;
    EXPECT_EQ(walk(single_request()).out, walked({"lc5"}, "\n\n"));
    EXPECT_EQ(calls_of("inventory"), calls{});
}

TEST_F(WalkerTest, AChosenNodeIsReadAloneAlsoWithAllNodes) {
    given("-A -N 0x10");
    EXPECT_EQ(walk(single_request()).out, walked({"lc16"}, "\n\n"));
    EXPECT_EQ(calls_of("inventory"), calls{});
}

TEST_F(WalkerTest, ALocalNodeWhoseReadFailsIsNotFollowedByBlankLines) {
    pm_show_options.local_node_only = true;
    fake.item_code = ERRCODE_NOT_FOUND;
    EXPECT_EQ(walk(single_request()).out, header("lc256") + "Item not found\n");
}

TEST_F(WalkerTest, AnUnknownLocalNodeIsReported) {
    pm_show_options.local_node_only = true;
    fake.my_node_code = 41;
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, " generic_show_node_walker: platform_get_my_nodeid failed: errcode 41 (0x29)\n");
}

TEST_F(WalkerTest, EveryNodeOfTheInventoryIsReadInItsOrder) {
    fake.nodes = {{3}, {1}, {2}};
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, walked({"lc3", "lc1", "lc2"}, "\n"));
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(calls_of("inventory"), calls{"inventory 7"});
    EXPECT_EQ(headers, (std::vector<bool>{true, true, true}));
}

TEST_F(WalkerTest, ABriefWalkEndsInTwoLineEnds) {
    given("-b");
    EXPECT_EQ(walk(single_request()).out, walked({"lc1", "lc2", "lc3"}, "\n\n"));
}

TEST_F(WalkerTest, AnInventoryThatCannotBeReadStopsTheWalk) {
    fake.inventory_code = 41;
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, " generic_show_node_walker: invd_get_inventory failed: errcode 41 (0x29)\n");
}

TEST_F(WalkerTest, ANodeCountThatCannotBeReadStopsTheWalk) {
    fake.count_code = 41;
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, " generic_show_node_walker: failed to get node count from invd: errcode 41 (0x29)\n");
}

TEST_F(WalkerTest, ANodeIdThatCannotBeReadIsReportedAndTheWalkGoesOn) {
    fake.nodes[1].id_code = 41;
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, walked({"lc1", "lc3"}, "\n"));
    EXPECT_EQ(output.err, " generic_show_node_walker: failed to get node id from invd: errcode 41 (0x29)\n");
}

TEST_F(WalkerTest, TheStandbyPartnerIsLeftOut) {
    fake.partner = 2;
    EXPECT_EQ(walk(single_request()).out, walked({"lc1", "lc3"}, "\n"));
    EXPECT_EQ(calls_of("partner"), calls{"partner of central-services"});
}

TEST_F(WalkerTest, WithAllNodesThePartnerIsReadToo) {
    given("-A");
    fake.partner = 2;
    EXPECT_EQ(walk(single_request()).out, walked({"lc1", "lc2", "lc3"}, "\n"));
    EXPECT_EQ(calls_of("partner"), calls{});
}

TEST_F(WalkerTest, APartnerThatCannotBeFoundLeavesNoNodeOut) {
    fake.partner = 2;
    fake.partner_code = 41;
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, walked({"lc1", "lc2", "lc3"}, "\n"));
    EXPECT_EQ(output.err, "");
}

TEST_F(WalkerTest, WithoutAPartnerNoNodeIsLeftOut) {
    fake.partner = NODEID_NONE;
    fake.nodes = {{1}, {NODEID_NONE}};
    EXPECT_EQ(walk(single_request()).out, walked({"lc1", "lc4294967295"}, "\n"));
}

TEST_F(WalkerTest, NodesWhoseSoftwareIsNotUpPrintNothing) {
    fake.nodes[0].sw_state = 5;
    fake.nodes[1].state_code = 41;
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, walked({"lc3"}, "\n"));
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(calls_of("bind"), calls{"bind /oper/perf_meas/main/node/3/ 4"});
}

TEST_F(WalkerTest, AFailureOnOneNodeDoesNotStopTheWalk) {
    fake.bind_codes["/oper/perf_meas/main/node/2/"] = 41;
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, walked({"lc1", "lc3"}, "\n"));
    EXPECT_EQ(output.err, " generic_show: opstore_bind failed: errcode 41 (0x29)\n");
}

TEST_F(WalkerTest, AMissingStoreClientIsReportedForEveryNode) {
    fake.client_present = false;
    const printed output = walk(single_request());
    EXPECT_EQ(output.out, "\n");
    const std::string message = " generic_show: opstore_bind failed: errcode 2155987456 (0x8081c200)\n";
    EXPECT_EQ(output.err, message + message + message);
}

TEST_F(WalkerTest, AnInventoryWithoutNodesEndsInALineEnd) {
    fake.nodes.clear();
    EXPECT_EQ(walk(single_request()).out, "\n");
}

TEST_F(WalkerTest, TheHeaderIsPendingFromTheStartAlsoWithoutNodes) {
    fake.nodes.clear();
    walk(single_request());
    EXPECT_TRUE(pm_show_header_pending);
}

TEST_F(WalkerTest, ListingsFollowEachOtherNodeByNode) {
    fake.nodes = {{1}, {2}};
    fake.batches = {batch_of(1, 2)};
    EXPECT_EQ(walk(list_request()).out, header("lc1") + "\n[d1]\n[d2]" + header("lc2") + "[no record]" + "\n");
}

TEST_F(WalkerTest, TheLegendOfAdvertisementHistoriesNamesTheirReasons) {
    EXPECT_EQ(capture(pm_show_advert_legend).out,
              "\n"
              " FIRST       : First advertisement      \n"
              " NEW-SESSION : New child session        \n"
              " PER-AVG     : Periodic timer, avg delay threshold crossed\n"
              " PER-MIN     : Periodic timer, min delay threshold crossed\n"
              " PER-MAX     : Periodic timer, max delay threshold crossed\n"
              " ACCEL-AVG   : Accel threshold crossed, avg delay threshold crossed\n"
              " ACCEL-MIN   : Accel threshold crossed, min delay threshold crossed\n"
              " ACCEL-MAX   : Accel threshold crossed, max delay threshold crossed\n"
              " ENABLE      : Advertisement enabled    \n"
              " DISABLE     : Advertisement disabled   \n"
              " LINK-DOWN   : Link state changed to down\n"
              " DELETE      : Session deleted          \n"
              " ERROR       : Control code error       \n"
              " DYN-DM      : Dynamic delay advertisement is in effect\n"
              " ADV-CFG     : Advertise delay config   \n"
              " ADV-UNCFG   : Advertise delay unconfig \n"
              " EXEC-CLEAR  : Cleared through exec command\n"
              " PM-ERROR    : Performance measurement session error\n"
              " ANOM-MIN-DYN: Min delay A flag toggled and dynamic delay is in effect\n"
              " ANOM-MIN-STA: Min delay A flag toggled and static delay is in effect\n");
}

TEST_F(WalkerTest, ALegendIsPrintedOnceBeforeAllNodes) {
    fake.nodes = {{1}, {2}};
    pm_show_request request = single_request();
    request.legend = [] { pm_print<"legend\n">(); };
    EXPECT_EQ(walk(request).out, "legend\n" + walked({"lc1", "lc2"}, "\n"));
}

}  // namespace
