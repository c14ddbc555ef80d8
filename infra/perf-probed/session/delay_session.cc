// SPDX-License-Identifier: Apache-2.0
// The life of a delay session.
#include "perf-probed/session/delay_session.h"

#include <algorithm>

namespace probed {
namespace {

constexpr std::int64_t NO_DELAY = -1;  // a packet that gave none

std::uint64_t window_span(const delay_profile &profile) { return std::uint64_t{profile.response_timeout_msec} * 1000; }

}  // namespace

delay_session::delay_session(std::uint32_t id, const delay_profile &profile, std::uint32_t tx_interval_usec,
                             const history_sizes &sizes)
    : session(id, session_kind::delay),
      profile_(profile),
      tx_interval_usec_(tx_interval_usec),
      window_(window_span(profile), tx_interval_usec),
      advertiser_(profile.advertisement, profile.computations_per_advertisement(), sizes),
      samples_(std::min<std::size_t>(profile.packets_per_computation(tx_interval_usec), MOST_SAMPLES)),
      probes_(sizes.probe) {}

void delay_session::reconfigure(const delay_profile &profile, std::uint32_t tx_interval_usec, const moment &now) {
    const bool same_times = profile.computation_interval_sec == profile_.computation_interval_sec &&
                            profile.burst_count == profile_.burst_count &&
                            profile.response_timeout_msec == profile_.response_timeout_msec &&
                            profile.mode == profile_.mode && tx_interval_usec == tx_interval_usec_;
    profile_ = profile;
    advertiser_.reconfigure(profile.advertisement, profile.computations_per_advertisement(), now);
    if (same_times) {
        return;
    }
    tx_interval_usec_ = tx_interval_usec;
    if (current_.active()) {
        ++counters_.probes_incomplete;
    }
    const packet_window before = window_;
    window_ = packet_window(window_span(profile), tx_interval_usec);
    window_.continue_from(before);
    samples_ =
        history<delay_sample>(std::min<std::size_t>(profile.packets_per_computation(tx_interval_usec), MOST_SAMPLES));
    current_ = {};
    closing_ = {};
    if (is_running()) {
        started(now, 0);
    }
}

void delay_session::set_static_delay(std::optional<std::uint32_t> delay_usec, const moment &now) {
    advertiser_.set_static_delay(delay_usec, now);
}

void delay_session::started(const moment &now, mono_nsec delay) { end_ = now.mono + delay; }

void delay_session::stopped(const moment &now, pm_probe_running_error_reason reason) {
    if (current_.active()) {
        ++counters_.probes_incomplete;
    }
    current_ = {};
    closing_ = {};
    end_ = NEVER;
    samples_.clear();
    advertiser_.restart();
    const bool link_is_down = reason == PM_NOT_RUNNING_INTERFACE_DOWN || reason == PM_NOT_RUNNING_INTERFACE_ADMIN_DOWN;
    if (link_is_down) {
        advertiser_.link_down(now);
    } else {
        advertiser_.withdraw(PM_ADVERT_REASON_SESSION_ERROR, now);
    }
}

mono_nsec delay_session::deadline() {
    mono_nsec first = std::min(next_send_, end_);
    if (const sent_packet *const waiting = window_.oldest_waiting(); waiting != nullptr) {
        first = std::min(first, waiting->sent.mono + timeout());
    }
    return first;
}

bool delay_session::on_timer(const moment &now) {
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

void delay_session::begin_computation(const moment &now) {
    const mono_nsec interval = profile_.computation_interval_sec * NSEC_PER_SEC;
    const mono_nsec start = end_;
    end_ = next_after(start, interval, now.mono);
    current_ = {next_number_, now.wall_msec(), 0, 0, 0, {}};
    next_number_ = std::max(next_number_ + 1, 1U);
    to_send_ = profile_.packets_per_computation(tx_interval_usec_);
    next_send_ = end_ - interval;
    samples_.clear();
    ++counters_.probes_started;
}

void delay_session::end_computation(const moment &now) {
    finish(&closing_, now);
    closing_ = current_;
    current_ = {};
    finish_when_settled(now);
}

void delay_session::finish_when_settled(const moment &now) {
    if (closing_.active() && closing_.settled == closing_.sent) {
        finish(&closing_, now);
    }
}

void delay_session::finish(computation *done, const moment &now) {
    if (!done->active()) {
        return;
    }
    if (done->sent > 0) {
        probes_.add({done->start_msec, done->sent, done->received, done->delays.values()});
    }
    ++(done->received > 0 ? counters_.probes_complete : counters_.probes_incomplete);
    advertiser_.computation_done(done->delays, now);
    *done = {};
}

void delay_session::sent(const moment &now, std::uint64_t stamp_bits) {
    window_.add(now, stamp_bits, current_.number);
    ++current_.sent;
    ++counters_.sent;
}

void delay_session::send_failed(std::uint32_t sequence, send_failure reason) {
    sent_packet *const packet = window_.find(sequence);
    if (packet == nullptr || packet->state != packet_state::waiting) {
        return;
    }
    packet->state = packet_state::failed;
    count_failure(reason);
    --counters_.sent;
    if (packet->computation == current_.number) {
        --current_.sent;
    } else if (packet->computation == closing_.number) {
        --closing_.sent;
    }
}

void delay_session::on_transmit_stamp(std::uint32_t sequence, wall_nsec time) {
    take_transmit_stamp(window_, sequence, time);
}

void delay_session::expire(const moment &now) {
    while (const sent_packet *const lost = window_.expire(now.mono, timeout())) {
        ++counters_.lost;
        settle(*lost, NO_DELAY);
    }
    finish_when_settled(now);
}

void delay_session::settle(const sent_packet &packet, std::int64_t delay_nsec) {
    computation *const its = packet.computation == current_.number   ? &current_
                             : packet.computation == closing_.number ? &closing_
                                                                     : nullptr;
    if (its == nullptr || !its->active()) {
        return;
    }
    ++its->settled;
    if (delay_nsec != NO_DELAY) {
        ++its->received;
        its->delays.add(delay_nsec);
    }
}

reply_kind delay_session::on_reply(const reply &answer) {
    const moment now{answer.arrival.mono, answer.arrival.wall};
    expire(now);
    sent_packet *packet = nullptr;
    bool reordered = false;
    const reply_kind kind = window_.accept(answer.sequence, answer.stamp_bits, &packet, &reordered);
    switch (kind) {
    case reply_kind::unknown: ++counters_.unknown; return kind;
    case reply_kind::duplicate: ++counters_.duplicate; return kind;
    case reply_kind::late:
        ++counters_.received;
        ++counters_.late;
        return kind;
    case reply_kind::timely: break;
    }
    ++counters_.received;
    counters_.reordered += reordered ? 1 : 0;
    std::int64_t delay = NO_DELAY;
    if (!answer.has_receive_stamp) {
        ++counters_.missing_rx_stamp;
    } else if (!answer.has_transmit_stamp) {
        ++counters_.missing_tx_stamp;
    } else {
        delay =
            profile_.mode == PM_DELAY_MODE_ONE_WAY ? near_end_delay(*packet, answer) : two_way_delay(*packet, answer);
        delay = std::max(delay, NO_DELAY);
        counters_.negative_delay += delay == NO_DELAY ? 1 : 0;
    }
    if (delay != NO_DELAY) {
        counters_.kernel_stamped += packet->kernel_stamped && answer.kernel_stamped ? 1 : 0;
        if (packet->computation == current_.number) {
            samples_.add({answer.arrival.wall_msec(), static_cast<std::uint64_t>(delay)});
        }
    }
    settle(*packet, delay);
    finish_when_settled(now);
    return kind;
}

}  // namespace probed
