// SPDX-License-Identifier: Apache-2.0
// What the reflector answers, from packets written by hand.
#include "perf-probed/reflector/reply_builder.h"

#include <gtest/gtest.h>

#include "tests/perf-probed/support/hex.h"

namespace {

using namespace probed;

constexpr wall_nsec RECEIVED = 1'709'647'390'500'000'000;  // 0xe991a49e.80000000 in NTP time
constexpr wall_nsec SENT = 1'709'647'391'250'000'000;      // 0xe991a49f.40000000

constexpr char REQUEST[] =
    "00000007 e991a49e40000000 0a01 1234"
    "00000000000000000000000000000000000000000000000000000000";

struct answered {
    built_reply built;
    std::string hex;
};

answered answer(std::string_view request_hex, reply_settings settings = {}, std::uint8_t traffic_class = 0) {
    std::vector<std::uint8_t> request = from_hex(request_hex);
    std::vector<std::uint8_t> out(PACKET_ROOM, 0xEE);
    received_packet packet;
    packet.data = request;
    packet.time = RECEIVED;
    packet.ttl = 0xFB;
    packet.traffic_class = traffic_class;
    settings.estimate = 0x8a05;
    const built_reply built = build_reply(settings, packet, out);
    if (built.refused != refusal::none) {
        return {built, ""};
    }
    complete_reply(settings, SENT, out);
    return {built, to_hex(std::span(out).first(built.size))};
}

std::string plain(std::string_view hex) { return to_hex(from_hex(hex)); }

constexpr char REPLY[] =
    "00000007 e991a49f40000000 8a05 1234 e991a49e80000000"
    "00000007 e991a49e40000000 0a01 0000 fb 000000";

TEST(reply_builder, answers_with_both_its_times_and_the_requests_fields) {
    const answered back = answer(REQUEST);
    EXPECT_EQ(back.hex, plain(REPLY));
    EXPECT_EQ(back.hex.size(), plain(REQUEST).size());
}

TEST(reply_builder, answers_in_ptp_time_when_told) {
    reply_settings settings;
    settings.format = stamp_format::ptp;
    const answered back = answer(REQUEST, settings);
    EXPECT_EQ(back.hex.substr(8, 16), "65e7261f0ee6b280");   // 250,000,000 ns
    EXPECT_EQ(back.hex.substr(32, 16), "65e7261e1dcd6500");  // 500,000,000 ns
}

TEST(reply_builder, reflects_the_dscp_and_not_the_congestion_marks) {
    EXPECT_EQ(answer(REQUEST, {}, 0xBB).built.traffic_class, 0xB8);
    EXPECT_EQ(answer(std::string(REQUEST) + "80 04 0004 28000000", {}, 0xB8).built.traffic_class, 0x28);
}

TEST(reply_builder, is_as_long_as_the_request_and_brings_its_tlvs_back) {
    const answered back = answer(std::string(REQUEST) + "80 01 0003 aabbcc  80 c8 0002 1234");
    EXPECT_EQ(back.hex, plain(std::string(REPLY) + "00 01 0003 aabbcc  80 c8 0002 1234"));
}

TEST(reply_builder, says_when_tlvs_are_malformed) {
    const answered back = answer(std::string(REQUEST) + "80 01 ffff aabbcc");
    EXPECT_TRUE(back.built.malformed_tlv);
    EXPECT_EQ(back.hex, plain(std::string(REPLY) + "40 01 ffff aabbcc"));
}

TEST(reply_builder, short_requests_get_no_answer_unless_that_is_wanted) {
    reply_settings generous;
    generous.answer_short = true;
    const std::string request = plain(REQUEST);
    for (std::size_t size = 0; size < 41; ++size) {
        EXPECT_EQ(answer(request.substr(0, size * 2)).built.refused, refusal::too_short) << size;
        const answered back = answer(request.substr(0, size * 2), generous);
        EXPECT_EQ(back.built.refused, size < 14 ? refusal::too_short : refusal::none) << size;
        EXPECT_EQ(back.built.size, size < 14 ? 0U : 41U) << size;
    }
}

TEST(reply_builder, requests_of_41_to_43_octets_are_answered_in_as_many) {
    const std::string request = plain(REQUEST);
    for (std::size_t size = 41; size <= 44; ++size) {
        EXPECT_EQ(answer(request.substr(0, size * 2)).hex, plain(REPLY).substr(0, size * 2));
    }
}

TEST(reply_builder, a_short_request_is_answered_with_the_fields_it_has) {
    reply_settings generous;
    generous.answer_short = true;
    EXPECT_EQ(answer(plain(REQUEST).substr(0, 28), generous).hex,
              plain("00000007 e991a49f40000000 8a05 0000 e991a49e80000000 00000007 e991a49e40000000 0a01 0000 fb"));
}

TEST(reply_builder, what_was_cut_is_not_answered) {
    std::vector<std::uint8_t> request = from_hex(REQUEST);
    std::vector<std::uint8_t> out(PACKET_ROOM);
    received_packet packet;
    packet.data = request;
    packet.cut = true;
    EXPECT_EQ(build_reply({}, packet, out).refused, refusal::too_long);
}

struct authenticated_reply_test : testing::Test {
    hmac_key key{"secret"};
    reply_settings settings;
    std::vector<std::uint8_t> request;

    authenticated_reply_test() : request(112) {
        settings.key = &key;
        const sender_fields fields{7, 0xe991a49e40000000, 0x0a01, 0x1234};
        EXPECT_TRUE(write_request(packet_mode::authenticated, fields, request));
        key.sign_packet(request);
    }
};

TEST_F(authenticated_reply_test, signs_its_answer) {
    const answered back = answer(to_hex(request), settings);
    ASSERT_EQ(back.built.refused, refusal::none);
    EXPECT_EQ(back.hex.substr(0, 96 * 2),
              plain("00000007 000000000000000000000000 e991a49f40000000 8a05 1234 00000000"
                    "e991a49e80000000 0000000000000000 00000007 000000000000000000000000"
                    "e991a49e40000000 0a01 000000000000 fb 000000000000000000000000000000"));
    EXPECT_TRUE(key.check_packet(from_hex(back.hex)));
}

TEST_F(authenticated_reply_test, a_wrong_hmac_gets_no_answer) {
    request[30] ^= 1;
    EXPECT_EQ(answer(to_hex(request), settings).built.refused, refusal::bad_hmac);
}

TEST_F(authenticated_reply_test, an_unauthenticated_request_gets_no_answer) {
    EXPECT_EQ(answer(REQUEST, settings).built.refused, refusal::too_short);
    EXPECT_EQ(answer(plain(REQUEST) + std::string(200, '0'), settings).built.refused, refusal::bad_hmac);
}

TEST_F(authenticated_reply_test, tlvs_without_an_hmac_come_back_with_i) {
    const answered back = answer(to_hex(request) + "80c8000112", settings);
    EXPECT_TRUE(back.built.integrity_failed);
    EXPECT_EQ(back.hex.substr(112 * 2), "a0c8000112");
}

}  // namespace
