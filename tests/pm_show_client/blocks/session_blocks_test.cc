// Blocks of sessions, as no show command meets them. tests/golden has the others.
#include "pm_show_client/blocks/session_blocks.h"

#include <gtest/gtest.h>

#include "pm_show_client/blocks/atomic_path.h"
#include "pm_show_client/blocks/history.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/displays/endpoint.h"
#include "pm_show_client/displays/history_displays.h"
#include "pm_show_client/displays/intf.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "tests/support/captured.h"

namespace {

class SessionBlocks : public testing::Test {
protected:
    void SetUp() override { pm_show_options = {}; }
    void TearDown() override { pm_show_options = {}; }
};

TEST_F(SessionBlocks, ProfileKeysAreNothingWithoutAKey) {
    EXPECT_EQ(captured([] { pm_show_profile_keys(nullptr, "profile-1", 2, 24); }), "");
}

TEST_F(SessionBlocks, AnOffloadedPathWithoutItsOffloadRecordAborts) {
    pm_srpolicy_atomic_path_parcel path{};
    path.NPUOffloadedSession = 1;
    EXPECT_DEATH(pm_show_atomic_path(&path, false, 6, 30),
                 "NULL != parcel, pm_show_client.*print_session_npu_offload_info");
}

TEST_F(SessionBlocks, AHistoryOfAKindWithoutATableAborts) {
    for (const int kind : {1, 9, -1}) {
        pm_history_info history{};
        history.HistoryType = static_cast<pm_history_type_e>(kind);
        EXPECT_DEATH(print_history_sample_union(&history, 0, 0), "FALSE, pm_show_client.*print_history_sample_union")
            << kind;
    }
}

TEST_F(SessionBlocks, AnInterfaceOfAnotherCommandTypePrintsNothing) {
    pm_show_options.command_type = 3;
    const pm_intf_parcel interface {};
    int result = -1;
    EXPECT_EQ(captured([&] { result = pm_show_intf(&interface); }), "");
    EXPECT_EQ(result, PM_SHOW_PRINTED);
}

// An endpoint whose only section is delay.
TEST_F(SessionBlocks, ASectionThatIsNotAskedForIsNothing) {
    pm_endpoint_detail delay{};
    pm_endpoint_common endpoint{};
    endpoint.EndpointDelay = {1, &delay};
    pm_show_options.h_value = PM_MEASUREMENT_LIVENESS;
    int result = -1;
    EXPECT_EQ(captured([&] { result = pm_show_endpoint(&endpoint); }), "");
    EXPECT_EQ(result, PM_SHOW_NOTHING);
}

TEST_F(SessionBlocks, ALivenessHistoryOfAnEndpointWithoutLivenessIsNothing) {
    const pm_endpoint_history_parcel history{};
    int result = -1;
    EXPECT_EQ(captured([&] { result = pm_show_endpoint_live_history(&history); }), "");
    EXPECT_EQ(result, PM_SHOW_NOTHING);
}

TEST_F(SessionBlocks, NineLabelsTakeThreeLines) {
    std::uint32_t labels[] = {16001, 16002, 16003, 16004, 16005, 16006, 16007, 16008, 16009};
    EXPECT_EQ(captured([&] {
                  pm_show_labels({9, labels}, 4, 30);
              }),
              "    Labels                    : 16001, 16002, 16003, 16004\n"
              "                              : 16005, 16006, 16007, 16008\n"
              "                              : 16009\n");
}

TEST_F(SessionBlocks, NoLabelsAreNothing) {
    EXPECT_EQ(captured([] { pm_show_labels({}, 4, 30); }), "");
    EXPECT_EQ(captured([] { pm_show_hops({}, 4, 30); }), "");
}

}  // namespace
