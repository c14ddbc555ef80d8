// SPDX-License-Identifier: Apache-2.0
// The test packets of STAMP (RFC 8762, RFC 8972) and TWAMP Light (RFC 5357 appendix I): their fields and
// where they are.
//
// Reading checks the length and nothing else: every value of every field is passed on. Bytes from the
// network are hostile; nothing is read outside the given size, and nothing is allocated.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "perf-probed/packet/time_stamp.h"

namespace probed {

enum class packet_mode : std::uint8_t { unauthenticated, authenticated };

inline constexpr std::uint16_t STAMP_PORT = 862;

// Sizes of the base packets in octets, without TLVs.
inline constexpr std::size_t BASE_SIZE = 44;                 // unauthenticated, both directions
inline constexpr std::size_t BASE_SIZE_AUTHENTICATED = 112;  // both directions
inline constexpr std::size_t SHORTEST_REQUEST = 14;          // that a TWAMP Light sender may send
inline constexpr std::size_t SHORTEST_REPLY = 41;            // that a TWAMP Light reflector may send

// HMAC of authenticated packets: the last octets of the base packet, over all that precede them.
inline constexpr std::size_t HMAC_SIZE = 16;
inline constexpr std::size_t HMAC_OFFSET = BASE_SIZE_AUTHENTICATED - HMAC_SIZE;

[[nodiscard]] constexpr std::size_t base_size(packet_mode mode) {
    return mode == packet_mode::authenticated ? BASE_SIZE_AUTHENTICATED : BASE_SIZE;
}

// What a session-sender sends.
struct sender_fields {
    std::uint32_t sequence = 0;
    std::uint64_t stamp = 0;  // T1, in the format of the estimate
    std::uint16_t estimate = 0;
    std::uint16_t ssid = 0;  // 0: of no session, as TWAMP Light senders say
};

// What a session-reflector answers.
struct reflector_fields {
    std::uint32_t sequence = 0;  // the sender's, as this reflector keeps no state
    std::uint64_t stamp = 0;     // T3, in the format of the estimate
    std::uint16_t estimate = 0;
    std::uint16_t ssid = 0;
    std::uint64_t receive_stamp = 0;  // T2, in the format of the estimate
    sender_fields sender;             // as received; its ssid is not in the packet
    std::uint8_t ttl = 0;             // TTL or hop limit of the request
};

// Write the base packet into the first base_size(mode) octets of `packet`, zeros in every unused one. The HMAC is
// left zero (hmac.h). False when `packet` is shorter.
[[nodiscard]] bool write_request(packet_mode mode, const sender_fields &fields, std::span<std::uint8_t> packet);
[[nodiscard]] bool write_reply(packet_mode mode, const reflector_fields &fields, std::span<std::uint8_t> packet);

// Read the base packet. False when there are fewer octets than the mode's least: SHORTEST_REQUEST or SHORTEST_REPLY
// unauthenticated, BASE_SIZE_AUTHENTICATED authenticated. The SSID of a request shorter than 16 octets is 0.
[[nodiscard]] bool read_request(packet_mode mode, std::span<const std::uint8_t> packet, sender_fields *fields);
[[nodiscard]] bool read_reply(packet_mode mode, std::span<const std::uint8_t> packet, reflector_fields *fields);

// The reply's T3 alone, which is written when everything else is done.
void write_reply_stamp(packet_mode mode, std::uint64_t stamp, std::span<std::uint8_t> packet);

}  // namespace probed
