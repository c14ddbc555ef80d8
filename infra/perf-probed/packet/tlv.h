// SPDX-License-Identifier: Apache-2.0
// The TLVs after a base packet (RFC 8972) and what a reflector makes of them.
//
// A TLV is flags (1 octet), type (1), length of the value (2), value. The sender sets U in each; the
// reflector clears it in those that it understands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "perf-probed/packet/hmac.h"

namespace probed {

inline constexpr std::size_t TLV_HEADER = 4;

inline constexpr std::uint8_t TLV_UNRECOGNISED = 0x80;  // U
inline constexpr std::uint8_t TLV_MALFORMED = 0x40;     // M
inline constexpr std::uint8_t TLV_INTEGRITY = 0x20;     // I: the HMAC TLV is wrong or missing

inline constexpr std::uint8_t TLV_PADDING = 1;
inline constexpr std::uint8_t TLV_STAMP_INFORMATION = 3;
inline constexpr std::uint8_t TLV_CLASS_OF_SERVICE = 4;
inline constexpr std::uint8_t TLV_HMAC = 8;

// Values of the time stamp information TLV.
enum class stamp_method : std::uint8_t { hardware = 1, software_local = 2, control_plane = 3 };
enum class clock_source : std::uint8_t { ntp = 1, ptp = 2, free_running = 5 };

// What the reflector knows of the request that its TLVs ask for.
struct tlv_context {
    std::uint8_t dscp = 0;  // of the request as received
    std::uint8_t ecn = 0;   // of the request as received
    clock_source source = clock_source::free_running;
    stamp_method receive_method = stamp_method::software_local;
    stamp_method transmit_method = stamp_method::software_local;
};

struct tlv_verdict {
    bool malformed = false;         // a length did not fit; that TLV has M and the rest is as it was sent
    bool integrity_failed = false;  // every TLV has I
    int reply_dscp = -1;            // that a class of service TLV asks for; -1: none
};

// Turns the TLVs of a request, copied into its reply, into the reply's own, in place. `key` is null in unauthenticated
// mode. In authenticated mode TLVs need an HMAC TLV, last but for padding, unless padding is all there is.
[[nodiscard]] tlv_verdict reflect_tlvs(std::span<std::uint8_t> tlvs, const tlv_context &context, const hmac_key *key);

// Writes one padding TLV that fills `tlvs`. False when there is no room for its header.
[[nodiscard]] bool write_padding(std::span<std::uint8_t> tlvs);

}  // namespace probed
