// SPDX-License-Identifier: Apache-2.0
// The detail of an interface and its counters; tests/golden/interface has the whole reports.
#include "pm_show_client/displays/pm_show_intf.h"

#include <gtest/gtest.h>

#include "pm_show_client/displays/pm_show_intf_counters.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

class Interface : public testing::Test {
protected:
    void SetUp() override { pm_show_options = {}; }
    void TearDown() override { pm_show_options = {}; }
};

TEST_F(Interface, CountersDoNotAskForTheCommandType) {
    pm_intf_parcel interface {};
    interface.InterfaceName = "eth0/1/0/4";
    interface.InterfaceHandle = 0x2a;
    for (const std::uint32_t type : {1U, 2U, 3U}) {
        pm_show_options.command_type = type;
        pm_show_options.brief = true;
        int result = -1;
        EXPECT_EQ(captured([&] { result = pm_show_intf_counters(&interface); }),
                  "Interface Name: eth0/1/0/4 (ifh: 0x2a)\n"
                  "  Delay-Measurement:\n"
                  "    No session\n");
        EXPECT_EQ(result, PM_SHOW_PRINTED);
    }
}

TEST_F(Interface, DetailDoesNotAskForTheCommandType) {
    pm_intf_parcel interface {};
    interface.InterfaceName = "eth0/1/0/4";
    interface.InterfaceHandle = 0x2a;
    pm_show_options.command_type = 2;
    const std::string text = captured([&] { EXPECT_EQ(pm_show_intf(&interface), PM_SHOW_PRINTED); });
    EXPECT_TRUE(
        text.starts_with("Interface Name: eth0/1/0/4 (ifh: 0x2a)\n"
                         "  Delay-Measurement                 : Disabled\n"))
        << text;
}

}  // namespace
