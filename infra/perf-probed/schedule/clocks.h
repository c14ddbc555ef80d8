// SPDX-License-Identifier: Apache-2.0
// The two clocks of the program, and how a step of the wall clock is told from time that passed.
//
// Everything is scheduled on the monotonic clock, which never jumps. The wall clock is what packets and
// published records carry.
#pragma once

#include <cstdint>

#include "perf-probed/packet/time_stamp.h"

namespace probed {

using mono_nsec = std::int64_t;  // nanoseconds of CLOCK_MONOTONIC

// One moment on both clocks.
struct moment {
    mono_nsec mono = 0;
    wall_nsec wall = 0;

    // Wall less monotonic: changes when the wall clock is set.
    [[nodiscard]] std::int64_t offset() const { return wall - mono; }
    [[nodiscard]] std::uint64_t wall_msec() const { return static_cast<std::uint64_t>(wall / NSEC_PER_MSEC); }
};

// Where the time comes from; tests have a simulated one.
class clock_source_interface {
public:
    virtual ~clock_source_interface() = default;
    [[nodiscard]] virtual moment now() const = 0;
};

class system_clocks final : public clock_source_interface {
public:
    // Reads both clocks close together: of a few tries the one with the least time between, so that a
    // preempted process does not look like a clock that was set.
    [[nodiscard]] moment now() const override;
};

}  // namespace probed
