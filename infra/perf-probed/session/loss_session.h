// SPDX-License-Identifier: Apache-2.0
// A session that measures loss: which part of the packets of a computation was not answered in time.
//
// A packet that was lost counts 100, one that was answered 0, so that the average of a computation, of an interval of
// advertisements and of any number of them is the loss in percent. The advertiser takes it in place of microseconds.
#pragma once

#include <cstdint>

#include "perf-probed/session/advertiser.h"
#include "perf-probed/session/computing_session.h"
#include "perf-probed/session/history.h"
#include "perf-probed/session/profile.h"

namespace probed {

// Packets whose fate is known, from a moment on.
struct loss_window {
    std::uint64_t start_msec = 0;
    std::uint64_t sent = 0;
    std::uint64_t received = 0;

    // In whole percent, rounded by itself.
    [[nodiscard]] std::uint32_t percent() const {
        return sent == 0 ? 0 : static_cast<std::uint32_t>(((sent - received) * 100 + sent / 2) / sent);
    }
};

struct packet_counts {  // when an answer came
    std::uint64_t arrival_msec = 0;
    std::uint64_t sent = 0;  // since the session began
    std::uint64_t received = 0;
};

class loss_session final : public computing_session {
public:
    loss_session(std::uint32_t id, const loss_profile &profile, std::uint32_t tx_interval_usec,
                 const history_sizes &sizes);

    // Other settings for the same session. Other times begin a new computation; histories and counters stay.
    void reconfigure(const loss_profile &profile, std::uint32_t tx_interval_usec, const moment &now);
    // Takes back what is advertised: cleared by a person, or as the session is about to be removed.
    void withdraw(pm_advert_reason_e reason, const moment &now) { advertiser_.withdraw(reason, now); }
    void resize_histories(const history_sizes &sizes) override;

    [[nodiscard]] const loss_profile &profile() const { return profile_; }
    // The computation under way, and the finished ones of the interval of advertisements.
    [[nodiscard]] loss_window probe_window() const { return window_of(current()); }
    [[nodiscard]] const loss_window &periodic_window() const { return periodic_; }
    [[nodiscard]] const history<loss_window> &probes() const { return probes_; }
    [[nodiscard]] const history<loss_window> &aggregated() const { return aggregated_; }
    [[nodiscard]] const history<packet_counts> &packets() const { return packets_; }
    // Its values are percent.
    [[nodiscard]] const class advertiser &advertiser() const { return advertiser_; }

private:
    [[nodiscard]] static loss_window window_of(const computation &of) {
        return {of.start_msec, of.settled, of.received};
    }
    [[nodiscard]] std::int64_t value_of(const sent_packet &packet, const reply &answer) override;
    [[nodiscard]] std::int64_t value_of_loss() const override { return 100 * NSEC_PER_USEC; }
    void computation_begins() override {}
    void computed(const computation &done, const moment &now) override;
    void halted(const moment &now, pm_probe_running_error_reason reason) override;

    loss_profile profile_;
    class advertiser advertiser_;
    loss_window periodic_;
    history<loss_window> probes_;
    history<loss_window> aggregated_;
    history<packet_counts> packets_;
};

}  // namespace probed
