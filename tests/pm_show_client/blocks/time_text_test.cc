// SPDX-License-Identifier: Apache-2.0
// Texts of time stamps, durations and ages.
#include "pm_show_client/blocks/time_text.h"

#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

#include "base/pm_output.h"
#include "pm_show_client/pm_show_clock.h"
#include "tests/support/captured.h"

namespace {

class TimeText : public testing::Test {
protected:
    void SetUp() override { set_zone("UTC"); }
    void TearDown() override { set_zone("UTC"); }
    static void set_zone(const char *zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
};

TEST_F(TimeText, ZeroMeansNever) {
    EXPECT_STREQ(pm_time_str(0), "N/A");
    EXPECT_STREQ(pm_time_nsec_str(0), "N/A");
}

TEST_F(TimeText, IsTheCalendarTimeWithMilliseconds) {
    EXPECT_STREQ(pm_time_str(1), "Jan 01 1970 00:00:00.001");
    EXPECT_STREQ(pm_time_str(1709647387042ULL), "Mar 05 2024 14:03:07.042");
}

TEST_F(TimeText, IsInTheLocalTimeZone) {
    set_zone("XYZ-2");
    EXPECT_STREQ(pm_time_str(1709647387042ULL), "Mar 05 2024 16:03:07.042");
}

TEST_F(TimeText, ANanosecondStampReadsItsDateAsMilliseconds) {
    // 1709647387042 % 1000000000 = 647387042
    EXPECT_STREQ(pm_time_nsec_str(1709647387042ULL), "Mar 05 2024 14:03:07.647387042");
    EXPECT_STREQ(pm_time_nsec_str(5), "Jan 01 1970 00:00:00.000000005");
}

TEST_F(TimeText, TheTwoKindsDoNotOverwriteEachOther) {
    const char *msec = pm_time_str(1);
    const char *nsec = pm_time_nsec_str(2);
    EXPECT_STREQ(msec, "Jan 01 1970 00:00:00.001");
    EXPECT_STREQ(nsec, "Jan 01 1970 00:00:00.000000002");
}

TEST_F(TimeText, TwoInOneStatementAreTheLaterOne) {
    const char *first = pm_time_str(1);
    const char *second = pm_time_str(2);
    EXPECT_STREQ(first, second);
}

std::string duration_text(const pm_duration &duration) {
    return captured([&] { pm_print<"%u.%u">(duration.seconds, duration.msec); });
}

TEST(Duration, IsSecondsAndUnpaddedMilliseconds) {
    EXPECT_EQ(duration_text(pm_duration_of(1005)), "1.5");
    EXPECT_EQ(duration_text(pm_duration_of(1050)), "1.50");
    EXPECT_EQ(duration_text(pm_duration_of(999)), "0.999");
    EXPECT_EQ(duration_text(pm_duration_of(0)), "0.0");
}

TEST(Duration, AnAgeCountsFromTheStartOfTheProgram) {
    pm_show_now_msec = 1709647387042ULL;
    EXPECT_EQ(duration_text(pm_age_of(1709647385037ULL)), "2.5");
    EXPECT_EQ(duration_text(pm_age_of(pm_show_now_msec)), "0.0");
    pm_show_now_msec = 0;
}

TEST(Duration, AnAgeOfTheFutureShowsTheLowBitsOfWhatWrapped) {
    // 2^64 - 1 ms is 18446744073709551 s and 615 ms; 18446744073709551 mod 2^32 is 1271310319.
    pm_show_now_msec = 0;
    EXPECT_EQ(duration_text(pm_age_of(1)), "1271310319.615");
}

}  // namespace
