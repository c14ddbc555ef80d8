// SPDX-License-Identifier: Apache-2.0
// Loss sessions in simulated time: five packets every ten seconds, a check of advertisements every twenty.
#include "perf-probed/session/loss_session.h"

#include <gtest/gtest.h>

#include "tests/perf-probed/session/simulation.h"

namespace {

using namespace simulated;

loss_profile five_packets() {
    loss_profile profile;
    profile.computation_interval_sec = 10;
    profile.tx_interval_usec = 2'000'000;
    profile.advertisement.periodic_interval_sec = 20;
    return profile;
}

struct loss_session_test : testing::Test {
    loss_session session{4, five_packets(), 2'000'000, {}};
    simulation world{&session};
    // Packets whose numbers are in this set are lost.
    void lose(std::initializer_list<std::uint32_t> numbers) {
        world.path = [lost = std::vector<std::uint32_t>(numbers)](std::uint32_t sequence) {
            return std::ranges::find(lost, sequence) == lost.end() ? fate{{5 * MSEC}} : fate{};
        };
    }
    pm_advert_reason_e reason() { return session.advertiser().last().reason; }
    std::uint32_t advertised() { return session.advertiser().last().values.average; }
};

TEST_F(loss_session_test, a_computation_has_the_part_that_was_not_answered) {
    lose({1, 3});
    world.start();
    world.run_until(12 * SEC);
    ASSERT_EQ(session.probes().size(), 1U);
    EXPECT_EQ(session.probes()[0].start_msec, START_MSEC);
    EXPECT_EQ(session.probes()[0].sent, 5U);
    EXPECT_EQ(session.probes()[0].received, 3U);
    EXPECT_EQ(session.probes()[0].percent(), 40U);
    EXPECT_EQ(reason(), PM_ADVERT_REASON_FIRST);
    EXPECT_EQ(advertised(), 40U);
}

TEST_F(loss_session_test, a_packet_under_way_is_no_lost_one) {
    lose({0});
    world.start();
    world.run_until(2 * SEC + 1 * MSEC);
    EXPECT_EQ(session.probe_window().sent, 1U);
    EXPECT_EQ(session.probe_window().percent(), 100U);
    world.run_until(2 * SEC + 5 * MSEC);
    EXPECT_EQ(session.probe_window().sent, 2U);
    EXPECT_EQ(session.probe_window().percent(), 50U);
}

TEST_F(loss_session_test, an_answer_after_its_time_is_lost) {
    world.path = [](std::uint32_t) { return fate{{1500 * MSEC}}; };
    world.start();
    world.run_until(12 * SEC);
    EXPECT_EQ(session.probes()[0].percent(), 100U);
    EXPECT_EQ(session.counters().late, 6U);  // with the first one of the next computation
}

TEST_F(loss_session_test, the_interval_adds_up_packets_and_not_percentages) {
    lose({0, 1, 2, 3, 4, 5, 6, 7});
    world.start();
    world.run_until(15 * SEC);
    EXPECT_EQ(session.periodic_window().sent, 5U);
    EXPECT_EQ(session.periodic_window().percent(), 100U);
    world.run_until(22 * SEC);
    ASSERT_EQ(session.aggregated().size(), 1U);
    EXPECT_EQ(session.aggregated()[0].start_msec, START_MSEC);
    EXPECT_EQ(session.aggregated()[0].sent, 10U);
    EXPECT_EQ(session.aggregated()[0].received, 2U);
    EXPECT_EQ(session.aggregated()[0].percent(), 80U);
    EXPECT_EQ(session.periodic_window().sent, 0U);
    EXPECT_EQ(session.advertiser().rolling_average(), 80U);
}

TEST_F(loss_session_test, the_periodic_check_advertises_another_loss) {
    lose({10, 11});
    world.start();
    world.run_until(22 * SEC);
    EXPECT_EQ(reason(), PM_ADVERT_REASON_FIRST);
    EXPECT_EQ(advertised(), 0U);
    world.run_until(42 * SEC);
    EXPECT_EQ(reason(), PM_ADVERT_REASON_PERIODIC_AVERAGE);
    EXPECT_EQ(advertised(), 20U);
    ASSERT_EQ(session.advertiser().advertised().size(), 2U);
}

TEST_F(loss_session_test, the_accelerated_check_looks_at_each_computation) {
    loss_profile profile = five_packets();
    profile.advertisement.accelerated_enabled = true;
    profile.advertisement.accelerated_minimum_change_usec = 30;
    session.reconfigure(profile, 2'000'000, world.now());
    lose({5, 10, 11});
    world.start();
    world.run_until(22 * SEC);
    EXPECT_EQ(session.advertiser().advertisements(), 2U);  // 20 percent are too few, but the periodic check takes 10
    EXPECT_EQ(advertised(), 10U);
    world.run_until(32 * SEC);
    EXPECT_EQ(reason(), PM_ADVERT_REASON_ACCELERATED_AVERAGE);
    EXPECT_EQ(advertised(), 40U);
}

TEST_F(loss_session_test, each_answer_notes_what_was_sent_and_received_so_far) {
    lose({1});
    world.start();
    world.run_until(5 * SEC);
    ASSERT_EQ(session.packets().size(), 2U);
    EXPECT_EQ(session.packets()[0].arrival_msec, START_MSEC + 5);
    EXPECT_EQ(session.packets()[0].sent, 1U);
    EXPECT_EQ(session.packets()[0].received, 1U);
    EXPECT_EQ(session.packets()[1].sent, 3U);
    EXPECT_EQ(session.packets()[1].received, 2U);
}

TEST_F(loss_session_test, a_packet_that_never_left_is_not_lost) {
    world.failure = send_failure::other;
    world.start();
    world.run_until(12 * SEC);
    EXPECT_EQ(session.probes().size(), 0U);
    EXPECT_EQ(session.counters().lost, 0U);
    EXPECT_EQ(reason(), PM_ADVERT_REASON_NONE);
}

TEST_F(loss_session_test, a_link_that_is_down_is_advertised_with_the_last_loss) {
    lose({0});
    world.start();
    world.run_until(12 * SEC);
    world.stop(PM_NOT_RUNNING_INTERFACE_DOWN);
    EXPECT_EQ(reason(), PM_ADVERT_REASON_LINK_DOWN);
    EXPECT_EQ(advertised(), 20U);
    EXPECT_EQ(session.periodic_window().sent, 0U);
}

TEST(loss_window, is_rounded_to_whole_percent) {
    EXPECT_EQ((loss_window{0, 0, 0}).percent(), 0U);
    EXPECT_EQ((loss_window{0, 200, 199}).percent(), 1U);
    EXPECT_EQ((loss_window{0, 201, 200}).percent(), 0U);
    EXPECT_EQ((loss_window{0, 3, 0}).percent(), 100U);
}

}  // namespace
