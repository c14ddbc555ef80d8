// SPDX-License-Identifier: Apache-2.0
// The life of a liveness session.
#include "perf-probed/session/liveness_session.h"

#include <algorithm>

namespace probed {
namespace {

// Answers later than the whole detection time are of no use, but are still told from strangers.
std::uint64_t window_span(const liveness_profile &profile, std::uint32_t tx_interval_usec) {
    return std::uint64_t{profile.multiplier} * tx_interval_usec;
}

}  // namespace

liveness_session::liveness_session(std::uint32_t id, const liveness_profile &profile, std::uint32_t tx_interval_usec,
                                   const history_sizes &sizes)
    : session(id, session_kind::liveness),
      profile_(profile),
      tx_interval_usec_(tx_interval_usec),
      window_(window_span(profile, tx_interval_usec), tx_interval_usec),
      changes_(sizes.liveness) {}

void liveness_session::reconfigure(const liveness_profile &profile, std::uint32_t tx_interval_usec, const moment &now) {
    const bool same_times = tx_interval_usec == tx_interval_usec_ && profile.multiplier == profile_.multiplier;
    profile_ = profile;
    if (same_times) {
        return;
    }
    tx_interval_usec_ = tx_interval_usec;
    const packet_window before = window_;
    window_ = packet_window(window_span(profile, tx_interval_usec), tx_interval_usec);
    window_.continue_from(before);
    missed_ = 0;
    if (is_running()) {
        started(now, 0);
    }
}

void liveness_session::started(const moment &now, mono_nsec delay) {
    next_send_ = now.mono + delay;
    missed_ = 0;
}

void liveness_session::stopped(const moment &now, pm_probe_running_error_reason) {
    if (is_up_) {
        change(false, now);
    }
}

mono_nsec liveness_session::deadline() {
    const sent_packet *const waiting = is_running() ? window_.oldest_waiting() : nullptr;
    return waiting != nullptr ? std::min(next_send_, waiting->sent.mono + tx_interval()) : next_send_;
}

bool liveness_session::on_timer(const moment &now) {
    while (window_.expire(now.mono, tx_interval()) != nullptr) {
        ++counters_.lost;
        miss(now);
    }
    if (now.mono < next_send_) {
        return false;
    }
    lateness_ = now.mono - next_send_;
    next_send_ = next_after(next_send_, tx_interval(), now.mono);
    return true;
}

void liveness_session::miss(const moment &now) {
    ++missed_;
    ++counters_.liveness_missed;
    if (is_up_ && missed_ >= profile_.multiplier) {
        change(false, now);
    }
}

void liveness_session::change(bool up, const moment &now) {
    is_up_ = up;
    last_change_msec_ = now.wall_msec();
    ++change_count_;
    changes_.add({last_change_msec_, up});
}

void liveness_session::sent(const moment &now, std::uint64_t stamp_bits) {
    window_.add(now, stamp_bits, 0);
    ++counters_.sent;
}

// A packet that cannot leave cannot be answered either.
void liveness_session::send_failed(std::uint32_t sequence, send_failure reason) {
    sent_packet *const packet = window_.find(sequence);
    if (packet == nullptr || packet->state != packet_state::waiting) {
        return;
    }
    const moment now = packet->sent;
    packet->state = packet_state::failed;
    count_failure(reason);
    --counters_.sent;
    miss(now);
}

void liveness_session::on_transmit_stamp(std::uint32_t sequence, wall_nsec time) {
    take_transmit_stamp(window_, sequence, time);
}

reply_kind liveness_session::on_reply(const reply &answer) {
    sent_packet *packet = nullptr;
    bool reordered = false;
    const reply_kind kind = window_.accept(answer.sequence, answer.stamp_bits, &packet, &reordered);
    switch (kind) {
    case reply_kind::unknown: ++counters_.unknown; return kind;
    case reply_kind::duplicate: ++counters_.duplicate; return kind;
    case reply_kind::late:
        ++counters_.received;
        ++counters_.late;
        break;
    case reply_kind::timely:
        ++counters_.received;
        counters_.reordered += reordered ? 1 : 0;
        break;
    }
    missed_ = 0;
    if (!is_up_ && is_running()) {
        change(true, answer.arrival);
    }
    return kind;
}

}  // namespace probed
