// SPDX-License-Identifier: Apache-2.0
// Timers: order, moving and cancelling, and the same as a sorted list over many random changes.
#include "perf-probed/schedule/timer_queue.h"

#include <gtest/gtest.h>
#include <map>
#include <random>

namespace {

using probed::timer_queue;

TEST(timer_queue, gives_what_is_due_in_the_order_of_deadlines) {
    timer_queue timers;
    timers.set(1, 300);
    timers.set(2, 100);
    timers.set(3, 200);
    EXPECT_EQ(timers.next(), 100);
    EXPECT_EQ(timers.take_due(99), std::nullopt);
    EXPECT_EQ(timers.take_due(250), 2U);
    EXPECT_EQ(timers.take_due(250), 3U);
    EXPECT_EQ(timers.take_due(250), std::nullopt);
    EXPECT_EQ(timers.next(), 300);
}

TEST(timer_queue, an_owner_has_one_timer) {
    timer_queue timers;
    timers.set(7, 100);
    timers.set(7, 500);
    EXPECT_EQ(timers.size(), 1U);
    EXPECT_EQ(timers.deadline_of(7), 500);
    timers.set(7, 50);
    EXPECT_EQ(timers.take_due(50), 7U);
    EXPECT_TRUE(timers.empty());
    EXPECT_EQ(timers.deadline_of(7), std::nullopt);
}

TEST(timer_queue, cancelling_what_is_not_there_does_nothing) {
    timer_queue timers;
    timers.cancel(3);
    timers.set(3, 10);
    timers.cancel(3);
    timers.cancel(3);
    EXPECT_EQ(timers.next(), std::nullopt);
}

TEST(timer_queue, behaves_as_a_sorted_list) {
    std::mt19937 random(42);
    timer_queue timers;
    std::map<std::uint32_t, std::int64_t> expected;
    for (int step = 0; step < 20000; ++step) {
        const auto who = static_cast<std::uint32_t>(random() % 200);
        switch (random() % 4) {
        case 0:
            timers.cancel(who);
            expected.erase(who);
            break;
        case 1: {
            const auto now = static_cast<std::int64_t>(random() % 1000);
            const auto taken = timers.take_due(now);
            auto first = expected.end();
            for (auto each = expected.begin(); each != expected.end(); ++each) {
                if (each->second <= now && (first == expected.end() || each->second < first->second)) {
                    first = each;
                }
            }
            ASSERT_EQ(taken, first == expected.end() ? std::nullopt : std::optional(first->first));
            if (taken) {
                expected.erase(first);
            }
            break;
        }
        default: {
            const auto deadline = static_cast<std::int64_t>(random() % 1000);
            timers.set(who, deadline);
            expected[who] = deadline;
        }
        }
        ASSERT_EQ(timers.size(), expected.size());
    }
}

}  // namespace
