// SPDX-License-Identifier: Apache-2.0
// When delays are advertised: each reason, from the delays that cause it.
#include "perf-probed/session/advertiser.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <optional>

namespace {

using namespace probed;

constexpr std::int64_t START_MSEC = 1'709'647'390'000;

// A computation every 30 seconds, a periodic check every fourth of them.
class advertiser_test : public testing::Test {
protected:
    advertisement_settings settings;

    void begin() { tested_.emplace(settings, 4, history_sizes{}); }
    advertiser &tested() { return *tested_; }

    moment now() const { return {elapsed_ * NSEC_PER_SEC, START_MSEC * NSEC_PER_MSEC + elapsed_ * NSEC_PER_SEC}; }

    // One computation for each element, with these delays in microseconds.
    void computation(std::initializer_list<std::int64_t> delays_usec) {
        delay_statistics delays;
        for (const std::int64_t delay : delays_usec) {
            delays.add(delay * NSEC_PER_USEC);
        }
        elapsed_ += 30;
        tested().computation_done(delays, now());
    }
    void computations(int count, std::initializer_list<std::int64_t> delays_usec) {
        for (int index = 0; index < count; ++index) {
            computation(delays_usec);
        }
    }

    pm_advert_reason_e reason() { return tested().last().reason; }
    delay_values values() { return tested().last().values; }

private:
    std::optional<advertiser> tested_;
    std::int64_t elapsed_ = 0;
};

TEST_F(advertiser_test, nothing_is_advertised_before_the_first_delays) {
    begin();
    computations(9, {});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_NONE);
    EXPECT_EQ(tested().last().time_msec, 0U);
    EXPECT_EQ(tested().aggregated().size(), 0U);
}

TEST_F(advertiser_test, the_first_delays_are_advertised_at_once) {
    begin();
    computation({1000, 3000});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_FIRST);
    EXPECT_EQ(values(), (delay_values{2000, 1000, 3000, 1000}));
    EXPECT_EQ(tested().last().time_msec, std::uint64_t{START_MSEC} + 30'000);
    EXPECT_EQ(tested().advertisements(), 1U);
}

TEST_F(advertiser_test, the_periodic_check_compares_the_aggregate_of_its_interval) {
    begin();
    computations(4, {10'000});
    computations(3, {20'000});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_FIRST);
    EXPECT_EQ(tested().computations_left(), 0U);  // after the one that comes now
    computation({12'000, 40'000});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_PERIODIC_MINIMUM);
    EXPECT_EQ(values(), (delay_values{22'400, 12'000, 40'000, 10'400}));
    ASSERT_EQ(tested().aggregated().size(), 2U);
    EXPECT_EQ(tested().aggregated()[0].values, (delay_values{10'000, 10'000, 10'000, 0}));
    EXPECT_EQ(tested().aggregated()[1].time_msec, std::uint64_t{START_MSEC} + 240'000);
}

TEST_F(advertiser_test, both_threshold_and_minimum_change_must_be_reached) {
    begin();
    computations(4, {10'000});
    computations(4, {10'999});  // 9.99 %
    EXPECT_EQ(tested().advertisements(), 1U);
    computations(4, {11'000});  // 10 %
    EXPECT_EQ(reason(), PM_ADVERT_REASON_PERIODIC_MINIMUM);
    computations(4, {9'900});  // 10 % down
    EXPECT_EQ(tested().advertisements(), 3U);
    settings.periodic_minimum_change_usec = 3000;
    begin();
    computations(4, {10'000});
    computations(4, {12'999});  // 30 %, but 2999 microseconds
    EXPECT_EQ(tested().advertisements(), 1U);
    computations(4, {13'000});
    EXPECT_EQ(tested().advertisements(), 2U);
}

struct check_case {
    bool average, minimum, maximum;
    pm_advert_reason_e periodic, accelerated, upper_bound;
};
constexpr check_case CHECKS[] = {
    {true, false, false, PM_ADVERT_REASON_PERIODIC_AVERAGE, PM_ADVERT_REASON_ACCELERATED_AVERAGE,
     PM_ADVERT_REASON_UPPER_BOUND_AVERAGE},
    {false, true, false, PM_ADVERT_REASON_PERIODIC_MINIMUM, PM_ADVERT_REASON_ACCELERATED_MINIMUM,
     PM_ADVERT_REASON_UPPER_BOUND_MINIMUM},
    {false, false, true, PM_ADVERT_REASON_PERIODIC_MAXIMUM, PM_ADVERT_REASON_ACCELERATED_MAXIMUM,
     PM_ADVERT_REASON_UPPER_BOUND_MAXIMUM},
    {true, true, true, PM_ADVERT_REASON_PERIODIC_AVERAGE, PM_ADVERT_REASON_ACCELERATED_AVERAGE,
     PM_ADVERT_REASON_UPPER_BOUND_AVERAGE},
};

TEST_F(advertiser_test, the_reason_names_the_first_checked_metric_that_crossed) {
    for (const check_case &each : CHECKS) {
        settings = {};
        settings.check_average = each.average;
        settings.check_minimum = each.minimum;
        settings.check_maximum = each.maximum;
        begin();
        computations(4, {10'000});
        computations(4, {20'000});
        EXPECT_EQ(reason(), each.periodic);
        settings.accelerated_enabled = true;
        begin();
        computation({10'000});
        computation({20'000});
        EXPECT_EQ(reason(), each.accelerated);
        settings.accelerated_upper_bound_usec = 15'000;
        begin();
        computation({10'000});
        computation({20'000});
        EXPECT_EQ(reason(), each.upper_bound);
    }
}

TEST_F(advertiser_test, a_metric_that_is_not_checked_decides_nothing) {
    begin();
    computations(4, {10'000});
    computations(4, {10'000, 90'000});
    EXPECT_EQ(tested().advertisements(), 1U);
    settings.check_minimum = false;
    begin();
    computations(4, {10'000});
    computations(4, {90'000});
    EXPECT_EQ(tested().advertisements(), 1U);
}

TEST_F(advertiser_test, the_accelerated_check_has_thresholds_of_its_own) {
    settings.accelerated_enabled = true;
    begin();
    computation({10'000});
    computation({11'999});
    EXPECT_EQ(tested().advertisements(), 1U);
    computation({12'000});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_ACCELERATED_MINIMUM);
    EXPECT_EQ(values().minimum, 12'000U);
    settings.accelerated_minimum_change_usec = 5000;
    begin();
    computation({10'000});
    computation({14'999});
    EXPECT_EQ(tested().advertisements(), 1U);
}

TEST_F(advertiser_test, crossing_the_upper_bound_is_advertised_both_ways) {
    settings.accelerated_enabled = true;
    settings.accelerated_threshold_percent = 100;
    settings.accelerated_upper_bound_usec = 10'500;
    begin();
    computation({10'400});
    computation({10'600});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_UPPER_BOUND_MINIMUM);
    computation({10'700});
    EXPECT_EQ(tested().advertisements(), 2U);
    computation({10'500});
    EXPECT_EQ(tested().advertisements(), 3U);
}

TEST_F(advertiser_test, the_a_flag_is_set_above_the_upper_and_cleared_below_the_lower_bound) {
    settings.anomaly_enabled = true;
    settings.anomaly_upper_usec = 5000;
    settings.anomaly_lower_usec = 2000;
    begin();
    computation({1000});
    EXPECT_FALSE(tested().last().a_flag);
    computation({5000});
    EXPECT_FALSE(tested().last().a_flag);
    computation({5001});
    EXPECT_TRUE(tested().last().a_flag);
    EXPECT_EQ(reason(), PM_ADVERT_REASON_ANOMALY_DYNAMIC);
    EXPECT_EQ(values().minimum, 5001U);
    computation({2000});
    EXPECT_TRUE(tested().last().a_flag);
    computation({1999});
    EXPECT_FALSE(tested().last().a_flag);
    EXPECT_EQ(reason(), PM_ADVERT_REASON_ANOMALY_DYNAMIC);
}

TEST_F(advertiser_test, the_a_flag_beside_a_static_delay_has_a_reason_of_its_own) {
    settings.anomaly_enabled = true;
    settings.anomaly_upper_usec = 5000;
    settings.anomaly_lower_usec = 2000;
    begin();
    tested().set_static_delay(700, now());
    computation({9000});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_ANOMALY_STATIC);
    EXPECT_TRUE(tested().last().a_flag);
    EXPECT_EQ(values(), (delay_values{700, 700, 700, 0}));
}

TEST_F(advertiser_test, a_static_delay_takes_the_place_of_what_is_measured_until_it_is_removed) {
    begin();
    computation({9000});
    tested().set_static_delay(700, now());
    EXPECT_EQ(reason(), PM_ADVERT_REASON_DELAY_CONFIG);
    EXPECT_EQ(values().average, 700U);
    computations(8, {90'000});
    EXPECT_EQ(tested().advertisements(), 2U);
    tested().set_static_delay(std::nullopt, now());
    EXPECT_EQ(reason(), PM_ADVERT_REASON_DELAY_UNCONFIG);
    EXPECT_EQ(values(), delay_values{});
    computation({9000});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_DYNAMIC_DELAY);
    EXPECT_EQ(values().average, 9000U);
}

TEST_F(advertiser_test, the_same_static_delay_twice_is_advertised_once) {
    begin();
    tested().set_static_delay(700, now());
    tested().set_static_delay(700, now());
    EXPECT_EQ(tested().advertisements(), 1U);
    tested().set_static_delay(800, now());
    EXPECT_EQ(tested().advertisements(), 2U);
}

TEST_F(advertiser_test, disabling_withdraws_and_enabling_advertises_again) {
    begin();
    computation({9000});
    advertisement_settings off = settings;
    off.periodic_enabled = false;
    tested().reconfigure(off, 0, now());
    EXPECT_EQ(reason(), PM_ADVERT_REASON_DISABLED);
    EXPECT_EQ(values(), delay_values{});
    computations(8, {20'000});
    EXPECT_EQ(tested().advertisements(), 2U);
    tested().reconfigure(settings, 4, now());
    EXPECT_EQ(reason(), PM_ADVERT_REASON_ENABLED);
    EXPECT_EQ(values().average, 20'000U);
}

TEST_F(advertiser_test, enabled_before_anything_was_measured_is_advertised_with_the_first_delays) {
    const advertisement_settings on = settings;
    settings.periodic_enabled = false;
    begin();
    tested().reconfigure(on, 4, now());
    EXPECT_EQ(reason(), PM_ADVERT_REASON_NONE);
    computation({9000});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_ENABLED);
}

TEST_F(advertiser_test, link_down_repeats_the_values) {
    begin();
    tested().link_down(now());
    EXPECT_EQ(tested().advertisements(), 0U);
    computation({9000});
    tested().link_down(now());
    EXPECT_EQ(reason(), PM_ADVERT_REASON_LINK_DOWN);
    EXPECT_EQ(values().average, 9000U);
}

TEST_F(advertiser_test, what_is_withdrawn_is_first_again) {
    for (const pm_advert_reason_e why :
         {PM_ADVERT_REASON_EXEC_CLEAR, PM_ADVERT_REASON_SESSION_DELETED, PM_ADVERT_REASON_SESSION_ERROR}) {
        begin();
        tested().withdraw(why, now());
        EXPECT_EQ(tested().advertisements(), 0U);
        computation({9000});
        tested().withdraw(why, now());
        EXPECT_EQ(reason(), why);
        EXPECT_EQ(values(), delay_values{});
        tested().withdraw(why, now());
        EXPECT_EQ(tested().advertisements(), 2U);
        computation({9000});
        EXPECT_EQ(reason(), PM_ADVERT_REASON_FIRST);
    }
}

TEST_F(advertiser_test, the_rolling_average_is_that_of_the_last_interval_of_computations) {
    begin();
    EXPECT_EQ(tested().rolling_average(), 0U);
    computation({1000});
    computation({2000});
    EXPECT_EQ(tested().rolling_average(), 1500U);
    computations(4, {5000});
    EXPECT_EQ(tested().rolling_average(), 5000U);
    computation({});
    EXPECT_EQ(tested().rolling_average(), 5000U);
}

TEST_F(advertiser_test, the_history_has_every_advertisement_with_its_reason) {
    begin();
    computation({9000});
    tested().link_down(now());
    tested().withdraw(PM_ADVERT_REASON_EXEC_CLEAR, now());
    ASSERT_EQ(tested().advertised().size(), 3U);
    EXPECT_EQ(tested().advertised()[0].reason, PM_ADVERT_REASON_FIRST);
    EXPECT_EQ(tested().advertised()[1].reason, PM_ADVERT_REASON_LINK_DOWN);
    EXPECT_EQ(tested().advertised()[2].reason, PM_ADVERT_REASON_EXEC_CLEAR);
}

TEST_F(advertiser_test, the_largest_delays_do_not_overflow) {
    begin();
    computations(4, {0xFFFFFFFF});
    computations(4, {1});
    EXPECT_EQ(reason(), PM_ADVERT_REASON_PERIODIC_MINIMUM);
    EXPECT_EQ(values().minimum, 1U);
}

}  // namespace
