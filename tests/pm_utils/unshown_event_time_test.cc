// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_event_time.h.
#include "pm_utils/unshown_event_time.h"

#include <gtest/gtest.h>

#include "tests/fakes/platform_text_fake.h"

namespace {

class UnshownEventTime : public testing::Test {
protected:
    void SetUp() override {
        reset_platform_text_fake();
        platform_fake.now = {1700000000, 123456789};
    }
};

TEST_F(UnshownEventTime, EpochTimeLeavesTheTimespecToTheCaller) {
    std::timespec current{};
    EXPECT_EQ(pm_get_epoch_time_in_msec_and_timespec(&current), 1700000000123U);
    EXPECT_EQ(current.tv_sec, 1700000000);
    EXPECT_EQ(current.tv_nsec, 123456789);
}

// Delay of an event that lies `seconds` and `nanoseconds` before the clock's 10 s.
std::uint32_t delay_of(std::time_t seconds, long nanoseconds) {
    platform_fake.now = {10 + seconds, nanoseconds};
    std::timespec event{10, 0};
    return pm_get_event_to_now_delay_in_usec(&event);
}

TEST_F(UnshownEventTime, DelayCountsSecondsAndMicroseconds) {
    EXPECT_EQ(delay_of(0, 0), 0U);
    EXPECT_EQ(delay_of(0, 1000), 1U);
    EXPECT_EQ(delay_of(3, 250000000), 3250000U);
}

TEST_F(UnshownEventTime, DelayRoundsHalfAMicrosecondUp) {
    EXPECT_EQ(delay_of(1, 499500), 1000500U);
    EXPECT_EQ(delay_of(1, 499499), 1000499U);
    EXPECT_EQ(delay_of(0, 499), 0U);
    EXPECT_EQ(delay_of(0, 500), 1U);
    EXPECT_EQ(delay_of(0, 999999500), 1000000U);
}

TEST_F(UnshownEventTime, DelayBorrowsFromTheSeconds) {
    platform_fake.now = {11, 100000000};
    std::timespec event{10, 900000000};
    EXPECT_EQ(pm_get_event_to_now_delay_in_usec(&event), 200000U);
}

TEST_F(UnshownEventTime, DelayIsCutToThirtyTwoBits) {
    EXPECT_EQ(delay_of(4294, 967295000), 4294967295U);
    EXPECT_EQ(delay_of(4294, 967296000), 0U);
    EXPECT_EQ(delay_of(5000, 0), 705032704U);
}

TEST_F(UnshownEventTime, EventAheadOfTheClockWrapsAround) { EXPECT_EQ(delay_of(-1, 999999000), 4294967295U); }

TEST_F(UnshownEventTime, NanosecondsFillSixtyFourBits) {
    const std::timespec time{1700000000, 123456789};
    const std::timespec zero{0, 0};
    EXPECT_EQ(pm_utils_timespec_to_nsec(&time), 1700000000123456789U);
    EXPECT_EQ(pm_utils_timespec_to_nsec(&zero), 0U);
}

TEST(UnshownEventTimeDeath, NullCurrentTimeAborts) {
    EXPECT_DEATH(pm_get_epoch_time_in_msec_and_timespec(nullptr),
                 "NULL != current_time, pm_utils.*pm_get_epoch_time_in_msec_and_timespec\\(struct timespec \\*\\)");
}

TEST(UnshownEventTimeDeath, NullEventTimeAborts) {
    EXPECT_DEATH(static_cast<void>(pm_get_event_to_now_delay_in_usec(nullptr)),
                 "NULL != event_time, pm_utils.*pm_get_event_to_now_delay_in_usec\\(struct timespec \\*\\)");
}

TEST(UnshownEventTimeDeath, NullTimeAborts) {
    EXPECT_DEATH(static_cast<void>(pm_utils_timespec_to_nsec(nullptr)),
                 "NULL != time, pm_utils.*pm_utils_timespec_to_nsec\\(const struct timespec \\*\\)");
}

}  // namespace
