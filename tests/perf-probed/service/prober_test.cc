// SPDX-License-Identifier: Apache-2.0
// The session-sender on a host that tests make up, with real packets over the loopback interface.
#include "perf-probed/service/prober.h"

#include <gtest/gtest.h>
#include <net/if_arp.h>
#include <poll.h>

#include "perf-probed/reflector/reflector.h"
#include "perf-probed/session/delay_session.h"
#include "perf-probed/session/liveness_session.h"
#include "tests/perf-probed/support/allocation_counter.h"

namespace {

using namespace probed;

ip_address loopback() {
    ip_address address;
    EXPECT_TRUE(parse_address("127.0.0.1", &address));
    return address;
}

// The system's clocks, which a test may move on.
struct moved_clock final : clock_source_interface {
    [[nodiscard]] moment now() const override {
        const moment real = system_clocks().now();
        return {real.mono + moved, real.wall + moved};
    }
    std::int64_t moved = 0;
};

// One interface whose next hop is a reflector of this process, and an endpoint that is the same reflector.
struct prober_test : testing::Test {
    moved_clock clock;
    prober tested{&clock};
    reflector far;
    udp_socket far_socket;
    host_state host{{{1, "lo", ARPHRD_LOOPBACK, true, true, {}, {loopback()}}}, {}};
    config settings;

    prober_test() {
        EXPECT_FALSE(far_socket.open({loopback(), 0, "", false}));
        settings.interface_delay.computation_interval_sec = 1;
        settings.interface_delay.tx_interval_usec = 10'000;
        settings.interface_delay.response_timeout_msec = 500;
        settings.endpoint_liveness.tx_interval_usec = 10'000;
        interface_config &lo = settings.interfaces.emplace_back();
        lo.name = "lo";
        lo.next_hop = loopback();
        lo.port = far_socket.port();
        lo.delay = "";
        endpoint_config &endpoint = settings.endpoints.emplace_back();
        endpoint.name = "an endpoint whose name is a long one";
        endpoint.address = loopback();
        endpoint.port = far_socket.port();
        endpoint.liveness = "";
    }

    const session_entry &entry(session_kind kind) {
        for (const auto &each : tested.entries()) {
            if (each != nullptr && each->plan.kind == kind && !each->removed_at) {
                return *each;
            }
        }
        ADD_FAILURE() << "there is no such session";
        std::abort();
    }
    const advertiser &adverts() {
        return static_cast<const delay_session &>(*entry(session_kind::delay).run).advertiser();
    }
    // Sends what is due for so long, and lets the reflector answer; `receive` takes the answers.
    template <class Receive>
    void run(std::int64_t msec, Receive receive) {
        const reply_settings replies;
        const mono_nsec end = clock.now().mono + msec * NSEC_PER_MSEC;
        while (clock.now().mono < end) {
            tested.run_due();
            far.serve(far_socket, replies, clock);
            pollfd near{tested.sockets().front().socket.fd(), POLLIN, 0};
            if (poll(&near, 1, 1) > 0) {
                receive();
            }
        }
    }
    void run(std::int64_t msec) {
        run(msec, [this] { tested.receive(0); });
    }
};

TEST_F(prober_test, a_link_that_goes_down_is_advertised_and_measured_again_when_it_returns) {
    ASSERT_FALSE(tested.apply(settings, host));
    run(1300);
    EXPECT_EQ(adverts().last().reason, PM_ADVERT_REASON_FIRST);
    const delay_values before = adverts().last().values;
    host.interfaces[0].is_running = false;
    tested.host_changed(host);
    EXPECT_EQ(entry(session_kind::delay).shown_reason(), PM_NOT_RUNNING_INTERFACE_DOWN);
    EXPECT_EQ(adverts().last().reason, PM_ADVERT_REASON_LINK_DOWN);
    EXPECT_EQ(adverts().last().values, before);
    const std::uint64_t sent = entry(session_kind::delay).run->counters().sent;
    run(200);
    EXPECT_EQ(entry(session_kind::delay).run->counters().sent, sent);
    host.interfaces[0].is_running = true;
    tested.host_changed(host);
    EXPECT_EQ(entry(session_kind::delay).shown_reason(), PM_NOT_RUNNING_NONE);
    run(200);
    EXPECT_GT(entry(session_kind::delay).run->counters().sent, sent);
}

TEST_F(prober_test, an_interface_that_is_down_first_and_vanishes_then_withdraws_what_was_advertised) {
    ASSERT_FALSE(tested.apply(settings, host));
    run(1300);
    host.interfaces[0].is_running = false;
    tested.host_changed(host);
    host.interfaces[0].admin_up = false;
    tested.host_changed(host);
    EXPECT_EQ(entry(session_kind::delay).shown_reason(), PM_NOT_RUNNING_INTERFACE_ADMIN_DOWN);
    EXPECT_EQ(adverts().last().reason, PM_ADVERT_REASON_LINK_DOWN);
    EXPECT_EQ(adverts().advertisements(), 2U);
    host.interfaces.clear();
    tested.host_changed(host);
    EXPECT_EQ(entry(session_kind::delay).shown_reason(), PM_NOT_RUNNING_NO_INTERFACE);
    EXPECT_EQ(adverts().last().reason, PM_ADVERT_REASON_SESSION_ERROR);
    EXPECT_EQ(adverts().last().values, delay_values{});
}

TEST_F(prober_test, a_next_hop_that_nobody_answers_for_is_the_shown_reason_while_packets_go_on) {
    host.neighbours = {{1, loopback(), {}, true}};
    ASSERT_FALSE(tested.apply(settings, host));
    run(60);
    EXPECT_EQ(entry(session_kind::delay).shown_reason(), PM_NOT_RUNNING_NO_NEXT_HOP_MAC);
    EXPECT_GT(entry(session_kind::delay).run->counters().sent, 0U);
    host.neighbours[0].failed = false;
    tested.host_changed(host);
    EXPECT_EQ(entry(session_kind::delay).shown_reason(), PM_NOT_RUNNING_NONE);
}

TEST_F(prober_test, a_source_port_that_somebody_has_is_tried_again) {
    udp_socket other;
    ip_address any;
    any.family = ip_family::ipv4;
    ASSERT_FALSE(other.open({any, 0, "", false}));
    settings.endpoints[0].source_port = other.port();
    ASSERT_FALSE(tested.apply(settings, host));
    EXPECT_EQ(entry(session_kind::liveness).shown_reason(), PM_NOT_RUNNING_SRC_PORT_FAILED);
    EXPECT_EQ(entry(session_kind::liveness).source_port, 0);
    const std::uint16_t port = other.port();
    other.close();
    tested.host_changed(host);
    EXPECT_EQ(entry(session_kind::liveness).shown_reason(), PM_NOT_RUNNING_NONE);
    EXPECT_EQ(entry(session_kind::liveness).source_port, port);
}

TEST_F(prober_test, a_removed_session_withdraws_does_not_run_for_an_unknown_reason_and_goes) {
    ASSERT_FALSE(tested.apply(settings, host));
    run(1300);
    const std::uint32_t id = entry(session_kind::delay).id();
    settings.interfaces.clear();
    ASSERT_FALSE(tested.apply(settings, host));
    const session_entry &removed = *tested.entries().at(id);
    EXPECT_EQ(removed.shown_reason(), PM_NOT_RUNNING_UNKNOWN);
    EXPECT_EQ(static_cast<const delay_session &>(*removed.run).advertiser().last().reason,
              PM_ADVERT_REASON_SESSION_DELETED);
    clock.moved = prober::SHOW_REMOVED_FOR - NSEC_PER_SEC;
    tested.forget_removed();
    EXPECT_NE(tested.entries().at(id), nullptr);
    clock.moved = prober::SHOW_REMOVED_FOR;
    tested.forget_removed();
    EXPECT_EQ(tested.entries().at(id), nullptr);
}

TEST_F(prober_test, other_sizes_of_histories_keep_the_newest_entries_and_the_counters) {
    settings.interface_delay.advertisement.accelerated_enabled = true;
    ASSERT_FALSE(tested.apply(settings, host));
    run(1300);
    settings.interfaces[0].static_delay_usec = 7;  // a second advertisement, and a third
    ASSERT_FALSE(tested.apply(settings, host));
    settings.interfaces[0].static_delay_usec = 8;
    ASSERT_FALSE(tested.apply(settings, host));
    ASSERT_EQ(adverts().advertised().size(), 3U);
    const std::uint64_t sent = entry(session_kind::delay).run->counters().sent;
    settings.histories.advertisement = 2;
    ASSERT_FALSE(tested.apply(settings, host));
    ASSERT_EQ(adverts().advertised().size(), 2U);
    EXPECT_EQ(adverts().advertised()[0].values.average, 7U);
    EXPECT_EQ(adverts().advertised()[1].values.average, 8U);
    EXPECT_EQ(entry(session_kind::delay).run->counters().sent, sent);
    settings.histories.advertisement = 3;
    ASSERT_FALSE(tested.apply(settings, host));
    settings.interfaces[0].static_delay_usec = 9;
    ASSERT_FALSE(tested.apply(settings, host));
    ASSERT_EQ(adverts().advertised().size(), 3U);
    EXPECT_EQ(adverts().advertised()[0].values.average, 7U);
    EXPECT_EQ(adverts().advertised()[2].values.average, 9U);
}

TEST_F(prober_test, allocates_nothing_for_what_it_receives) {
    ASSERT_FALSE(tested.apply(settings, host));
    std::size_t allocated = 0;
    run(2500, [&] {
        const std::size_t before = allocation_count();
        tested.receive(0);
        allocated += allocation_count() - before;
    });
    EXPECT_EQ(allocated, 0U);
    EXPECT_GT(entry(session_kind::delay).run->counters().received, 200U);
    EXPECT_GT(entry(session_kind::liveness).run->counters().received, 200U);
    EXPECT_GE(entry(session_kind::delay).run->counters().probes_complete, 2U);
}

}  // namespace
