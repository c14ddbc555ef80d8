// SPDX-License-Identifier: Apache-2.0
// Liveness histories of endpoints that have none; tests/golden/endpoint-history has the whole reports.
#include "pm_show_client/displays/pm_show_endpoint_live_history.h"

#include <gtest/gtest.h>

#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

TEST(EndpointLiveHistory, OfAnEndpointWithoutLivenessIsNothing) {
    const pm_endpoint_history_parcel history{};
    int result = -1;
    EXPECT_EQ(captured([&] { result = pm_show_endpoint_live_history(&history); }), "");
    EXPECT_EQ(result, PM_SHOW_NOTHING);
}

}  // namespace
