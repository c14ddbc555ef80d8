// SPDX-License-Identifier: Apache-2.0
// The test packets against bytes written by hand from the layout tables.
#include "perf-probed/packet/stamp_packet.h"

#include <gtest/gtest.h>

#include "tests/perf-probed/support/hex.h"

namespace {

using namespace probed;

constexpr sender_fields REQUEST{0x01020304, 0x1112131415161718, 0x8D02, 0xABCD};
constexpr reflector_fields REPLY{0x01020304, 0x2122232425262728, 0x4D03, 0xABCD, 0x3132333435363738, REQUEST, 0xFE};

constexpr char REQUEST_HEX[] =
    "01020304 1112131415161718 8d02 abcd"
    "00000000000000000000000000000000000000000000000000000000";
constexpr char REPLY_HEX[] =
    "01020304 2122232425262728 4d03 abcd 3132333435363738"
    "01020304 1112131415161718 8d02 0000 fe 000000";
constexpr char REQUEST_AUTHENTICATED_HEX[] =
    "01020304 000000000000000000000000 1112131415161718 8d02 abcd"
    "0000000000000000000000000000000000000000000000000000000000000000"
    "0000000000000000000000000000000000000000000000000000000000000000 00000000"
    "00000000000000000000000000000000";
constexpr char REPLY_AUTHENTICATED_HEX[] =
    "01020304 000000000000000000000000 2122232425262728 4d03 abcd 00000000"
    "3132333435363738 0000000000000000"
    "01020304 000000000000000000000000 1112131415161718 8d02 000000000000"
    "fe 000000000000000000000000000000"
    "00000000000000000000000000000000";

std::string written(packet_mode mode, const sender_fields &fields) {
    std::vector<std::uint8_t> packet(base_size(mode), 0xEE);
    EXPECT_TRUE(write_request(mode, fields, packet));
    return to_hex(packet);
}

std::string written(packet_mode mode, const reflector_fields &fields) {
    std::vector<std::uint8_t> packet(base_size(mode), 0xEE);
    EXPECT_TRUE(write_reply(mode, fields, packet));
    return to_hex(packet);
}

TEST(stamp_packet, requests_and_replies_are_laid_out_as_the_standard_says) {
    EXPECT_EQ(written(packet_mode::unauthenticated, REQUEST), to_hex(from_hex(REQUEST_HEX)));
    EXPECT_EQ(written(packet_mode::unauthenticated, REPLY), to_hex(from_hex(REPLY_HEX)));
    EXPECT_EQ(written(packet_mode::authenticated, REQUEST), to_hex(from_hex(REQUEST_AUTHENTICATED_HEX)));
    EXPECT_EQ(written(packet_mode::authenticated, REPLY), to_hex(from_hex(REPLY_AUTHENTICATED_HEX)));
}

TEST(stamp_packet, sizes_are_44_and_112) {
    EXPECT_EQ(from_hex(REQUEST_HEX).size(), 44U);
    EXPECT_EQ(from_hex(REPLY_HEX).size(), 44U);
    EXPECT_EQ(from_hex(REQUEST_AUTHENTICATED_HEX).size(), 112U);
    EXPECT_EQ(from_hex(REPLY_AUTHENTICATED_HEX).size(), 112U);
}

void expect_request(packet_mode mode, const char *hex) {
    sender_fields read;
    ASSERT_TRUE(read_request(mode, from_hex(hex), &read));
    EXPECT_EQ(read.sequence, REQUEST.sequence);
    EXPECT_EQ(read.stamp, REQUEST.stamp);
    EXPECT_EQ(read.estimate, REQUEST.estimate);
    EXPECT_EQ(read.ssid, REQUEST.ssid);
}

void expect_reply(packet_mode mode, const char *hex) {
    reflector_fields read;
    ASSERT_TRUE(read_reply(mode, from_hex(hex), &read));
    EXPECT_EQ(read.sequence, REPLY.sequence);
    EXPECT_EQ(read.stamp, REPLY.stamp);
    EXPECT_EQ(read.estimate, REPLY.estimate);
    EXPECT_EQ(read.ssid, REPLY.ssid);
    EXPECT_EQ(read.receive_stamp, REPLY.receive_stamp);
    EXPECT_EQ(read.sender.sequence, REQUEST.sequence);
    EXPECT_EQ(read.sender.stamp, REQUEST.stamp);
    EXPECT_EQ(read.sender.estimate, REQUEST.estimate);
    EXPECT_EQ(read.ttl, REPLY.ttl);
}

TEST(stamp_packet, fields_are_read_from_where_they_are) {
    expect_request(packet_mode::unauthenticated, REQUEST_HEX);
    expect_request(packet_mode::authenticated, REQUEST_AUTHENTICATED_HEX);
    expect_reply(packet_mode::unauthenticated, REPLY_HEX);
    expect_reply(packet_mode::authenticated, REPLY_AUTHENTICATED_HEX);
}

TEST(stamp_packet, a_request_of_14_octets_has_no_ssid) {
    sender_fields read;
    const std::vector<std::uint8_t> whole = from_hex(REQUEST_HEX);
    ASSERT_TRUE(read_request(packet_mode::unauthenticated, std::span(whole).first(14), &read));
    EXPECT_EQ(read.estimate, REQUEST.estimate);
    EXPECT_EQ(read.ssid, 0);
    ASSERT_TRUE(read_request(packet_mode::unauthenticated, std::span(whole).first(15), &read));
    EXPECT_EQ(read.ssid, 0);
    ASSERT_TRUE(read_request(packet_mode::unauthenticated, std::span(whole).first(16), &read));
    EXPECT_EQ(read.ssid, REQUEST.ssid);
}

TEST(stamp_packet, the_41_octets_of_a_twamp_light_reply_are_enough) {
    reflector_fields read;
    const std::vector<std::uint8_t> whole = from_hex(REPLY_HEX);
    ASSERT_TRUE(read_reply(packet_mode::unauthenticated, std::span(whole).first(41), &read));
    EXPECT_EQ(read.ttl, 0xFE);
}

TEST(stamp_packet, every_shorter_packet_is_refused) {
    const std::vector<std::uint8_t> octets(200, 0xFF);
    sender_fields request;
    reflector_fields reply;
    for (std::size_t size = 0; size < 14; ++size) {
        EXPECT_FALSE(read_request(packet_mode::unauthenticated, std::span(octets).first(size), &request)) << size;
    }
    for (std::size_t size = 0; size < 41; ++size) {
        EXPECT_FALSE(read_reply(packet_mode::unauthenticated, std::span(octets).first(size), &reply)) << size;
    }
    for (std::size_t size = 0; size < 112; ++size) {
        EXPECT_FALSE(read_request(packet_mode::authenticated, std::span(octets).first(size), &request)) << size;
        EXPECT_FALSE(read_reply(packet_mode::authenticated, std::span(octets).first(size), &reply)) << size;
    }
}

TEST(stamp_packet, nothing_is_written_where_there_is_too_little_room) {
    std::vector<std::uint8_t> packet(43, 0xEE);
    EXPECT_FALSE(write_request(packet_mode::unauthenticated, REQUEST, packet));
    EXPECT_FALSE(write_reply(packet_mode::unauthenticated, REPLY, packet));
    EXPECT_EQ(packet, std::vector<std::uint8_t>(43, 0xEE));
}

TEST(stamp_packet, the_transmit_stamp_alone_is_replaced) {
    std::vector<std::uint8_t> packet = from_hex(REPLY_AUTHENTICATED_HEX);
    write_reply_stamp(packet_mode::authenticated, 0x4142434445464748, packet);
    std::vector<std::uint8_t> expected = from_hex(REPLY_AUTHENTICATED_HEX);
    const std::vector<std::uint8_t> stamp = from_hex("4142434445464748");
    std::ranges::copy(stamp, expected.begin() + 16);
    EXPECT_EQ(to_hex(packet), to_hex(expected));
}

}  // namespace
