// SPDX-License-Identifier: Apache-2.0
// Delays of many packets summed up: average, minimum, maximum and variance.
//
// Variance is the shows' word for the average less the minimum.
#pragma once

#include <algorithm>
#include <cstdint>

#include "perf-probed/packet/time_stamp.h"

namespace probed {

// What is shown and advertised, in microseconds.
struct delay_values {
    std::uint32_t average = 0;
    std::uint32_t minimum = 0;
    std::uint32_t maximum = 0;
    std::uint32_t variance = 0;

    bool operator==(const delay_values &) const = default;
};

class delay_statistics {
public:
    // Delays in nanoseconds, never negative.
    void add(std::int64_t delay) {
        minimum_ = count_ == 0 ? delay : std::min(minimum_, delay);
        maximum_ = std::max(maximum_, delay);
        sum_ += delay;
        ++count_;
    }
    void add(const delay_statistics &other) {
        if (other.count_ == 0) {
            return;
        }
        minimum_ = count_ == 0 ? other.minimum_ : std::min(minimum_, other.minimum_);
        maximum_ = std::max(maximum_, other.maximum_);
        sum_ += other.sum_;
        count_ += other.count_;
    }

    [[nodiscard]] std::uint32_t count() const { return count_; }
    [[nodiscard]] bool empty() const { return count_ == 0; }

    // All zero without a delay. Each value is rounded by itself, but for the variance.
    [[nodiscard]] delay_values values() const {
        if (count_ == 0) {
            return {};
        }
        const std::uint32_t average = microseconds(sum_ / count_);
        const std::uint32_t minimum = microseconds(minimum_);
        return {average, minimum, microseconds(maximum_), average - minimum};
    }

private:
    static std::uint32_t microseconds(std::int64_t nsec) {
        constexpr std::int64_t MOST = 0xFFFFFFFF;
        return static_cast<std::uint32_t>(std::min((nsec + NSEC_PER_USEC / 2) / NSEC_PER_USEC, MOST));
    }

    std::int64_t sum_ = 0;
    std::int64_t minimum_ = 0;
    std::int64_t maximum_ = 0;
    std::uint32_t count_ = 0;
};

}  // namespace probed
