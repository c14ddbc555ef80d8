// SPDX-License-Identifier: Apache-2.0
// A session that measures delay: the delays of each computation go into the history and to the advertiser.
#pragma once

#include <cstdint>
#include <optional>

#include "perf-probed/session/advertiser.h"
#include "perf-probed/session/computing_session.h"
#include "perf-probed/session/history.h"
#include "perf-probed/session/profile.h"
#include "perf-probed/session/statistics.h"

namespace probed {

struct probe_sample {  // of a whole computation
    std::uint64_t start_msec = 0;
    std::uint32_t sent = 0;
    std::uint32_t received = 0;
    delay_values values;
};

struct delay_sample {  // of one packet
    std::uint64_t arrival_msec = 0;
    std::uint64_t delay_nsec = 0;
};

class delay_session final : public computing_session {
public:
    // `tx_interval_usec`: the profile's, or a longer one when the packet rate is limited.
    delay_session(std::uint32_t id, const delay_profile &profile, std::uint32_t tx_interval_usec,
                  const history_sizes &sizes);

    // Other settings for the same session. Other times begin a new computation; histories and counters stay.
    void reconfigure(const delay_profile &profile, std::uint32_t tx_interval_usec, const moment &now);
    void set_static_delay(std::optional<std::uint32_t> delay_usec, const moment &now);
    // Takes back what is advertised: cleared by a person, or as the session is about to be removed.
    void withdraw(pm_advert_reason_e reason, const moment &now) { advertiser_.withdraw(reason, now); }

    void resize_histories(const history_sizes &sizes) override {
        probes_.resize(sizes.probe);
        advertiser_.resize_histories(sizes);
    }
    [[nodiscard]] const delay_profile &profile() const { return profile_; }
    // Delays of the packets of the computation under way, the newest MOST_SAMPLES of them.
    [[nodiscard]] const history<delay_sample> &samples() const { return samples_; }
    [[nodiscard]] const history<probe_sample> &probes() const { return probes_; }
    [[nodiscard]] const class advertiser &advertiser() const { return advertiser_; }

    static constexpr std::size_t MOST_SAMPLES = 100;

private:
    [[nodiscard]] std::int64_t value_of(const sent_packet &packet, const reply &answer) override;
    void computation_begins() override { samples_.clear(); }
    void computed(const computation &done, const moment &now) override;
    void halted(const moment &now, pm_probe_running_error_reason reason) override { advertiser_.halt(reason, now); }

    delay_profile profile_;
    class advertiser advertiser_;
    history<delay_sample> samples_;
    history<probe_sample> probes_;
};

}  // namespace probed
