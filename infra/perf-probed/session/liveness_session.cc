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
    : answered_session(id, session_kind::liveness, window_span(profile, tx_interval_usec), tx_interval_usec),
      profile_(profile),
      changes_(sizes.liveness) {}

void liveness_session::reconfigure(const liveness_profile &profile, std::uint32_t tx_interval_usec, const moment &now) {
    const bool same_times = tx_interval_usec == this->tx_interval_usec() && profile.multiplier == profile_.multiplier;
    profile_ = profile;
    if (same_times) {
        return;
    }
    change_window(window_span(profile, tx_interval_usec), tx_interval_usec);
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
    const sent_packet *const waiting = is_running() ? oldest_waiting() : nullptr;
    return waiting != nullptr ? std::min(next_send_, waiting->sent.mono + tx_interval()) : next_send_;
}

bool liveness_session::on_timer(const moment &now) {
    while (next_lost(now.mono, tx_interval()) != nullptr) {
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

void liveness_session::sent(const moment &now, std::uint64_t stamp_bits) { note_sent(now, stamp_bits, 0); }

// A packet that cannot leave cannot be answered either.
void liveness_session::taken_back(const sent_packet &packet) { miss(packet.sent); }

reply_kind liveness_session::on_reply(const reply &answer) {
    sent_packet *packet = nullptr;
    const reply_kind kind = classify(answer, &packet);
    if (kind == reply_kind::timely || kind == reply_kind::late) {
        missed_ = 0;
        if (!is_up_ && is_running()) {
            change(true, answer.arrival);
        }
    }
    return kind;
}

}  // namespace probed
