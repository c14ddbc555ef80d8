// SPDX-License-Identifier: Apache-2.0
// Time stamps and error estimates: known values, eras, and an estimate that never says less than the truth.
#include "perf-probed/packet/time_stamp.h"

#include <gtest/gtest.h>

namespace {

using namespace probed;

constexpr wall_nsec AT_2024 = 1'709'647'390'000'000'000;  // 2024-03-05 14:03:10 UTC

TEST(time_stamp, the_epoch_of_1970_is_70_years_into_ntp_time) {
    EXPECT_EQ(encode_stamp(stamp_format::ntp, 0), 0x83AA7E80'00000000U);
    EXPECT_EQ(encode_stamp(stamp_format::ptp, 0), 0U);
}

TEST(time_stamp, half_a_second_is_half_of_the_ntp_fraction_and_500_million_ptp_nanoseconds) {
    const wall_nsec time = 1'709'647'390'500'000'000;
    EXPECT_EQ(encode_stamp(stamp_format::ntp, time), 0xE991A49E'80000000U);
    EXPECT_EQ(encode_stamp(stamp_format::ptp, time), 0x65E7261E'1DCD6500U);
}

TEST(time_stamp, both_formats_come_back_within_a_nanosecond) {
    for (const wall_nsec nsec : {0LL, 1LL, 2LL, 499'999'999LL, 500'000'000LL, 999'999'998LL, 999'999'999LL}) {
        for (const stamp_format format : {stamp_format::ntp, stamp_format::ptp}) {
            EXPECT_EQ(decode_stamp(format, encode_stamp(format, AT_2024 + nsec), AT_2024), AT_2024 + nsec);
        }
    }
}

TEST(time_stamp, the_ntp_era_that_begins_in_2036_is_understood) {
    constexpr wall_nsec AT_2037 = 2'114'380'800'000'000'000;  // 2037-01-01, some ten months into the next era
    EXPECT_LT(encode_stamp(stamp_format::ntp, AT_2037) >> 32, 0x10000000U);
    EXPECT_EQ(decode_stamp(stamp_format::ntp, encode_stamp(stamp_format::ntp, AT_2037), AT_2024 * 5 / 4), AT_2037);
}

TEST(time_stamp, a_ptp_time_beyond_2106_is_understood_from_there) {
    constexpr wall_nsec AT_2107 = 4'323'456'000'000'000'000;
    EXPECT_EQ(decode_stamp(stamp_format::ptp, encode_stamp(stamp_format::ptp, AT_2107), AT_2107 - NSEC_PER_SEC),
              AT_2107);
}

TEST(time_stamp, hostile_ptp_nanoseconds_count_as_seconds) {
    EXPECT_EQ(decode_stamp(stamp_format::ptp, 0x65E7261E'FFFFFFFFU, AT_2024),
              0x65E7261ELL * NSEC_PER_SEC + 0xFFFFFFFFLL);
}

TEST(error_estimate, bits_are_s_z_scale_and_multiplier) {
    EXPECT_EQ(encode_estimate({true, stamp_format::ptp, 0x2A, 0x81}), 0xEA81);
    EXPECT_EQ(encode_estimate({false, stamp_format::ntp, 0, 1}), 0x0001);
    const error_estimate read = decode_estimate(0x8D02);
    EXPECT_TRUE(read.synchronised);
    EXPECT_EQ(read.format, stamp_format::ntp);
    EXPECT_EQ(read.scale, 13);
    EXPECT_EQ(read.multiplier, 2);
}

TEST(error_estimate, amounts_are_multiplier_times_a_power_of_two_seconds) {
    EXPECT_EQ(error_nsec_of({false, stamp_format::ntp, 32, 1}), 1'000'000'000U);
    EXPECT_EQ(error_nsec_of({false, stamp_format::ntp, 33, 3}), 6'000'000'000U);
    EXPECT_EQ(error_nsec_of({false, stamp_format::ntp, 22, 1}), 976'563U);  // 2^-10 s, rounded up
    EXPECT_EQ(error_nsec_of({false, stamp_format::ntp, 0, 1}), 1U);
    EXPECT_EQ(error_nsec_of({false, stamp_format::ntp, 63, 255}), UINT64_MAX);
}

TEST(error_estimate, never_says_less_than_the_error_and_at_most_one_part_in_127_more) {
    for (std::uint64_t error = 1000; error < 100'000'000'000; error = error * 5 / 3) {
        const error_estimate estimate = estimate_of(error, false, stamp_format::ntp);
        EXPECT_GE(error_nsec_of(estimate), error);
        EXPECT_LE(error_nsec_of(estimate), error + error / 127 + 2);
        EXPECT_NE(estimate.multiplier, 0);
    }
}

TEST(error_estimate, no_error_at_all_still_has_a_multiplier) {
    EXPECT_EQ(estimate_of(0, true, stamp_format::ptp).multiplier, 1);
}

}  // namespace
