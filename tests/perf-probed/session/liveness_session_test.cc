// SPDX-License-Identifier: Apache-2.0
// Liveness sessions in simulated time.
#include "perf-probed/session/liveness_session.h"

#include <gtest/gtest.h>

#include "perf-probed/session/probe_session.h"
#include "tests/perf-probed/session/simulation.h"

namespace {

using namespace simulated;

liveness_profile every_second() {
    liveness_profile profile;
    profile.tx_interval_usec = 1'000'000;
    profile.multiplier = 3;
    return profile;
}

struct liveness_session_test : testing::Test {
    liveness_session session{5, every_second(), 1'000'000, {}};
    simulation world{&session};
    const std::function<fate(std::uint32_t)> nobody = [](std::uint32_t) { return fate{}; };
    const std::function<fate(std::uint32_t)> somebody = [](std::uint32_t) { return fate{{5 * MSEC}}; };
};

TEST_F(liveness_session_test, comes_up_with_the_first_answer) {
    world.start();
    EXPECT_FALSE(session.is_up());
    EXPECT_EQ(session.last_change_msec(), 0U);
    world.path = somebody;
    world.run_until(4 * MSEC);
    EXPECT_FALSE(session.is_up());
    world.run_until(5 * MSEC);
    EXPECT_TRUE(session.is_up());
    EXPECT_EQ(session.last_change_msec(), START_MSEC + 5);
}

TEST_F(liveness_session_test, goes_down_when_as_many_packets_as_the_multiplier_were_missed) {
    world.path = [](std::uint32_t sequence) { return sequence < 2 ? fate{{5 * MSEC}} : fate{}; };
    world.start();
    world.run_until(5 * SEC - 1);  // packets 2, 3 and 4 left at 2, 3 and 4 s
    EXPECT_TRUE(session.is_up());
    EXPECT_EQ(session.missed_in_a_row(), 2U);
    world.run_until(5 * SEC);
    EXPECT_FALSE(session.is_up());
    EXPECT_EQ(session.last_change_msec(), START_MSEC + 5000);
    EXPECT_EQ(session.counters().liveness_missed, 3U);
    ASSERT_EQ(session.changes().size(), 2U);
    EXPECT_TRUE(session.changes()[0].is_up);
    EXPECT_FALSE(session.changes()[1].is_up);
}

TEST_F(liveness_session_test, fewer_misses_change_nothing) {
    world.path = [](std::uint32_t sequence) { return sequence % 3 == 0 ? fate{{5 * MSEC}} : fate{}; };
    world.start();
    world.run_until(60 * SEC);
    EXPECT_TRUE(session.is_up());
    EXPECT_EQ(session.changes().size(), 1U);
    EXPECT_EQ(session.counters().liveness_missed, 40U);
}

TEST_F(liveness_session_test, comes_up_again) {
    world.path = [](std::uint32_t sequence) { return sequence >= 5 && sequence < 15 ? fate{} : fate{{5 * MSEC}}; };
    world.start();
    world.run_until(20 * SEC);
    EXPECT_TRUE(session.is_up());
    ASSERT_EQ(session.changes().size(), 3U);
    EXPECT_EQ(session.changes()[1].time_msec, START_MSEC + 8000);
    EXPECT_EQ(session.changes()[2].time_msec, START_MSEC + 15005);
    EXPECT_EQ(session.missed_in_a_row(), 0U);
}

TEST_F(liveness_session_test, one_that_was_never_up_has_changed_nothing) {
    world.path = nobody;
    world.start();
    world.run_until(60 * SEC);
    EXPECT_FALSE(session.is_up());
    EXPECT_EQ(session.changes().size(), 0U);
    EXPECT_GE(session.missed_in_a_row(), 59U);
}

TEST_F(liveness_session_test, a_late_answer_is_a_sign_of_life_too) {
    world.path = [](std::uint32_t) { return fate{{1300 * MSEC}}; };
    world.start();
    world.run_until(30 * SEC);
    EXPECT_TRUE(session.is_up());
    EXPECT_GE(session.counters().late, 28U);
    EXPECT_EQ(session.changes().size(), 1U);
}

TEST_F(liveness_session_test, a_forged_answer_is_none) {
    world.path = nobody;
    world.start();
    world.run_until(0);
    reply forged;
    forged.stamp_bits = 1;
    forged.arrival = world.now();
    EXPECT_EQ(session.on_reply(forged), reply_kind::unknown);
    EXPECT_FALSE(session.is_up());
}

TEST_F(liveness_session_test, packets_that_cannot_leave_are_missed) {
    world.path = somebody;
    world.start();
    world.run_until(1500 * MSEC);
    EXPECT_TRUE(session.is_up());
    world.failure = send_failure::other;
    world.run_until(4500 * MSEC);
    EXPECT_FALSE(session.is_up());
    EXPECT_EQ(session.counters().errors(send_failure::other), 3U);
}

TEST_F(liveness_session_test, is_down_when_it_does_not_run) {
    world.path = somebody;
    world.start();
    world.run_until(1 * SEC);
    world.stop(PM_NOT_RUNNING_NO_INTERFACE);
    EXPECT_FALSE(session.is_up());
    world.run_until(9 * SEC);
    EXPECT_EQ(session.changes().size(), 2U);
    world.start();
    world.run_until(10 * SEC);
    EXPECT_TRUE(session.is_up());
}

TEST_F(liveness_session_test, a_suspended_process_sees_no_more_misses_than_packets_it_sent) {
    world.path = somebody;
    world.start();
    world.run_until(1500 * MSEC);
    world.suspend(600 * SEC);
    world.run_until(world.elapsed() + 5 * SEC);
    EXPECT_TRUE(session.is_up());
    EXPECT_EQ(session.changes().size(), 1U);
}

TEST_F(liveness_session_test, another_multiplier_keeps_the_state) {
    world.path = somebody;
    world.start();
    world.run_until(1 * SEC);
    liveness_profile profile = every_second();
    profile.multiplier = 2;
    session.reconfigure(profile, 500'000, world.now());
    EXPECT_TRUE(session.is_up());
    world.path = nobody;
    world.run_until(1900 * MSEC);
    EXPECT_TRUE(session.is_up());
    world.run_until(2100 * MSEC);
    EXPECT_FALSE(session.is_up());
}

TEST(probe_session_test, sends_at_its_interval_and_waits_for_nothing) {
    probe_profile profile;
    probe_session session(3, profile, 30'000'000);
    simulation world(&session);
    world.start();
    world.run_until(95 * SEC);
    EXPECT_EQ(world.sent_at, (std::vector<std::int64_t>{0, 30 * SEC, 60 * SEC, 90 * SEC}));
    EXPECT_EQ(session.counters().sent, 4U);
    EXPECT_EQ(session.counters().received, 0U);
    world.failure = send_failure::other;
    world.run_until(125 * SEC);
    EXPECT_EQ(session.counters().sent, 4U);
    EXPECT_EQ(session.counters().errors(send_failure::other), 1U);
}

}  // namespace
