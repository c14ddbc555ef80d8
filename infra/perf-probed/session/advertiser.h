// SPDX-License-Identifier: Apache-2.0
// When measured delays are advertised, and why.
//
// A session hands in the delays of each computation. Every so many computations their aggregate is compared
// with what was advertised last (periodic); each computation by itself may be compared too (accelerated), and
// the minimum with the anomaly bounds (the A flag). A configured static delay is advertised in place of all that.
#pragma once

#include <cstdint>
#include <optional>

#include "perf-probed/schedule/clocks.h"
#include "perf-probed/session/history.h"
#include "perf-probed/session/profile.h"
#include "perf-probed/session/statistics.h"
#include "schema/pm_enums.h"

namespace probed {

struct advertisement {
    std::uint64_t time_msec = 0;  // wall clock; 0: there was none
    pm_advert_reason_e reason = PM_ADVERT_REASON_NONE;
    delay_values values;  // zero when the reason withdraws them
    bool a_flag = false;
};

struct aggregate {
    std::uint64_t time_msec = 0;  // wall clock, of its end
    delay_values values;
};

class advertiser {
public:
    // `computations`: between two periodic checks; 0 when there are none.
    advertiser(const advertisement_settings &settings, std::uint32_t computations, const history_sizes &sizes);

    // A computation ended; `delays` is empty when no answer came.
    void computation_done(const delay_statistics &delays, const moment &now);

    // The settings changed. What was advertised stays, unless advertising ended.
    void reconfigure(const advertisement_settings &settings, std::uint32_t computations, const moment &now);

    void resize_histories(const history_sizes &sizes) {
        advertised_.resize(sizes.advertisement);
        aggregated_.resize(sizes.aggregated);
    }

    // A static delay in microseconds is advertised from now on; none: no more.
    void set_static_delay(std::optional<std::uint32_t> delay_usec, const moment &now);

    // The link is down: the last values are advertised once more for this reason, once.
    void link_down(const moment &now);
    // Takes back what is advertised, for one of the reasons that withdraw values. Does nothing when nothing is.
    void withdraw(pm_advert_reason_e reason, const moment &now);
    // Its session does not run any more: an interface that is down is advertised as such, what else it may be takes
    // back what was advertised. The interval under way is forgotten.
    void halt(pm_probe_running_error_reason reason, const moment &now);

    [[nodiscard]] const advertisement &last() const { return last_; }
    // Periodic checks that have taken place.
    [[nodiscard]] std::uint64_t intervals() const { return intervals_; }
    [[nodiscard]] std::uint64_t advertisements() const { return count_; }
    [[nodiscard]] std::uint32_t computations_left() const { return left_ > 0 ? left_ - 1 : 0; }
    [[nodiscard]] delay_values interval_values() const { return interval_.values(); }
    [[nodiscard]] std::uint32_t rolling_average() const;
    [[nodiscard]] const history<advertisement> &advertised() const { return advertised_; }
    [[nodiscard]] const history<aggregate> &aggregated() const { return aggregated_; }

private:
    [[nodiscard]] bool enabled() const { return settings_.periodic_enabled || settings_.accelerated_enabled; }
    void advertise(pm_advert_reason_e reason, const delay_values &values, const moment &now);
    bool check_anomaly(const delay_values &values, const moment &now);
    bool check_accelerated(const delay_values &values, const moment &now);
    void end_interval(bool may_advertise, const moment &now);
    void restart();

    advertisement_settings settings_;
    std::uint32_t computations_;
    std::uint32_t left_;  // computations until the periodic check, the one under way included
    std::optional<std::uint32_t> static_delay_;
    bool is_advertised_ = false;                              // values are out and not withdrawn
    pm_advert_reason_e next_first_ = PM_ADVERT_REASON_FIRST;  // the reason of the next values after none
    advertisement last_;
    delay_statistics interval_;
    delay_statistics latest_;          // the last computation with an answer
    history<std::uint32_t> averages_;  // of the last computations, as many as an interval has
    history<advertisement> advertised_;
    history<aggregate> aggregated_;
    std::uint64_t count_ = 0;
    std::uint64_t intervals_ = 0;
};

}  // namespace probed
