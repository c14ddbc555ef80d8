// SPDX-License-Identifier: Apache-2.0
// Default profiles of a kind that has no section; tests/golden/profile has the reports.
#include "pm_show_client/displays/pm_show_profile.h"

#include <gtest/gtest.h>

#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

class DefaultProfiles : public testing::Test {
protected:
    void SetUp() override { pm_show_options = {}; }
    void TearDown() override { pm_show_options = {}; }
};

TEST_F(DefaultProfiles, OfLossCountAsPrintedAlthoughTheyHaveNoSection) {
    pm_show_options.loss_kind = true;
    const pm_profile_parcel profiles{};
    int result = -1;
    EXPECT_EQ(captured([&] { result = pm_show_profile(&profiles); }), "");
    EXPECT_EQ(result, PM_SHOW_PRINTED);
}

}  // namespace
