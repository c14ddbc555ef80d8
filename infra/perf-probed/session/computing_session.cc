// SPDX-License-Identifier: Apache-2.0
// The life of a computation.
#include "perf-probed/session/computing_session.h"

#include <algorithm>

namespace probed {
namespace {

std::uint64_t window_span(const pace &pace) { return std::uint64_t{pace.response_timeout_msec} * 1000; }

}  // namespace

pace pace_of(const computing_profile &profile, std::uint32_t tx_interval_usec) {
    return {profile.computation_interval_sec, tx_interval_usec, profile.packets_per_computation(tx_interval_usec),
            profile.response_timeout_msec};
}

computing_session::computing_session(std::uint32_t id, session_kind kind, const pace &pace)
    : answered_session(id, kind, window_span(pace), pace.tx_interval_usec), pace_(pace) {}

void computing_session::change_pace(const pace &pace, const moment &now) {
    pace_ = pace;
    abandon();
    change_window(window_span(pace), pace.tx_interval_usec);
    if (is_running()) {
        started(now, 0);
    }
}

void computing_session::started(const moment &now, mono_nsec delay) { end_ = now.mono + delay; }

void computing_session::stopped(const moment &now, pm_probe_running_error_reason reason) {
    abandon();
    end_ = NEVER;
    computation_begins();
    halted(now, reason);
}

void computing_session::abandon() {
    if (current_.active()) {
        ++counters_.probes_incomplete;
    }
    current_ = {};
    closing_ = {};
}

mono_nsec computing_session::deadline() {
    mono_nsec first = std::min(next_send_, end_);
    if (const sent_packet *const waiting = oldest_waiting(); waiting != nullptr) {
        first = std::min(first, waiting->sent.mono + timeout());
    }
    return first;
}

bool computing_session::on_timer(const moment &now) {
    expire(now);
    if (now.mono >= end_) {
        if (current_.active()) {
            end_computation(now);
        }
        begin_computation(now);
    }
    if (now.mono < next_send_ || to_send_ == 0) {
        return false;
    }
    lateness_ = now.mono - next_send_;
    --to_send_;
    next_send_ = to_send_ > 0 ? next_after(next_send_, tx_interval(), now.mono) : NEVER;
    return true;
}

void computing_session::begin_computation(const moment &now) {
    const mono_nsec interval = pace_.computation_interval_sec * NSEC_PER_SEC;
    const mono_nsec start = end_;
    end_ = next_after(start, interval, now.mono);
    current_ = {next_number_, now.wall_msec(), 0, 0, 0, {}};
    next_number_ = std::max(next_number_ + 1, 1U);
    to_send_ = pace_.packets;
    next_send_ = end_ - interval;
    computation_begins();
    ++counters_.probes_started;
}

void computing_session::end_computation(const moment &now) {
    finish(&closing_, now);
    closing_ = current_;
    current_ = {};
    finish_when_settled(now);
}

void computing_session::finish_when_settled(const moment &now) {
    if (closing_.active() && closing_.settled == closing_.sent) {
        finish(&closing_, now);
    }
}

void computing_session::finish(computation *done, const moment &now) {
    if (!done->active()) {
        return;
    }
    ++(done->received > 0 ? counters_.probes_complete : counters_.probes_incomplete);
    computed(*done, now);
    *done = {};
}

void computing_session::sent(const moment &now, std::uint64_t stamp_bits) {
    note_sent(now, stamp_bits, current_.number);
    ++current_.sent;
}

computation *computing_session::computation_of(const sent_packet &packet) {
    computation *const its = packet.computation == current_.number   ? &current_
                             : packet.computation == closing_.number ? &closing_
                                                                     : nullptr;
    return its != nullptr && its->active() ? its : nullptr;
}

void computing_session::taken_back(const sent_packet &packet) {
    if (computation *const its = computation_of(packet)) {
        --its->sent;
    }
}

void computing_session::expire(const moment &now) {
    while (const sent_packet *const lost = next_lost(now.mono, timeout())) {
        settle(*lost, false, value_of_loss());
    }
    finish_when_settled(now);
}

void computing_session::settle(const sent_packet &packet, bool answered, std::int64_t value) {
    computation *const its = computation_of(packet);
    if (its == nullptr) {
        return;
    }
    ++its->settled;
    if (value != NO_VALUE) {
        its->received += answered ? 1 : 0;
        its->delays.add(value);
    }
}

reply_kind computing_session::on_reply(const reply &answer) {
    const moment now{answer.arrival.mono, answer.arrival.wall};
    expire(now);
    sent_packet *packet = nullptr;
    const reply_kind kind = classify(answer, &packet);
    if (kind == reply_kind::timely) {
        settle(*packet, true, value_of(*packet, answer));
        finish_when_settled(now);
    }
    return kind;
}

}  // namespace probed
