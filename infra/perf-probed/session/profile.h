// SPDX-License-Identifier: Apache-2.0
// What a session is told to do: the settings of the three kinds of measurement, with their defaults.
//
// The words are those of the profile shows; docs/man/perf-probed.yaml.5 explains each.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "schema/pm_enums.h"

namespace probed {

inline constexpr std::uint32_t USEC_PER_SEC = 1'000'000;
inline constexpr std::uint32_t ANOMALY_UPPER_NOT_SET = 200'001;  // microseconds; with a lower bound of 0

struct advertisement_settings {
    bool periodic_enabled = true;
    std::uint32_t periodic_interval_sec = 120;
    std::uint32_t periodic_threshold_percent = 10;
    std::uint32_t periodic_minimum_change_usec = 500;
    bool accelerated_enabled = false;
    std::uint32_t accelerated_threshold_percent = 20;
    std::uint32_t accelerated_minimum_change_usec = 500;
    std::uint32_t accelerated_upper_bound_usec = 0;  // 0: none
    bool anomaly_enabled = false;
    std::uint32_t anomaly_upper_usec = ANOMALY_UPPER_NOT_SET;
    std::uint32_t anomaly_lower_usec = 0;
    bool check_average = false;
    bool check_minimum = true;
    bool check_maximum = false;
    bool log_exceeded = false;

    bool operator==(const advertisement_settings &) const = default;
};

// Of a session that measures in computations.
struct computing_profile {
    std::string name;  // empty: the default one
    std::uint32_t computation_interval_sec = 30;
    std::uint32_t tx_interval_usec = 3 * USEC_PER_SEC;
    std::uint32_t burst_count = 0;  // packets of one computation; 0: as many as fit into its interval
    std::uint32_t response_timeout_msec = 1000;
    std::uint8_t dscp = 48;
    advertisement_settings advertisement;

    bool operator==(const computing_profile &) const = default;

    // Packets of one computation when they are sent `interval_usec` apart; one at least.
    [[nodiscard]] std::uint32_t packets_per_computation(std::uint32_t interval_usec) const {
        const std::uint64_t fit = std::uint64_t{computation_interval_sec} * USEC_PER_SEC / interval_usec;
        const std::uint64_t wanted = burst_count == 0 ? fit : std::min<std::uint64_t>(burst_count, fit);
        return static_cast<std::uint32_t>(std::max<std::uint64_t>(wanted, 1));
    }
    // Computations between two periodic checks: the interval rounded up to whole ones; 0 when there are none.
    [[nodiscard]] std::uint32_t computations_per_advertisement() const {
        return advertisement.periodic_enabled
                   ? (advertisement.periodic_interval_sec + computation_interval_sec - 1) / computation_interval_sec
                   : 0;
    }
    // Seconds; 0 when there are no periodic advertisements.
    [[nodiscard]] std::uint32_t effective_periodic_interval_sec() const {
        return computations_per_advertisement() * computation_interval_sec;
    }
};

struct delay_profile : computing_profile {
    pm_delay_mode_e mode = PM_DELAY_MODE_TWO_WAY;

    bool operator==(const delay_profile &) const = default;
};

// Its advertisements are about percent: the changes and the average that they check.
struct loss_profile : computing_profile {
    loss_profile() {
        tx_interval_usec = USEC_PER_SEC;
        advertisement.periodic_minimum_change_usec = 1;
        advertisement.accelerated_minimum_change_usec = 1;
        advertisement.check_average = true;
        advertisement.check_minimum = false;
    }

    bool operator==(const loss_profile &) const = default;
};

struct liveness_profile {
    std::string name;
    std::uint32_t tx_interval_usec = 3 * USEC_PER_SEC;
    std::uint8_t multiplier = 3;
    bool log_state_change = true;
    std::uint8_t dscp = 48;

    bool operator==(const liveness_profile &) const = default;
};

// Packets that are sent along the path and whose answers nobody waits for.
struct probe_profile {
    std::string name;
    std::uint32_t tx_interval_usec = 30 * USEC_PER_SEC;
    std::uint8_t hop_limit = 64;
    std::vector<std::uint8_t> traffic_classes;  // used in turn

    bool operator==(const probe_profile &) const = default;
};

struct history_sizes {
    std::uint32_t probe = 10;
    std::uint32_t aggregated = 10;
    std::uint32_t advertisement = 10;
    std::uint32_t liveness = 10;

    bool operator==(const history_sizes &) const = default;
};

}  // namespace probed
