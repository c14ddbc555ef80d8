// Reports on a node, and the responder's interfaces, as only a caller other than the show commands
// meets them. tests/golden has the reports.
#include <gtest/gtest.h>

#include "pm_show_client/displays/capability.h"
#include "pm_show_client/displays/pps_summary.h"
#include "pm_show_client/displays/resp_intf.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

class NodeReports : public testing::Test {
protected:
    void SetUp() override { pm_show_options = {}; }
    void TearDown() override { pm_show_options = {}; }
};

TEST_F(NodeReports, ThePacketRateBudgetAbortsWithoutARecord) {
    EXPECT_DEATH(static_cast<void>(print_pps_summary(nullptr)),
                 "NULL != decoded_parcel, pm_show_client.*errcode print_pps_summary\\(const void \\*\\)");
}

TEST_F(NodeReports, TheCapabilityAbortsWithoutARecord) {
    EXPECT_DEATH(static_cast<void>(print_capability(nullptr)),
                 "NULL != decoded_parcel, pm_show_client.*errcode print_capability\\(const void \\*\\)");
}

TEST_F(NodeReports, AResponderInterfaceOfAnotherCommandTypeIsItsNameAlone) {
    pm_show_options.command_type = 6;
    pm_resp_intf_parcel intf{};
    intf.InterfaceName = "eth0/1/0/4";
    int result = -1;
    EXPECT_EQ(captured([&] { result = pm_show_resp_intf(&intf); }), "Interface Name: eth0/1/0/4\n");
    EXPECT_EQ(result, PM_SHOW_PRINTED);
}

}  // namespace
