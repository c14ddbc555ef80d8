// SPDX-License-Identifier: Apache-2.0
// An interface of the responder and its counters; tests/golden/resp-intf has the whole reports.
#include "pm_show_client/displays/pm_show_resp_intf.h"

#include <gtest/gtest.h>

#include "pm_show_client/displays/pm_show_resp_intf_counters.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

class ResponderInterface : public testing::Test {
protected:
    void SetUp() override { pm_show_options = {}; }
    void TearDown() override { pm_show_options = {}; }
};

TEST_F(ResponderInterface, DisplaysDoNotAskForTheCommandType) {
    pm_resp_intf_parcel interface {};
    interface.InterfaceName = "eth0/1/0/4";
    for (const std::uint32_t type : {6U, 7U, 8U}) {
        pm_show_options.command_type = type;
        const std::string attributes = captured([&] { EXPECT_EQ(pm_show_resp_intf(&interface), PM_SHOW_PRINTED); });
        const std::string counters =
            captured([&] { EXPECT_EQ(pm_show_resp_intf_counters(&interface), PM_SHOW_PRINTED); });
        EXPECT_TRUE(
            attributes.starts_with("Interface Name: eth0/1/0/4\n"
                                   "  Interface Handle          : 0x0\n"))
            << attributes;
        EXPECT_TRUE(
            counters.starts_with("Interface Name: eth0/1/0/4\n"
                                 "  Delay-Measurement:\n"
                                 "    Total query packets received                  : 0\n"))
            << counters;
    }
}

}  // namespace
