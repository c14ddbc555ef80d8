// SPDX-License-Identifier: Apache-2.0
// The packets of a session, and how they are counted.
#include "perf-probed/session/answered_session.h"

namespace probed {
namespace {

constexpr wall_nsec LONGEST_TO_LEAVE = NSEC_PER_SEC;

}  // namespace

void answered_session::change_window(std::uint64_t span_usec, std::uint32_t tx_interval_usec) {
    const packet_window before = window_;
    tx_interval_usec_ = tx_interval_usec;
    window_ = packet_window(span_usec, tx_interval_usec);
    window_.continue_from(before);
}

void answered_session::note_sent(const moment &now, std::uint64_t stamp_bits, std::uint32_t computation) {
    window_.add(now, stamp_bits, computation);
    ++counters_.sent;
}

void answered_session::send_failed(std::uint32_t sequence, send_failure reason) {
    sent_packet *const packet = window_.find(sequence);
    if (packet == nullptr || packet->state != packet_state::waiting) {
        return;
    }
    packet->state = packet_state::failed;
    count_failure(reason);
    --counters_.sent;
    taken_back(*packet);
}

// The kernel's time is taken when it is plausible: not before the packet was made, nor long after.
void answered_session::on_transmit_stamp(std::uint32_t sequence, wall_nsec time) {
    sent_packet *const packet = window_.find(sequence);
    if (packet != nullptr && packet->state == packet_state::waiting && time >= packet->sent.wall &&
        time - packet->sent.wall < LONGEST_TO_LEAVE) {
        packet->sent.wall = time;
        packet->kernel_stamped = true;
    }
}

reply_kind answered_session::classify(const reply &answer, sent_packet **packet) {
    bool reordered = false;
    const reply_kind kind = window_.accept(answer.sequence, answer.stamp_bits, packet, &reordered);
    switch (kind) {
    case reply_kind::unknown: ++counters_.unknown; break;
    case reply_kind::duplicate: ++counters_.duplicate; break;
    case reply_kind::late:
        ++counters_.received;
        ++counters_.late;
        break;
    case reply_kind::timely:
        ++counters_.received;
        counters_.reordered += reordered ? 1 : 0;
        break;
    }
    return kind;
}

const sent_packet *answered_session::next_lost(mono_nsec now, mono_nsec timeout) {
    const sent_packet *const lost = window_.expire(now, timeout);
    counters_.lost += lost != nullptr ? 1 : 0;
    return lost;
}

}  // namespace probed
