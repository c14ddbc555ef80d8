// SPDX-License-Identifier: Apache-2.0
// Timers on the monotonic clock: which of many owners is due next.
//
// An owner is a small number (the index of a session) and has one timer at most. A binary heap with the
// owners' places beside it: setting, moving and taking cost the logarithm of their number, and nothing is
// allocated once there was room for that many.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "perf-probed/schedule/clocks.h"

namespace probed {

class timer_queue {
public:
    using owner = std::uint32_t;

    // Makes room for owners below `count`.
    void reserve(std::size_t count);

    // Sets the owner's timer, or moves it.
    void set(owner who, mono_nsec deadline);
    // Does nothing when the owner has none.
    void cancel(owner who);

    [[nodiscard]] bool empty() const { return heap_.empty(); }
    [[nodiscard]] std::size_t size() const { return heap_.size(); }
    // The earliest deadline; none without a timer.
    [[nodiscard]] std::optional<mono_nsec> next() const;
    // The owner's deadline; none without a timer.
    [[nodiscard]] std::optional<mono_nsec> deadline_of(owner who) const;

    // Takes the earliest timer when it is due at `now`. Timers of one deadline come in the order of their owners.
    [[nodiscard]] std::optional<owner> take_due(mono_nsec now);

private:
    struct timer {
        mono_nsec deadline;
        owner who;

        [[nodiscard]] bool operator<(const timer &other) const {
            return deadline != other.deadline ? deadline < other.deadline : who < other.who;
        }
    };
    static constexpr std::uint32_t NOWHERE = 0xFFFFFFFF;

    void place(std::size_t index, timer value);
    void sift_up(std::size_t index);
    void sift_down(std::size_t index);
    void remove_at(std::size_t index);

    std::vector<timer> heap_;
    std::vector<std::uint32_t> places_;  // by owner: index in heap_
};

}  // namespace probed
