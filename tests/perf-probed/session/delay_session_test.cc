// SPDX-License-Identifier: Apache-2.0
// Delay sessions in simulated time: schedule, computations, and answers of every kind.
#include "perf-probed/session/delay_session.h"

#include <gtest/gtest.h>

#include "tests/perf-probed/session/simulation.h"

namespace {

using namespace simulated;

// Ten seconds of five packets, two seconds apart.
delay_profile five_packets() {
    delay_profile profile;
    profile.computation_interval_sec = 10;
    profile.tx_interval_usec = 2'000'000;
    return profile;
}

struct delay_session_test : testing::Test {
    delay_session session{7, five_packets(), 2'000'000, {}};
    simulation world{&session};
};

TEST_F(delay_session_test, sends_at_its_interval_and_computes_at_the_end) {
    world.path = [](std::uint32_t sequence) { return fate{{(100 + 10 * sequence) * USEC}}; };
    world.start();
    world.run_until(10 * SEC);
    EXPECT_EQ(world.sent_at, (std::vector<std::int64_t>{0, 2 * SEC, 4 * SEC, 6 * SEC, 8 * SEC, 10 * SEC}));
    ASSERT_EQ(session.probes().size(), 1U);
    const probe_sample &probe = session.probes()[0];
    EXPECT_EQ(probe.start_msec, START_MSEC);
    EXPECT_EQ(probe.sent, 5U);
    EXPECT_EQ(probe.received, 5U);
    EXPECT_EQ(probe.values, (delay_values{120, 100, 140, 20}));
    EXPECT_EQ(session.counters().probes_started, 2U);
    EXPECT_EQ(session.counters().probes_complete, 1U);
}

TEST_F(delay_session_test, begins_after_the_given_delay) {
    world.start(700 * MSEC);
    world.run_until(3 * SEC);
    EXPECT_EQ(world.sent_at, (std::vector<std::int64_t>{700 * MSEC, 2700 * MSEC}));
}

TEST_F(delay_session_test, time_at_the_reflector_is_no_delay_and_its_clock_does_not_matter) {
    world.path = [](std::uint32_t) { return fate{{250 * USEC}, 30 * MSEC}; };
    world.start();
    world.run_until(11 * SEC);
    EXPECT_EQ(session.probes()[0].values, (delay_values{250, 250, 250, 0}));
}

TEST_F(delay_session_test, the_delay_of_each_packet_is_kept_for_the_computation_under_way) {
    world.start();
    world.run_until(5 * SEC);
    ASSERT_EQ(session.samples().size(), 3U);
    EXPECT_EQ(session.samples()[2].delay_nsec, 100'000U);
    EXPECT_EQ(session.samples()[2].arrival_msec, START_MSEC + 4000);
    world.run_until(10 * SEC + MSEC);
    EXPECT_EQ(session.samples().size(), 1U);
}

TEST_F(delay_session_test, a_burst_is_shorter_than_its_computation) {
    delay_profile profile = five_packets();
    profile.burst_count = 3;
    delay_session burst(8, profile, 2'000'000, {});
    simulation other(&burst);
    other.start();
    other.run_until(9 * SEC);
    EXPECT_EQ(other.sent_at.size(), 3U);
    EXPECT_EQ(burst.next_send(), NEVER);
    EXPECT_EQ(burst.computation_end(), START_MONO + 10 * SEC);
    other.run_until(10 * SEC);
    EXPECT_EQ(other.sent_at.size(), 4U);
}

TEST_F(delay_session_test, a_lost_packet_is_counted_once_its_time_is_over) {
    world.path = [](std::uint32_t sequence) { return sequence == 1 ? fate{} : fate{{100 * USEC}}; };
    world.start();
    world.run_until(3 * SEC - 1);
    EXPECT_EQ(session.counters().lost, 0U);
    world.run_until(3 * SEC);
    EXPECT_EQ(session.counters().lost, 1U);
    world.run_until(10 * SEC);
    EXPECT_EQ(session.probes()[0].sent, 5U);
    EXPECT_EQ(session.probes()[0].received, 4U);
    EXPECT_EQ(session.counters().probes_complete, 1U);
}

TEST_F(delay_session_test, the_last_packet_of_a_computation_may_be_answered_in_the_next) {
    delay_profile profile = five_packets();
    profile.tx_interval_usec = 1'000'000;
    profile.response_timeout_msec = 1500;
    delay_session late_end(9, profile, 1'000'000, {});
    simulation other(&late_end);
    other.path = [](std::uint32_t) { return fate{{1200 * MSEC}}; };
    other.start();
    other.run_until(10 * SEC + 100 * MSEC);
    EXPECT_EQ(late_end.probes().size(), 0U);
    other.run_until(10 * SEC + 200 * MSEC);
    ASSERT_EQ(late_end.probes().size(), 1U);
    EXPECT_EQ(late_end.probes()[0].received, 10U);
    EXPECT_EQ(late_end.current().received, 0U);
}

TEST_F(delay_session_test, an_answer_after_its_time_is_late_and_no_sample) {
    world.path = [](std::uint32_t sequence) { return fate{{sequence == 0 ? 1500 * MSEC : 100 * USEC}}; };
    world.start();
    world.run_until(10 * SEC);
    EXPECT_EQ(session.counters().lost, 1U);
    EXPECT_EQ(session.counters().late, 1U);
    EXPECT_EQ(session.probes()[0].received, 4U);
    EXPECT_EQ(session.probes()[0].values.maximum, 100U);
}

TEST_F(delay_session_test, a_second_answer_is_a_duplicate_and_no_sample) {
    world.path = [](std::uint32_t) { return fate{{100 * USEC, 300 * USEC, 400 * USEC}}; };
    world.start();
    world.run_until(9 * SEC);
    EXPECT_EQ(session.counters().received, 5U);
    EXPECT_EQ(session.counters().duplicate, 10U);
    EXPECT_EQ(session.current().delays.values().maximum, 100U);
}

TEST_F(delay_session_test, an_answer_that_was_overtaken_is_reordered) {
    delay_profile profile = five_packets();
    profile.tx_interval_usec = 100'000;
    delay_session fast(9, profile, 100'000, {});
    simulation other(&fast);
    other.path = [](std::uint32_t sequence) { return fate{{sequence == 3 ? 250 * MSEC : 10 * MSEC}}; };
    other.start();
    other.run_until(1 * SEC);
    EXPECT_EQ(fast.counters().reordered, 1U);
    EXPECT_EQ(fast.counters().lost, 0U);
    EXPECT_EQ(fast.counters().received, 10U);
    EXPECT_EQ(fast.current().delays.values().maximum, 250'000U);
}

TEST_F(delay_session_test, an_answer_must_carry_the_stamp_of_its_request) {
    world.start();
    world.run_until(0);
    reply forged;
    forged.sequence = 0;
    forged.stamp_bits = 1;
    forged.arrival = world.now();
    EXPECT_EQ(session.on_reply(forged), reply_kind::unknown);
    forged.sequence = 4711;
    EXPECT_EQ(session.on_reply(forged), reply_kind::unknown);
    EXPECT_EQ(session.counters().unknown, 2U);
    EXPECT_EQ(session.counters().received, 0U);
}

reply answer_to_first(const simulation &world) {
    reply answer;
    answer.stamp_bits = 0xABC0000000000000U;
    answer.arrival = world.now();
    answer.offset = world.now().offset();
    return answer;
}

TEST_F(delay_session_test, stamps_that_contradict_each_other_give_a_negative_delay) {
    world.path = [](std::uint32_t) { return fate{}; };
    world.start();
    world.run_until(1 * MSEC);
    reply answer = answer_to_first(world);
    answer.receive_time = START_WALL;
    answer.transmit_time = START_WALL + 5 * MSEC;  // longer inside than it was away
    session.on_reply(answer);
    EXPECT_EQ(session.counters().negative_delay, 1U);
    EXPECT_EQ(session.counters().received, 1U);
    EXPECT_EQ(session.current().received, 0U);
}

TEST_F(delay_session_test, a_reflector_that_does_not_stamp_is_counted) {
    world.path = [](std::uint32_t) { return fate{}; };
    world.start();
    world.run_until(1 * MSEC);
    reply answer = answer_to_first(world);
    answer.has_receive_stamp = false;
    session.on_reply(answer);
    world.run_until(2 * SEC);
    answer.sequence = 1;
    ++answer.stamp_bits;
    answer.has_receive_stamp = true;
    answer.has_transmit_stamp = false;
    session.on_reply(answer);
    EXPECT_EQ(session.counters().missing_rx_stamp, 1U);
    EXPECT_EQ(session.counters().missing_tx_stamp, 1U);
    EXPECT_EQ(session.current().received, 0U);
}

TEST_F(delay_session_test, the_kernels_transmit_stamp_replaces_the_programs) {
    world.path = [this](std::uint32_t sequence) {
        session.on_transmit_stamp(sequence, world.now().wall + 40 * USEC);
        return fate{{100 * USEC}};
    };
    world.start();
    world.run_until(1 * SEC);
    EXPECT_EQ(session.current().delays.values().average, 60U);
}

TEST_F(delay_session_test, a_transmit_stamp_of_another_time_is_not_taken) {
    world.path = [this](std::uint32_t sequence) {
        session.on_transmit_stamp(sequence, world.now().wall - 1);
        session.on_transmit_stamp(sequence, world.now().wall + 2 * SEC);
        session.on_transmit_stamp(sequence + 1000, world.now().wall);
        return fate{{100 * USEC}};
    };
    world.start();
    world.run_until(1 * SEC);
    EXPECT_EQ(session.current().delays.values().average, 100U);
}

TEST_F(delay_session_test, a_wall_clock_that_is_set_changes_no_delay) {
    for (const std::int64_t step : {-86400 * SEC, 86400 * SEC, 50 * MSEC, -50 * MSEC}) {
        world.path = [this, step](std::uint32_t) {
            world.move_wall_clock(step);
            return fate{{100 * USEC}};
        };
        if (!session.is_running()) {
            world.start();
        }
        world.run_until(world.elapsed() + 10 * SEC);
    }
    EXPECT_EQ(session.counters().negative_delay, 0U);
    for (std::size_t index = 0; index < session.probes().size(); ++index) {
        EXPECT_EQ(session.probes()[index].values, (delay_values{100, 100, 100, 0}));
    }
    EXPECT_EQ(session.counters().lost, 0U);
}

TEST_F(delay_session_test, one_way_delay_is_not_measured_while_the_clock_is_set) {
    delay_profile profile = five_packets();
    profile.mode = PM_DELAY_MODE_ONE_WAY;
    delay_session one_way(9, profile, 2'000'000, {});
    simulation other(&one_way);
    other.path = [](std::uint32_t) { return fate{{100 * USEC}}; };
    other.start();
    other.run_until(1 * SEC);
    EXPECT_EQ(one_way.current().delays.values().average, 3'600'000'050U);  // half the way and an hour
    other.path = [&other](std::uint32_t) {
        other.move_wall_clock(SEC);
        return fate{{100 * USEC}};
    };
    other.run_until(3 * SEC);
    EXPECT_EQ(one_way.counters().negative_delay, 1U);
}

TEST_F(delay_session_test, a_suspended_process_does_not_make_up_for_what_it_missed) {
    world.start();
    world.run_until(1 * SEC);
    world.suspend(600 * SEC);
    world.run_until(world.elapsed());
    EXPECT_LE(world.sent_at.size(), 2U);
    const std::size_t before = world.sent_at.size();
    world.run_until(world.elapsed() + 20 * SEC);
    EXPECT_EQ(world.sent_at.size() - before, 10U);
    EXPECT_EQ(session.counters().lost, 0U);
}

TEST_F(delay_session_test, lateness_is_the_time_since_the_packet_was_due) {
    world.start();
    world.run_until(2 * SEC);
    EXPECT_EQ(session.lateness(), 0);
    world.suspend(1700 * MSEC);
    world.run_until(4 * SEC + 5 * MSEC);
    world.suspend(2100 * MSEC);
    world.run_until(world.elapsed());
    EXPECT_EQ(session.lateness(), 105 * MSEC);
}

TEST_F(delay_session_test, a_packet_that_never_left_is_no_sent_packet) {
    world.failure = send_failure::other;
    world.start();
    world.run_until(9 * SEC);
    EXPECT_EQ(session.counters().sent, 0U);
    EXPECT_EQ(session.counters().errors(send_failure::other), 5U);
    EXPECT_EQ(session.counters().lost, 0U);
    world.failure = send_failure::none;
    world.run_until(20 * SEC);
    EXPECT_EQ(session.counters().probes_incomplete, 1U);
    ASSERT_EQ(session.probes().size(), 1U);
    EXPECT_EQ(session.probes()[0].sent, 5U);
}

TEST_F(delay_session_test, a_computation_without_an_answer_is_incomplete_and_in_the_history) {
    world.path = [](std::uint32_t) { return fate{}; };
    world.start();
    world.run_until(12 * SEC);
    EXPECT_EQ(session.counters().probes_incomplete, 1U);
    EXPECT_EQ(session.probes()[0].sent, 5U);
    EXPECT_EQ(session.probes()[0].received, 0U);
    EXPECT_EQ(session.advertiser().last().reason, PM_ADVERT_REASON_NONE);
}

TEST_F(delay_session_test, nothing_is_sent_while_it_does_not_run) {
    world.run_until(60 * SEC);
    EXPECT_TRUE(world.sent_at.empty());
    EXPECT_EQ(session.not_running_reason(), PM_NOT_RUNNING_CLIENT_NOT_READY);
    world.start();
    world.run_until(61 * SEC);
    world.stop(PM_NOT_RUNNING_NO_INTERFACE);
    world.run_until(120 * SEC);
    EXPECT_EQ(world.sent_at.size(), 1U);
    EXPECT_EQ(session.next_send(), NEVER);
    EXPECT_FALSE(session.current().active());
    EXPECT_EQ(session.counters().probes_incomplete, 1U);
}

TEST_F(delay_session_test, sequence_numbers_go_on_after_a_pause) {
    world.start();
    world.run_until(3 * SEC);
    world.stop(PM_NOT_RUNNING_INTERFACE_DOWN);
    world.start();
    world.run_until(4 * SEC);
    EXPECT_EQ(world.sent_sequences, (std::vector<std::uint32_t>{0, 1, 2}));
}

TEST_F(delay_session_test, the_same_times_keep_the_computation_under_way) {
    world.start();
    world.run_until(3 * SEC);
    delay_profile profile = five_packets();
    profile.advertisement.periodic_threshold_percent = 50;
    session.reconfigure(profile, 2'000'000, world.now());
    EXPECT_EQ(session.current().sent, 2U);
    profile.computation_interval_sec = 4;
    session.reconfigure(profile, 1'000'000, world.now());
    EXPECT_FALSE(session.current().active());
    world.run_until(8 * SEC);
    ASSERT_EQ(session.probes().size(), 1U);
    EXPECT_EQ(session.probes()[0].sent, 4U);
}

TEST_F(delay_session_test, the_history_keeps_the_newest) {
    delay_session short_memory(9, five_packets(), 2'000'000, {.probe = 2});
    simulation other(&short_memory);
    other.path = [](std::uint32_t sequence) { return fate{{(sequence / 5 + 1) * MSEC}}; };
    other.start();
    other.run_until(45 * SEC);
    ASSERT_EQ(short_memory.probes().size(), 2U);
    EXPECT_EQ(short_memory.probes()[0].values.average, 3000U);
    EXPECT_EQ(short_memory.probes().newest().values.average, 4000U);
}

}  // namespace
