// SPDX-License-Identifier: Apache-2.0
// The reflector at real sockets of the loopback interface: who gets an answer, what is counted, and that nothing is
// allocated meanwhile.
#include "perf-probed/reflector/reflector.h"

#include <chrono>
#include <gtest/gtest.h>
#include <poll.h>
#include <thread>

#include "tests/perf-probed/support/allocation_counter.h"

namespace {

using namespace probed;

ip_address address(const char *text) {
    ip_address parsed;
    EXPECT_TRUE(parse_address(text, &parsed));
    return parsed;
}

class reflector_test : public testing::TestWithParam<const char *> {
protected:
    void SetUp() override {
        ASSERT_FALSE(serving_.open({address(GetParam()), 0, "", false}));
        ASSERT_FALSE(asking_.open({address(GetParam()), 0, "", false}));
    }

    void ask(std::span<const std::uint8_t> request) {
        send_batch batch;
        batch.add({request, {address(GetParam()), serving_.port(), 0}, {}, 0, 0xB8, 0});
        ASSERT_EQ(batch.flush(asking_, [](std::size_t, int) {}), 1U);
        wait_for(serving_);
        responder.serve(serving_, settings, clocks);
    }
    // The answer; empty when there is none.
    std::vector<std::uint8_t> answer() {
        wait_for(asking_, 20);
        if (received_.receive(asking_, 0) == 0) {
            return {};
        }
        return {received_[0].data.begin(), received_[0].data.end()};
    }
    static void wait_for(const udp_socket &socket, int msec = 1000) {
        pollfd waited{socket.fd(), POLLIN, 0};
        poll(&waited, 1, msec);
    }
    static std::vector<std::uint8_t> request() {
        std::vector<std::uint8_t> packet(44);
        EXPECT_TRUE(write_request(packet_mode::unauthenticated, {7, 1, 1, 9}, packet));
        return packet;
    }

    system_clocks clocks;
    reflector responder;
    reply_settings settings;
    udp_socket serving_;
    udp_socket asking_;
    receive_batch received_;
};

TEST_P(reflector_test, answers_with_ttl_255_and_reports_the_ttl_and_dscp_of_the_request) {
    ask(request());
    wait_for(asking_);
    ASSERT_EQ(received_.receive(asking_, 0), 1U);
    EXPECT_EQ(received_[0].ttl, 255);
    EXPECT_EQ(received_[0].traffic_class, 0xB8);
    EXPECT_EQ(received_[0].from.port, serving_.port());
    reflector_fields fields;
    ASSERT_TRUE(read_reply(packet_mode::unauthenticated, received_[0].data, &fields));
    EXPECT_EQ(fields.ttl, 255);
    EXPECT_EQ(fields.sequence, 7U);
    EXPECT_EQ(fields.ssid, 9);
    const wall_nsec now = clocks.now().wall;
    const wall_nsec received = decode_stamp(stamp_format::ntp, fields.receive_stamp, now);
    const wall_nsec sent = decode_stamp(stamp_format::ntp, fields.stamp, now);
    EXPECT_LE(received, sent);
    EXPECT_LE(sent, now);
    EXPECT_LT(now - received, 5 * NSEC_PER_SEC);
}

// It begins to a moment after the first socket of the machine asks for it.
TEST_P(reflector_test, the_kernel_stamps_what_arrives) {
    constexpr int MOST_TRIES = 500;
    const auto unstamped = [&] { return responder.totals().without_kernel_stamp; };
    for (int tries = 0; tries < MOST_TRIES && unstamped() == responder.totals().received; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(tries == 0 ? 0 : 10));
        ask(request());
    }
    const auto before = unstamped();
    ASSERT_LT(before, responder.totals().received);
    ask(request());
    EXPECT_EQ(unstamped(), before);
    EXPECT_TRUE(serving_.kernel_stamps());
}

TEST_P(reflector_test, addresses_that_are_not_allowed_get_no_answer) {
    ip_prefix elsewhere;
    ASSERT_TRUE(parse_prefix("192.0.2.0/24", &elsewhere));
    responder.allow({elsewhere});
    ask(request());
    EXPECT_TRUE(answer().empty());
    EXPECT_EQ(responder.totals().received, 1U);
    EXPECT_EQ(responder.totals().answered, 0U);
    EXPECT_EQ(responder.totals().refused_for(refusal::not_allowed), 1U);
    ip_prefix here;
    ASSERT_TRUE(parse_prefix(GetParam(), &here));
    responder.allow({elsewhere, here});
    ask(request());
    EXPECT_EQ(answer().size(), 44U);
}

TEST_P(reflector_test, a_packet_from_the_port_that_it_serves_is_not_answered) {
    send_batch batch;
    const std::vector<std::uint8_t> packet = request();
    batch.add({packet, {address(GetParam()), serving_.port(), 0}, {}, 0, 0, 0});
    ASSERT_EQ(batch.flush(serving_, [](std::size_t, int) {}), 1U);
    wait_for(serving_);
    responder.serve(serving_, settings, clocks);
    EXPECT_EQ(responder.totals().refused_for(refusal::source_port), 1U);
    EXPECT_EQ(responder.totals().answered, 0U);
}

TEST_P(reflector_test, every_length_is_answered_in_kind_or_counted) {
    std::uint64_t answered = 0;
    std::uint64_t refused = 0;
    for (std::size_t size = 0; size < 200; ++size) {
        const std::vector<std::uint8_t> packet(size, 0xFF);
        ask(packet);
        const std::vector<std::uint8_t> back = answer();
        EXPECT_EQ(back.size(), size >= 41 ? size : 0U);
        ++(size >= 41 ? answered : refused);
        EXPECT_EQ(responder.totals().answered, answered);
        EXPECT_EQ(responder.totals().refused_for(refusal::too_short), refused);
    }
}

TEST_P(reflector_test, counts_by_interface_and_forgets_after_an_hour) {
    ask(request());
    ASSERT_EQ(responder.interfaces().size(), 1U);
    EXPECT_NE(responder.interfaces()[0].index, 0U);
    responder.tick(clocks.now().mono);
    EXPECT_EQ(responder.rate(), 1U);
    responder.tick(clocks.now().mono);
    EXPECT_EQ(responder.rate(), 0U);
    EXPECT_EQ(responder.rate_high(), 1U);
    responder.tick(clocks.now().mono + reflector::FORGET_AFTER);
    EXPECT_TRUE(responder.interfaces().empty());
    EXPECT_EQ(responder.totals().answered, 1U);
}

TEST_P(reflector_test, nothing_is_allocated_while_it_receives_and_answers) {
    const hmac_key key("secret");
    settings.key = &key;
    std::vector<std::uint8_t> good(112 + 24);
    ASSERT_TRUE(write_request(packet_mode::authenticated, {7, 1, 1, 9}, good));
    key.sign_packet(good);
    const std::vector<std::uint8_t> bad(112, 0x55);
    send_batch batch;
    for (std::size_t index = 0; index < BATCH_PACKETS; ++index) {
        batch.add({index % 2 == 0 ? good : bad, {address(GetParam()), serving_.port(), 0}, {}, 0, 0, 0});
    }
    ask(good);  // the interface is known from now on
    batch.flush(asking_, [](std::size_t, int) {});
    const std::size_t before = allocation_count();
    responder.serve(serving_, settings, clocks);
    const std::size_t after = allocation_count();
    EXPECT_EQ(after, before);
    EXPECT_GT(after, 0U);
    EXPECT_EQ(responder.totals().answered, 33U);
    EXPECT_EQ(responder.totals().refused_for(refusal::bad_hmac), 32U);
}

INSTANTIATE_TEST_SUITE_P(both_families, reflector_test, testing::Values("127.0.0.1", "::1"),
                         [](const auto &given) { return std::string(given.param) == "::1" ? "ipv6" : "ipv4"; });

}  // namespace
