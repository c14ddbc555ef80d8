// SPDX-License-Identifier: Apache-2.0
// Keys, units and ranges of the profiles.
#include "perf-probed/config/profiles.h"

namespace probed {
namespace {

constexpr std::uint64_t SECOND = NSEC_PER_SEC;
constexpr std::uint64_t MILLISECOND = NSEC_PER_MSEC;
constexpr std::uint64_t MICROSECOND = NSEC_PER_USEC;

constexpr std::uint64_t LEAST_TX_INTERVAL_USEC = 1000;
constexpr std::uint64_t MOST_TX_INTERVAL_USEC = 3'600'000'000;
constexpr std::uint64_t MOST_WAITING_PACKETS = 2048;  // that a session remembers as not answered yet
constexpr std::uint64_t MOST_DELAY_USEC = 10'000'000;

constexpr named_value<pm_delay_mode_e> MODES[] = {
    {"two-way", PM_DELAY_MODE_TWO_WAY},
    {"one-way", PM_DELAY_MODE_ONE_WAY},
    {"loopback", PM_DELAY_MODE_LOOPBACK},
};

void read_checks(section &from, advertisement_settings *to) {
    from.read_section("threshold-check", [to](section &checks) {
        checks.read("average", &to->check_average);
        checks.read("minimum", &to->check_minimum);
        checks.read("maximum", &to->check_maximum);
    });
}

void read_advertisement(section &from, advertisement_settings *to) {
    from.read_section("periodic", [to](section &periodic) {
        periodic.read("enabled", &to->periodic_enabled);
        periodic.read_time("interval", SECOND, 1, 3600, &to->periodic_interval_sec);
        periodic.read_number("threshold", 0, 100, &to->periodic_threshold_percent);
        periodic.read_time("minimum-change", MICROSECOND, 0, MOST_DELAY_USEC, &to->periodic_minimum_change_usec);
    });
    from.read_section("accelerated", [to](section &accelerated) {
        to->accelerated_enabled = true;
        accelerated.read("enabled", &to->accelerated_enabled);
        accelerated.read_number("threshold", 0, 100, &to->accelerated_threshold_percent);
        accelerated.read_time("minimum-change", MICROSECOND, 0, MOST_DELAY_USEC, &to->accelerated_minimum_change_usec);
        accelerated.read_time("upper-bound", MICROSECOND, 0, MOST_DELAY_USEC, &to->accelerated_upper_bound_usec);
    });
    from.read_section("anomaly", [to](section &anomaly) {
        to->anomaly_enabled = true;
        anomaly.read("enabled", &to->anomaly_enabled);
        anomaly.read_time("upper-bound", MICROSECOND, 1, MOST_DELAY_USEC, &to->anomaly_upper_usec);
        anomaly.read_time("lower-bound", MICROSECOND, 0, MOST_DELAY_USEC, &to->anomaly_lower_usec);
        if (to->anomaly_lower_usec > to->anomaly_upper_usec) {
            anomaly.error("lower-bound", "is above the upper bound");
        }
    });
    read_checks(from, to);
    from.read("log-delay-exceeded", &to->log_exceeded);
}

// What is measured in percent has thresholds and changes in percent.
void read_loss_advertisement(section &from, advertisement_settings *to) {
    from.read_section("periodic", [to](section &periodic) {
        periodic.read("enabled", &to->periodic_enabled);
        periodic.read_time("interval", SECOND, 1, 3600, &to->periodic_interval_sec);
        periodic.read_number("threshold", 0, 100, &to->periodic_threshold_percent);
        periodic.read_number("minimum-change", 0, 100, &to->periodic_minimum_change_usec);
    });
    from.read_section("accelerated", [to](section &accelerated) {
        to->accelerated_enabled = true;
        accelerated.read("enabled", &to->accelerated_enabled);
        accelerated.read_number("threshold", 0, 100, &to->accelerated_threshold_percent);
        accelerated.read_number("minimum-change", 0, 100, &to->accelerated_minimum_change_usec);
    });
}

void read_computations(section &from, computing_profile *profile) {
    from.read_time("computation-interval", SECOND, 1, 3600, &profile->computation_interval_sec);
    from.read_time("tx-interval", MICROSECOND, LEAST_TX_INTERVAL_USEC, MOST_TX_INTERVAL_USEC,
                   &profile->tx_interval_usec);
    from.read_number("burst-count", 0, 100'000, &profile->burst_count);
    from.read_time("response-timeout", MILLISECOND, 1, 3'600'000, &profile->response_timeout_msec);
    from.read_number("dscp", 0, 63, &profile->dscp);
    const std::uint64_t interval_usec = std::uint64_t{profile->computation_interval_sec} * USEC_PER_SEC;
    if (profile->tx_interval_usec > interval_usec) {
        from.error("tx-interval", "is longer than the computation interval");
    }
    if (std::uint64_t{profile->burst_count} * profile->tx_interval_usec > interval_usec) {
        from.error("burst-count", "packets do not fit into the computation interval");
    }
    const std::uint64_t timeout_usec = std::uint64_t{profile->response_timeout_msec} * 1000;
    if (timeout_usec > interval_usec) {
        from.error("response-timeout", "is longer than the computation interval");
    }
    if (timeout_usec / profile->tx_interval_usec > MOST_WAITING_PACKETS) {
        from.error("response-timeout", "is longer than " + std::to_string(MOST_WAITING_PACKETS) + " tx intervals");
    }
}

}  // namespace

void read_profile(section &from, const clock_quality &clock, delay_profile *profile) {
    read_computations(from, profile);
    from.read_choice("measurement-mode", std::span<const named_value<pm_delay_mode_e>>(MODES), &profile->mode);
    from.read_section("advertisement",
                      [profile](section &inside) { read_advertisement(inside, &profile->advertisement); });
    if (profile->mode == PM_DELAY_MODE_ONE_WAY && !clock.synchronised) {
        from.error("measurement-mode", "one-way needs clock.synchronised");
    }
}

void read_profile(section &from, loss_profile *profile) {
    read_computations(from, profile);
    from.read_section("advertisement",
                      [profile](section &inside) { read_loss_advertisement(inside, &profile->advertisement); });
}

void read_profile(section &from, liveness_profile *profile) {
    from.read_time("tx-interval", MICROSECOND, LEAST_TX_INTERVAL_USEC, MOST_TX_INTERVAL_USEC,
                   &profile->tx_interval_usec);
    from.read_number("multiplier", 1, 255, &profile->multiplier);
    from.read("log-state-change", &profile->log_state_change);
    from.read_number("dscp", 0, 63, &profile->dscp);
}

void read_profile(section &from, probe_profile *profile) {
    from.read_time("tx-interval", MICROSECOND, LEAST_TX_INTERVAL_USEC, MOST_TX_INTERVAL_USEC,
                   &profile->tx_interval_usec);
    from.read_number("hop-limit", 1, 255, &profile->hop_limit);
    std::uint8_t traffic_class = 0;
    if (from.has("traffic-class")) {
        from.read_number("traffic-class", 0, 255, &traffic_class);
        profile->traffic_classes = {traffic_class};
    }
}

}  // namespace probed
