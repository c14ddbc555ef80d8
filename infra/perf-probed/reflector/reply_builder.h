// SPDX-License-Identifier: Apache-2.0
// What a session-reflector answers to one packet, or why it does not.
//
// Keeps no state and allocates nothing. A reply has the length of its request, unless the short requests of
// TWAMP Light senders are answered too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "perf-probed/net/packet_batch.h"
#include "perf-probed/packet/hmac.h"
#include "perf-probed/packet/stamp_packet.h"
#include "perf-probed/packet/time_stamp.h"
#include "perf-probed/packet/tlv.h"

namespace probed {

// How this host's clock is, for the error estimates of what it sends.
struct clock_quality {
    bool synchronised = false;  // to an external source
    stamp_format format = stamp_format::ntp;
    std::uint64_t error_nsec = 10 * NSEC_PER_MSEC;

    bool operator==(const clock_quality &) const = default;
    [[nodiscard]] std::uint16_t estimate_bits() const {
        return encode_estimate(estimate_of(error_nsec, synchronised, format));
    }
};

// Why a packet gets no answer.
enum class refusal : std::uint8_t {
    none,
    not_allowed,  // its source address is not an allowed one
    source_port,  // 0, or the port that it was sent to, which would be answered for ever
    source_address,
    too_short,
    too_long,  // longer than the room for it
    bad_hmac,
};
inline constexpr std::size_t REFUSALS = static_cast<std::size_t>(refusal::bad_hmac) + 1;

struct reply_settings {
    const hmac_key *key = nullptr;  // authenticated mode; null: unauthenticated
    bool answer_short = false;      // requests shorter than the reply has to be
    std::uint16_t estimate = 0;     // clock_quality::estimate_bits
    stamp_format format = stamp_format::ntp;
    clock_source source = clock_source::free_running;

    [[nodiscard]] packet_mode mode() const {
        return key != nullptr ? packet_mode::authenticated : packet_mode::unauthenticated;
    }
};

struct built_reply {
    refusal refused = refusal::none;
    std::size_t size = 0;  // octets of the reply
    std::uint8_t traffic_class = 0;
    bool malformed_tlv = false;
    bool integrity_failed = false;
};

// Builds all of the reply but T3 and the HMAC. `out` has PACKET_ROOM octets.
[[nodiscard]] built_reply build_reply(const reply_settings &settings, const received_packet &request,
                                      std::span<std::uint8_t> out);

// Puts in T3 and, in authenticated mode, the HMAC; the last thing before the reply is sent.
void complete_reply(const reply_settings &settings, wall_nsec now, std::span<std::uint8_t> packet);

}  // namespace probed
