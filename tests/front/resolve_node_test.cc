// SPDX-License-Identifier: Apache-2.0
// Tests of front/resolve_node.h.
#include "front/resolve_node.h"
#include "tests/front/front_test.h"

namespace {

using calls = std::vector<std::string>;

class ResolveNodeTest : public FrontTest {
protected:
    void SetUp() override {
        FrontTest::SetUp();
        fake.interfaces["eth0/1/0/4"] = {IFNX_KIND_NODE_CARD, {0, 1, 2}, {}};
        fake.interfaces["loop0"] = {IFNX_KIND_GLOBAL, {0, 0, 0}, {}};
        fake.processor = 0x800;
        fake.active_rp = 0x100;
    }
};

TEST_F(ResolveNodeTest, ANodeThatTheUserChoseStays) {
    given("-i eth0/1/0/4 -N 0x200");
    EXPECT_EQ(pm_show_resolve_node(), 0U);
    EXPECT_EQ(pm_show_options.node_id, 0x200U);
    EXPECT_EQ(fake.calls, calls{});
}

TEST_F(ResolveNodeTest, AllNodesDisableIt) {
    given("-i eth0/1/0/4 -A");
    EXPECT_EQ(pm_show_resolve_node(), 0U);
    EXPECT_EQ(pm_show_options.node_id, PM_SHOW_ALL_NODES);
    EXPECT_EQ(fake.calls, calls{});
}

TEST_F(ResolveNodeTest, WithoutANameNothingChanges) {
    given("");
    EXPECT_EQ(pm_show_resolve_node(), 22U);
    EXPECT_EQ(pm_show_options.node_id, PM_SHOW_ALL_NODES);
    EXPECT_EQ(fake.calls, calls{});
}

TEST_F(ResolveNodeTest, ANameThatDoesNotParseLeavesAllNodes) {
    given("-i nonsense");
    EXPECT_NE(pm_show_resolve_node(), 0U);
    EXPECT_EQ(pm_show_options.node_id, PM_SHOW_ALL_NODES);
    EXPECT_EQ(fake.calls, calls{"parse nonsense 0"});
}

TEST_F(ResolveNodeTest, ADistributedRouterReadsTheCardsProcessor) {
    fake.router_type = 10;
    given("-i eth0/1/0/4");
    EXPECT_EQ(pm_show_resolve_node(), 0U);
    EXPECT_EQ(pm_show_options.node_id, 0x800U);
    EXPECT_EQ(fake.calls, (calls{"parse eth0/1/0/4 0", "router_type", "create 0/1/2", "processor of 801"}));
}

TEST_F(ResolveNodeTest, ARouteProcessorWithoutForwardingReadsTheCardsProcessor) {
    fake.rp_plus_datapath = 0;
    given("-i eth0/1/0/4");
    EXPECT_EQ(pm_show_resolve_node(), 0U);
    EXPECT_EQ(pm_show_options.node_id, 0x800U);
    EXPECT_EQ(fake.calls,
              (calls{"parse eth0/1/0/4 0", "router_type", "rp_plus_datapath", "create 0/1/2", "processor of 801"}));
}

TEST_F(ResolveNodeTest, AForwardingRouteProcessorIsReadItself) {
    fake.rp_plus_datapath = 1;
    given("-i eth0/1/0/4");
    EXPECT_EQ(pm_show_resolve_node(), 0U);
    EXPECT_EQ(pm_show_options.node_id, 0x100U);
    EXPECT_EQ(fake.calls, (calls{"parse eth0/1/0/4 0", "router_type", "rp_plus_datapath", "active_rp 0"}));
}

TEST_F(ResolveNodeTest, AnInterfaceOfNoCardIsReadFromTheActiveRouteProcessor) {
    given("-i loop0");
    EXPECT_EQ(pm_show_resolve_node(), 0U);
    EXPECT_EQ(pm_show_options.node_id, 0x100U);
    EXPECT_EQ(fake.calls, (calls{"parse loop0 0", "active_rp 0"}));
}

TEST_F(ResolveNodeTest, AFailureOfAnyStepLeavesAllNodes) {
    struct {
        const char *arguments;
        errcode fake_platform::*code;
    } const steps[] = {
        {"-i eth0/1/0/4", &fake_platform::card_code},
        {"-i eth0/1/0/4", &fake_platform::processor_code},
        {"-i loop0", &fake_platform::active_rp_code},
    };
    for (const auto &step : steps) {
        SetUp();
        fake.*step.code = 41;
        given(step.arguments);
        const printed output = capture([] { EXPECT_EQ(pm_show_resolve_node(), 41U); });
        EXPECT_EQ(pm_show_options.node_id, PM_SHOW_ALL_NODES);
        EXPECT_EQ(output.out + output.err, "");
    }
}

TEST_F(ResolveNodeTest, ANodeIdThatStandsForNoneIsNotStored) {
    fake.active_rp = NODEID_NONE;
    given("-i loop0");
    EXPECT_EQ(pm_show_resolve_node(), 0U);
    EXPECT_EQ(pm_show_options.node_id, PM_SHOW_ALL_NODES);
}

}  // namespace
