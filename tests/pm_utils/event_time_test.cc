// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/event_time.h.
#include "pm_utils/event_time.h"

#include <gtest/gtest.h>

#include "tests/fakes/platform_text_fake.h"

namespace {

class EventTime : public testing::Test {
protected:
    void SetUp() override {
        reset_platform_text_fake();
        platform_fake.now = {1700000000, 123456789};
    }
};

TEST_F(EventTime, EpochTimeIsInMilliseconds) { EXPECT_EQ(pm_get_epoch_time_in_msec(), 1700000000123U); }

}  // namespace
