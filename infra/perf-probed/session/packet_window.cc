// SPDX-License-Identifier: Apache-2.0
// The ring of sent packets.
#include "perf-probed/session/packet_window.h"

#include <algorithm>
#include <bit>

namespace probed {
namespace {

constexpr std::uint64_t LEAST_SLOTS = 16;
constexpr std::uint64_t MOST_SLOTS = 4096;

// Sequence numbers wrap: whether `a` comes before `b`.
bool before(std::uint32_t a, std::uint32_t b) { return static_cast<std::int32_t>(a - b) < 0; }

}  // namespace

packet_window::packet_window(std::uint64_t span_usec, std::uint32_t interval_usec)
    : slots_(std::bit_ceil(std::clamp(2 * span_usec / interval_usec, LEAST_SLOTS, MOST_SLOTS))) {}

sent_packet &packet_window::add(const moment &now, std::uint64_t stamp_bits, std::uint32_t computation) {
    sent_packet &packet = slot(next_);
    packet = {stamp_bits, now, now.offset(), next_, computation, packet_state::waiting, false};
    ++next_;
    if (next_ - oldest_ > slots_.size()) {
        ++oldest_;
    }
    return packet;
}

void packet_window::continue_from(const packet_window &other) {
    next_ = other.next_;
    oldest_ = other.next_;
    highest_ = other.next_;
}

sent_packet *packet_window::find(std::uint32_t sequence) {
    sent_packet &packet = slot(sequence);
    return packet.state != packet_state::unused && packet.sequence == sequence ? &packet : nullptr;
}

reply_kind packet_window::accept(std::uint32_t sequence, std::uint64_t stamp_bits, sent_packet **packet,
                                 bool *reordered) {
    *packet = nullptr;
    *reordered = false;
    sent_packet *const found = find(sequence);
    if (found == nullptr || found->stamp_bits != stamp_bits || found->state == packet_state::failed) {
        return reply_kind::unknown;
    }
    *packet = found;
    if (found->state == packet_state::answered) {
        return reply_kind::duplicate;
    }
    const bool timely = found->state == packet_state::waiting;
    found->state = packet_state::answered;
    *reordered = timely && before(sequence + 1, highest_);
    if (before(highest_, sequence + 1)) {
        highest_ = sequence + 1;
    }
    return timely ? reply_kind::timely : reply_kind::late;
}

const sent_packet *packet_window::oldest_waiting() {
    while (oldest_ != next_ && slot(oldest_).state != packet_state::waiting) {
        ++oldest_;
    }
    return oldest_ != next_ ? &slot(oldest_) : nullptr;
}

const sent_packet *packet_window::expire(mono_nsec now, mono_nsec timeout) {
    const sent_packet *const oldest = oldest_waiting();
    if (oldest == nullptr || oldest->sent.mono + timeout > now) {
        return nullptr;
    }
    slot(oldest->sequence).state = packet_state::lost;
    return oldest;
}

}  // namespace probed
