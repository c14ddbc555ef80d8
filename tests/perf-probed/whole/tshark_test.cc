// SPDX-License-Identifier: Apache-2.0
// The packets as another program reads them: tshark decodes each mode, field by field.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "perf-probed/packet/byte_order.h"
#include "perf-probed/packet/hmac.h"
#include "perf-probed/packet/stamp_packet.h"
#include "perf-probed/packet/time_stamp.h"
#include "perf-probed/reflector/reply_builder.h"
#include "tests/support/command.h"

namespace {

using namespace probed;

constexpr wall_nsec T1 = 1'709'647'390'250'000'000;
constexpr wall_nsec T2 = 1'709'647'390'500'000'000;
constexpr wall_nsec T3 = 1'709'647'391'125'000'000;

void put_little(std::string *out, std::uint32_t value, int octets) {
    for (int index = 0; index < octets; ++index) {
        *out += static_cast<char>(value >> (8 * index));
    }
}

// A capture file of one UDP packet over IPv4.
std::string capture(const std::vector<std::uint8_t> &payload, std::uint16_t from, std::uint16_t to) {
    std::vector<std::uint8_t> ip(28, 0);
    ip[0] = 0x45;
    put_u16(&ip[2], static_cast<std::uint16_t>(28 + payload.size()));
    ip[8] = 255;
    ip[9] = 17;
    put_u32(&ip[12], 0xC0000201);
    put_u32(&ip[16], 0xC0000202);
    put_u16(&ip[20], from);
    put_u16(&ip[22], to);
    put_u16(&ip[24], static_cast<std::uint16_t>(8 + payload.size()));
    ip.insert(ip.end(), payload.begin(), payload.end());
    std::string file;
    put_little(&file, 0xa1b2c3d4, 4);
    put_little(&file, 2, 2);
    put_little(&file, 4, 2);
    put_little(&file, 0, 4);
    put_little(&file, 0, 4);
    put_little(&file, 65535, 4);
    put_little(&file, 101, 4);  // raw IP
    put_little(&file, 0, 4);
    put_little(&file, 0, 4);
    put_little(&file, static_cast<std::uint32_t>(ip.size()), 4);
    put_little(&file, static_cast<std::uint32_t>(ip.size()), 4);
    return file + std::string(ip.begin(), ip.end());
}

// The values of these fields of a packet.
std::string decoded(const std::vector<std::uint8_t> &payload, bool is_reply, const std::string &decoder,
                    const std::vector<std::string> &fields) {
    const temporary_folder folder;
    write_file(folder.path() + "/p.pcap", is_reply ? capture(payload, 862, 50000) : capture(payload, 50000, 862));
    std::string command =
        "tshark -r " + folder.path() + "/p.pcap " + decoder + " -T fields -E occurrence=f -E 'separator=|'";
    for (const std::string &field : fields) {
        command += " -e " + field;
    }
    return run_command(command, folder.path()).out;
}

const std::vector<std::string> REQUEST_FIELDS = {"twamp.test.seq_number",
                                                 "twamp.test.timestamp",
                                                 "twamp.test.error_estimate.s",
                                                 "twamp.test.error_estimate.z",
                                                 "twamp.test.error_estimate.scale",
                                                 "twamp.test.error_estimate.multiplier",
                                                 "twamp.test.mbz1"};
const std::vector<std::string> REPLY_FIELDS = {"twamp.test.seq_number",        "twamp.test.timestamp",
                                               "twamp.test.error_estimate",    "twamp.test.mbz1",
                                               "twamp.test.receive_timestamp", "twamp.test.sender_seq_number",
                                               "twamp.test.sender_timestamp",  "twamp.test.sender_error_estimate",
                                               "twamp.test.sender_ttl"};

constexpr char AS_TWAMP[] = "-d udp.port==862,twamp.test";
constexpr char AS_AUTHENTICATED[] = "-X lua_script:" PM_AUTHENTICATED_LUA " -d udp.port==862,stamp_authenticated";

std::vector<std::uint8_t> request(packet_mode mode, stamp_format format) {
    std::vector<std::uint8_t> packet(base_size(mode));
    const error_estimate estimate{true, format, 10, 5};
    EXPECT_TRUE(write_request(mode, {7, encode_stamp(format, T1), encode_estimate(estimate), 0x1234}, packet));
    return packet;
}

std::vector<std::uint8_t> reply_to(std::vector<std::uint8_t> asked, reply_settings settings) {
    received_packet packet;
    packet.data = asked;
    packet.time = T2;
    packet.ttl = 251;
    std::vector<std::uint8_t> out(PACKET_ROOM);
    const built_reply built = build_reply(settings, packet, out);
    complete_reply(settings, T3, out);
    out.resize(built.size);
    return out;
}

TEST(tshark, reads_an_unauthenticated_request_with_ntp_time) {
    EXPECT_EQ(decoded(request(packet_mode::unauthenticated, stamp_format::ntp), false, AS_TWAMP, REQUEST_FIELDS),
              "7|Mar  5, 2024 14:03:10.250000000 UTC|1|0|10|5|4660\n");
}

TEST(tshark, reads_an_unauthenticated_request_with_ptp_time) {
    EXPECT_EQ(decoded(request(packet_mode::unauthenticated, stamp_format::ptp), false, AS_TWAMP, REQUEST_FIELDS),
              "7|Mar  5, 2024 14:03:10.250000000 UTC|1|1|10|5|4660\n");
}

TEST(tshark, reads_an_unauthenticated_reply) {
    const reply_settings settings{nullptr, false, 0x0b06, stamp_format::ntp, clock_source::ntp};
    EXPECT_EQ(decoded(reply_to(request(packet_mode::unauthenticated, stamp_format::ntp), settings), true, AS_TWAMP,
                      REPLY_FIELDS),
              "7|Mar  5, 2024 14:03:11.125000000 UTC|2822|4660|Mar  5, 2024 14:03:10.500000000 UTC|7|"
              "Mar  5, 2024 14:03:10.250000000 UTC|35333|251\n");
}

TEST(tshark, reads_a_reply_with_ptp_time_to_a_request_with_ntp_time) {
    const reply_settings settings{nullptr, false, 0x4b06, stamp_format::ptp, clock_source::ptp};
    EXPECT_EQ(decoded(reply_to(request(packet_mode::unauthenticated, stamp_format::ntp), settings), true, AS_TWAMP,
                      REPLY_FIELDS),
              "7|Mar  5, 2024 14:03:11.125000000 UTC|19206|4660|Mar  5, 2024 14:03:10.500000000 UTC|7|"
              "Mar  5, 2024 14:03:10.250000000 UTC|35333|251\n");
}

// tshark knows the unauthenticated form only; the script beside this file describes the other one to it.
TEST(tshark, reads_an_authenticated_request_and_finds_zeros_between_its_fields) {
    const hmac_key key("secret");
    std::vector<std::uint8_t> asked = request(packet_mode::authenticated, stamp_format::ntp);
    key.sign_packet(asked);
    EXPECT_EQ(decoded(asked, false, AS_AUTHENTICATED,
                      {"sa.seq", "sa.time", "sa.estimate", "sa.ssid", "sa.zeros", "sa.hmac_size"}),
              "7|Mar  5, 2024 14:03:10.250000000 UTC|0x8a05|0x1234|1|16\n");
}

TEST(tshark, reads_an_authenticated_reply_and_finds_zeros_between_its_fields) {
    const hmac_key key("secret");
    std::vector<std::uint8_t> asked = request(packet_mode::authenticated, stamp_format::ntp);
    key.sign_packet(asked);
    const reply_settings settings{&key, false, 0x0b06, stamp_format::ntp, clock_source::ntp};
    EXPECT_EQ(decoded(reply_to(asked, settings), true, AS_AUTHENTICATED,
                      {"sa.seq", "sa.time", "sa.estimate", "sa.ssid", "sa.receive_time", "sa.sender_seq",
                       "sa.sender_time", "sa.sender_estimate", "sa.ttl", "sa.zeros", "sa.hmac_size"}),
              "7|Mar  5, 2024 14:03:11.125000000 UTC|0x0b06|0x1234|Mar  5, 2024 14:03:10.500000000 UTC|7|"
              "Mar  5, 2024 14:03:10.250000000 UTC|0x8a05|251|1|16\n");
}

}  // namespace
