// SPDX-License-Identifier: Apache-2.0
// Numbers that look random and are the same everywhere.
#pragma once

#include <cstdint>

namespace perf_store {

// What a sequence of numbers is for.
enum class random_subject : std::uint64_t { interface = 1, policy, endpoint, tunnel };

// The numbers of one object. Each object has a sequence of its own, so that one more interface leaves
// the policies as they were.
class random_source {
public:
    random_source() = default;
    random_source(std::uint64_t seed, random_subject subject, std::uint64_t index)
        : state_(mixed(seed) ^ mixed((static_cast<std::uint64_t>(subject) << 56U) + index)) {}

    // 0 to count - 1; 0 for a count of 0.
    [[nodiscard]] std::uint32_t below(std::uint32_t count) {
        state_ += STEP;
        return static_cast<std::uint32_t>(((mixed(state_) >> 32U) * count) >> 32U);
    }
    [[nodiscard]] std::uint32_t between(std::uint32_t least, std::uint32_t most) {
        return least + below(most - least + 1);
    }
    // Another sequence, which does not follow this one.
    [[nodiscard]] random_source branch() {
        random_source other;
        state_ += STEP;
        other.state_ = mixed(~state_);
        return other;
    }
    [[nodiscard]] bool one_in(std::uint32_t count) { return below(count) == 0; }

private:
    static constexpr std::uint64_t STEP = 0x9E3779B97F4A7C15;

    // The output function of splitmix64.
    static constexpr std::uint64_t mixed(std::uint64_t value) {
        value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9;
        value = (value ^ (value >> 27U)) * 0x94D049BB133111EB;
        return value ^ (value >> 31U);
    }

    std::uint64_t state_ = 0;
};

}  // namespace perf_store
