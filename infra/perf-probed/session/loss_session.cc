// SPDX-License-Identifier: Apache-2.0
// What a loss session makes of answers and computations.
#include "perf-probed/session/loss_session.h"

namespace probed {
loss_session::loss_session(std::uint32_t id, const loss_profile &profile, std::uint32_t tx_interval_usec,
                           const history_sizes &sizes)
    : computing_session(id, session_kind::loss, pace_of(profile, tx_interval_usec)),
      profile_(profile),
      advertiser_(profile.advertisement, profile.computations_per_advertisement(), sizes),
      probes_(sizes.probe),
      aggregated_(sizes.aggregated),
      packets_(sizes.probe) {}

void loss_session::reconfigure(const loss_profile &profile, std::uint32_t tx_interval_usec, const moment &now) {
    const pace wanted = pace_of(profile, tx_interval_usec);
    const std::uint32_t computations = profile.computations_per_advertisement();
    if (computations != profile_.computations_per_advertisement()) {
        periodic_ = {};
    }
    profile_ = profile;
    advertiser_.reconfigure(profile.advertisement, computations, now);
    if (wanted != paced()) {
        change_pace(wanted, now);
    }
}

void loss_session::resize_histories(const history_sizes &sizes) {
    probes_.resize(sizes.probe);
    packets_.resize(sizes.probe);
    aggregated_.resize(sizes.aggregated);
    advertiser_.resize_histories(sizes);
}

std::int64_t loss_session::value_of(const sent_packet &, const reply &answer) {
    packets_.add({answer.arrival.wall_msec(), counters_.sent, counters_.received});
    return 0;
}

void loss_session::computed(const computation &done, const moment &now) {
    if (done.settled > 0) {
        const loss_window window = window_of(done);
        probes_.add(window);
        periodic_.start_msec = periodic_.sent == 0 ? window.start_msec : periodic_.start_msec;
        periodic_.sent += window.sent;
        periodic_.received += window.received;
    }
    const std::uint64_t before = advertiser_.intervals();
    advertiser_.computation_done(done.delays, now);
    if (advertiser_.intervals() != before) {
        if (periodic_.sent > 0) {
            aggregated_.add(periodic_);
        }
        periodic_ = {};
    }
}

void loss_session::halted(const moment &now, pm_probe_running_error_reason reason) {
    periodic_ = {};
    advertiser_.halt(reason, now);
}

}  // namespace probed
