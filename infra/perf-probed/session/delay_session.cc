// SPDX-License-Identifier: Apache-2.0
// What a delay session makes of answers and computations.
#include "perf-probed/session/delay_session.h"

#include <algorithm>

namespace probed {
namespace {

history<delay_sample> room_for_samples(const pace &pace) {
    return history<delay_sample>(std::min<std::size_t>(pace.packets, delay_session::MOST_SAMPLES));
}

}  // namespace

delay_session::delay_session(std::uint32_t id, const delay_profile &profile, std::uint32_t tx_interval_usec,
                             const history_sizes &sizes)
    : computing_session(id, session_kind::delay, pace_of(profile, tx_interval_usec)),
      profile_(profile),
      advertiser_(profile.advertisement, profile.computations_per_advertisement(), sizes),
      samples_(room_for_samples(paced())),
      probes_(sizes.probe) {}

void delay_session::reconfigure(const delay_profile &profile, std::uint32_t tx_interval_usec, const moment &now) {
    const pace wanted = pace_of(profile, tx_interval_usec);
    const bool same_measure = wanted == paced() && profile.mode == profile_.mode;
    profile_ = profile;
    advertiser_.reconfigure(profile.advertisement, profile.computations_per_advertisement(), now);
    if (!same_measure) {
        samples_ = room_for_samples(wanted);
        change_pace(wanted, now);
    }
}

void delay_session::set_static_delay(std::optional<std::uint32_t> delay_usec, const moment &now) {
    advertiser_.set_static_delay(delay_usec, now);
}

void delay_session::computed(const computation &done, const moment &now) {
    if (done.sent > 0) {
        probes_.add({done.start_msec, done.sent, done.received, done.delays.values()});
    }
    advertiser_.computation_done(done.delays, now);
}

std::int64_t delay_session::value_of(const sent_packet &packet, const reply &answer) {
    if (!answer.has_receive_stamp) {
        ++counters_.missing_rx_stamp;
        return NO_VALUE;
    }
    if (!answer.has_transmit_stamp) {
        ++counters_.missing_tx_stamp;
        return NO_VALUE;
    }
    const std::int64_t delay =
        profile_.mode == PM_DELAY_MODE_ONE_WAY ? near_end_delay(packet, answer) : two_way_delay(packet, answer);
    if (delay < 0) {
        ++counters_.negative_delay;
        return NO_VALUE;
    }
    counters_.kernel_stamped += packet.kernel_stamped && answer.kernel_stamped ? 1 : 0;
    if (packet.computation == current().number) {
        samples_.add({answer.arrival.wall_msec(), static_cast<std::uint64_t>(delay)});
    }
    return delay;
}

}  // namespace probed
