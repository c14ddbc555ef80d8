// SPDX-License-Identifier: Apache-2.0
// Endpoints without a section to show; tests/golden/endpoint has the whole reports.
#include "pm_show_client/displays/pm_show_endpoint.h"

#include <gtest/gtest.h>

#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

class Endpoint : public testing::Test {
protected:
    void SetUp() override { pm_show_options = {}; }
    void TearDown() override { pm_show_options = {}; }
};

// An endpoint whose only section is delay.
TEST_F(Endpoint, ASectionThatIsNotAskedForIsNothing) {
    pm_endpoint_detail delay{};
    pm_endpoint_common endpoint{};
    endpoint.EndpointDelay = {1, &delay};
    pm_show_options.h_value = PM_MEASUREMENT_LIVENESS;
    int result = -1;
    EXPECT_EQ(captured([&] { result = pm_show_endpoint(&endpoint); }), "");
    EXPECT_EQ(result, PM_SHOW_NOTHING);
}

}  // namespace
