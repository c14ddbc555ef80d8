// SPDX-License-Identifier: Apache-2.0
// A checkpoint that is filtered out; tests/golden/chkpt-scb has the whole reports.
#include "pm_show_client/displays/pm_show_chkpt_scb.h"

#include <gtest/gtest.h>

#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

TEST(SessionCheckpoints, AnItemThatIsFilteredOutCountsAsPrinted) {
    std::uint8_t blob[] = {0x0A, 0x01, 'a'};
    pm_chkpt_scb_parcel parcel{{sizeof blob, blob}};
    pm_show_options.name = "b";
    int result = -1;
    EXPECT_EQ(captured([&] { result = pm_show_chkpt_scb(&parcel); }), "");
    EXPECT_EQ(result, PM_SHOW_PRINTED);
    pm_show_options.name = nullptr;
}

}  // namespace
