// SPDX-License-Identifier: Apache-2.0
// The distribution list without a record; tests/golden/session-distribution has the whole reports.
#include "pm_show_client/displays/pm_show_dr.h"

#include <gtest/gtest.h>

#include "pm_show_client/pm_show_display.h"
#include "tests/support/captured.h"

namespace {

TEST(SessionDistribution, SaysThatThereIsNoRecord) {
    int result = 0;
    EXPECT_EQ(captured([&] { result = pm_show_dr(nullptr); }), "No session distribution record found\n");
    EXPECT_EQ(result, PM_SHOW_NO_RECORD);
}

}  // namespace
