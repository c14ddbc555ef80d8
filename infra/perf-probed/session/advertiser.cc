// SPDX-License-Identifier: Apache-2.0
// The order of the checks at the end of a computation: anomaly, first advertisement, accelerated, periodic.
#include "perf-probed/session/advertiser.h"

#include <algorithm>

namespace probed {
namespace {

constexpr std::uint32_t LEAST_ROLLING = 1;
constexpr std::uint32_t MOST_ROLLING = 64;

// The checks by metric, in the order in which they decide the reason.
struct metric {
    bool advertisement_settings::*checked;
    std::uint32_t delay_values::*value;
    pm_advert_reason_e periodic, accelerated, upper_bound;
};
constexpr metric METRICS[] = {
    {&advertisement_settings::check_average, &delay_values::average, PM_ADVERT_REASON_PERIODIC_AVERAGE,
     PM_ADVERT_REASON_ACCELERATED_AVERAGE, PM_ADVERT_REASON_UPPER_BOUND_AVERAGE},
    {&advertisement_settings::check_minimum, &delay_values::minimum, PM_ADVERT_REASON_PERIODIC_MINIMUM,
     PM_ADVERT_REASON_ACCELERATED_MINIMUM, PM_ADVERT_REASON_UPPER_BOUND_MINIMUM},
    {&advertisement_settings::check_maximum, &delay_values::maximum, PM_ADVERT_REASON_PERIODIC_MAXIMUM,
     PM_ADVERT_REASON_ACCELERATED_MAXIMUM, PM_ADVERT_REASON_UPPER_BOUND_MAXIMUM},
};

// Both the threshold, in percent of the old value, and the minimum change are reached.
bool crossed(std::uint32_t before, std::uint32_t now, std::uint32_t threshold_percent, std::uint32_t minimum_change) {
    const std::uint64_t change = now > before ? now - before : before - now;
    return change > 0 && change * 100 >= std::uint64_t{threshold_percent} * before && change >= minimum_change;
}

std::size_t rolling_size(std::uint32_t computations) { return std::clamp(computations, LEAST_ROLLING, MOST_ROLLING); }

}  // namespace

advertiser::advertiser(const advertisement_settings &settings, std::uint32_t computations, const history_sizes &sizes)
    : settings_(settings),
      computations_(computations),
      left_(computations),
      averages_(rolling_size(computations)),
      advertised_(sizes.advertisement),
      aggregated_(sizes.aggregated) {}

void advertiser::computation_done(const delay_statistics &delays, const moment &now) {
    bool done = false;
    if (!delays.empty()) {
        const delay_values values = delays.values();
        interval_.add(delays);
        latest_ = delays;
        averages_.add(values.average);
        done = check_anomaly(values, now);
        if (!done && !static_delay_ && enabled()) {
            if (!is_advertised_) {
                advertise(next_first_, values, now);
                done = true;
            } else {
                done = check_accelerated(values, now);
            }
        }
    }
    if (left_ > 0 && --left_ == 0) {
        end_interval(!done && !static_delay_, now);
    }
}

bool advertiser::check_anomaly(const delay_values &values, const moment &now) {
    if (!settings_.anomaly_enabled) {
        return false;
    }
    bool flag = last_.a_flag;
    if (values.minimum > settings_.anomaly_upper_usec) {
        flag = true;
    } else if (values.minimum < settings_.anomaly_lower_usec) {
        flag = false;
    }
    if (flag == last_.a_flag) {
        return false;
    }
    last_.a_flag = flag;
    if (static_delay_) {
        advertise(PM_ADVERT_REASON_ANOMALY_STATIC, last_.values, now);
    } else {
        advertise(PM_ADVERT_REASON_ANOMALY_DYNAMIC, values, now);
    }
    return true;
}

bool advertiser::check_accelerated(const delay_values &values, const moment &now) {
    if (!settings_.accelerated_enabled) {
        return false;
    }
    const std::uint32_t bound = settings_.accelerated_upper_bound_usec;
    for (const metric &each : METRICS) {
        if (!(settings_.*each.checked)) {
            continue;
        }
        const std::uint32_t before = last_.values.*each.value;
        const std::uint32_t value = values.*each.value;
        if (bound != 0 && (before > bound) != (value > bound)) {
            advertise(each.upper_bound, values, now);
            return true;
        }
        if (crossed(before, value, settings_.accelerated_threshold_percent,
                    settings_.accelerated_minimum_change_usec)) {
            advertise(each.accelerated, values, now);
            return true;
        }
    }
    return false;
}

void advertiser::end_interval(bool may_advertise, const moment &now) {
    if (!interval_.empty()) {
        const delay_values values = interval_.values();
        aggregated_.add({now.wall_msec(), values});
        for (const metric &each : METRICS) {
            if (may_advertise && is_advertised_ && settings_.*each.checked &&
                crossed(last_.values.*each.value, values.*each.value, settings_.periodic_threshold_percent,
                        settings_.periodic_minimum_change_usec)) {
                advertise(each.periodic, values, now);
                break;
            }
        }
    }
    ++intervals_;
    restart();
}

void advertiser::advertise(pm_advert_reason_e reason, const delay_values &values, const moment &now) {
    last_ = {now.wall_msec(), reason, values, last_.a_flag};
    is_advertised_ = true;
    next_first_ = PM_ADVERT_REASON_FIRST;
    advertised_.add(last_);
    ++count_;
}

void advertiser::withdraw(pm_advert_reason_e reason, const moment &now) {
    if (!is_advertised_) {
        return;
    }
    last_ = {now.wall_msec(), reason, {}, false};
    is_advertised_ = false;
    advertised_.add(last_);
    ++count_;
}

void advertiser::link_down(const moment &now) {
    if (is_advertised_ && last_.reason != PM_ADVERT_REASON_LINK_DOWN) {
        advertise(PM_ADVERT_REASON_LINK_DOWN, last_.values, now);
    }
}

void advertiser::halt(pm_probe_running_error_reason reason, const moment &now) {
    restart();
    if (reason == PM_NOT_RUNNING_INTERFACE_DOWN || reason == PM_NOT_RUNNING_INTERFACE_ADMIN_DOWN) {
        link_down(now);
    } else {
        withdraw(PM_ADVERT_REASON_SESSION_ERROR, now);
    }
}

// The interval under way is forgotten.
void advertiser::restart() {
    interval_ = {};
    left_ = computations_;
}

void advertiser::reconfigure(const advertisement_settings &settings, std::uint32_t computations, const moment &now) {
    const bool was_enabled = enabled();
    settings_ = settings;
    if (computations != computations_) {
        computations_ = computations;
        averages_ = history<std::uint32_t>(rolling_size(computations));
        restart();
    }
    if (static_delay_ || was_enabled == enabled()) {
        return;
    }
    if (!enabled()) {
        withdraw(PM_ADVERT_REASON_DISABLED, now);
    } else if (!latest_.empty()) {
        advertise(PM_ADVERT_REASON_ENABLED, latest_.values(), now);
    } else {
        next_first_ = PM_ADVERT_REASON_ENABLED;
    }
}

void advertiser::set_static_delay(std::optional<std::uint32_t> delay_usec, const moment &now) {
    if (delay_usec == static_delay_) {
        return;
    }
    static_delay_ = delay_usec;
    if (delay_usec) {
        advertise(PM_ADVERT_REASON_DELAY_CONFIG, {*delay_usec, *delay_usec, *delay_usec, 0}, now);
        return;
    }
    withdraw(PM_ADVERT_REASON_DELAY_UNCONFIG, now);
    next_first_ = PM_ADVERT_REASON_DYNAMIC_DELAY;
}

std::uint32_t advertiser::rolling_average() const {
    std::uint64_t sum = 0;
    for (std::size_t index = 0; index < averages_.size(); ++index) {
        sum += averages_[index];
    }
    return averages_.size() == 0 ? 0 : static_cast<std::uint32_t>((sum + averages_.size() / 2) / averages_.size());
}

}  // namespace probed
