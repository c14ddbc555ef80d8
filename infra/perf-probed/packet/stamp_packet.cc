// SPDX-License-Identifier: Apache-2.0
// One table of offsets for each direction and mode, and the readers and writers over them.
#include "perf-probed/packet/stamp_packet.h"

#include <algorithm>

#include "perf-probed/packet/byte_order.h"

namespace probed {
namespace {

struct request_layout {
    std::size_t sequence, stamp, estimate, ssid;
};
constexpr request_layout REQUESTS[] = {
    {0, 4, 12, 14},
    {0, 16, 24, 26},
};

struct reply_layout {
    std::size_t sequence, stamp, estimate, ssid, receive_stamp;
    std::size_t sender_sequence, sender_stamp, sender_estimate, ttl;
};
constexpr reply_layout REPLIES[] = {
    {0, 4, 12, 14, 16, 24, 28, 36, 40},
    {0, 16, 24, 26, 32, 48, 64, 72, 80},
};

constexpr const request_layout &request_of(packet_mode mode) { return REQUESTS[static_cast<unsigned>(mode)]; }
constexpr const reply_layout &reply_of(packet_mode mode) { return REPLIES[static_cast<unsigned>(mode)]; }

}  // namespace

bool write_request(packet_mode mode, const sender_fields &fields, std::span<std::uint8_t> packet) {
    if (packet.size() < base_size(mode)) {
        return false;
    }
    std::fill_n(packet.data(), base_size(mode), std::uint8_t{0});
    const request_layout &at = request_of(mode);
    put_u32(packet.data() + at.sequence, fields.sequence);
    put_u64(packet.data() + at.stamp, fields.stamp);
    put_u16(packet.data() + at.estimate, fields.estimate);
    put_u16(packet.data() + at.ssid, fields.ssid);
    return true;
}

bool write_reply(packet_mode mode, const reflector_fields &fields, std::span<std::uint8_t> packet) {
    if (packet.size() < base_size(mode)) {
        return false;
    }
    std::fill_n(packet.data(), base_size(mode), std::uint8_t{0});
    const reply_layout &at = reply_of(mode);
    put_u32(packet.data() + at.sequence, fields.sequence);
    put_u64(packet.data() + at.stamp, fields.stamp);
    put_u16(packet.data() + at.estimate, fields.estimate);
    put_u16(packet.data() + at.ssid, fields.ssid);
    put_u64(packet.data() + at.receive_stamp, fields.receive_stamp);
    put_u32(packet.data() + at.sender_sequence, fields.sender.sequence);
    put_u64(packet.data() + at.sender_stamp, fields.sender.stamp);
    put_u16(packet.data() + at.sender_estimate, fields.sender.estimate);
    packet[at.ttl] = fields.ttl;
    return true;
}

bool read_request(packet_mode mode, std::span<const std::uint8_t> packet, sender_fields *fields) {
    if (packet.size() < (mode == packet_mode::authenticated ? BASE_SIZE_AUTHENTICATED : SHORTEST_REQUEST)) {
        return false;
    }
    const request_layout &at = request_of(mode);
    fields->sequence = get_u32(packet.data() + at.sequence);
    fields->stamp = get_u64(packet.data() + at.stamp);
    fields->estimate = get_u16(packet.data() + at.estimate);
    fields->ssid = packet.size() >= at.ssid + 2 ? get_u16(packet.data() + at.ssid) : std::uint16_t{0};
    return true;
}

bool read_reply(packet_mode mode, std::span<const std::uint8_t> packet, reflector_fields *fields) {
    if (packet.size() < (mode == packet_mode::authenticated ? BASE_SIZE_AUTHENTICATED : SHORTEST_REPLY)) {
        return false;
    }
    const reply_layout &at = reply_of(mode);
    fields->sequence = get_u32(packet.data() + at.sequence);
    fields->stamp = get_u64(packet.data() + at.stamp);
    fields->estimate = get_u16(packet.data() + at.estimate);
    fields->ssid = get_u16(packet.data() + at.ssid);
    fields->receive_stamp = get_u64(packet.data() + at.receive_stamp);
    fields->sender.sequence = get_u32(packet.data() + at.sender_sequence);
    fields->sender.stamp = get_u64(packet.data() + at.sender_stamp);
    fields->sender.estimate = get_u16(packet.data() + at.sender_estimate);
    fields->sender.ssid = fields->ssid;
    fields->ttl = packet[at.ttl];
    return true;
}

void write_reply_stamp(packet_mode mode, std::uint64_t stamp, std::span<std::uint8_t> packet) {
    put_u64(packet.data() + reply_of(mode).stamp, stamp);
}

}  // namespace probed
