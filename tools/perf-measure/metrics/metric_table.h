// SPDX-License-Identifier: Apache-2.0
// The metrics as data: every name that is ever written, with its type, unit and meaning.
//
// A group is a set of metrics that the same things have, so that their labels are kept once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace perf_measure {

enum class metric_type : std::uint8_t { gauge, counter, stateset };

struct metric {
    const char *name;  // without the "_total" of counters
    metric_type type;
    const char *unit;  // the name's end; "" for none
    const char *help;
};

enum class metric_group : std::uint8_t {
    node,
    publisher,
    sessions,
    node_counters,
    node_errors,
    npu_sessions,
    npu_counters,
    responder_counters,
    responder_errors,
    stale,
    results,
    reasons,
    counters,
    errors,
    count
};
inline constexpr std::size_t METRIC_GROUPS = static_cast<std::size_t>(metric_group::count);

// Where a value is in the group `results`.
enum result_slot : std::uint8_t {
    DELAY_AVERAGE,
    DELAY_MINIMUM,
    DELAY_MAXIMUM,
    DELAY_VARIANCE,
    LOSS_RATIO,
    LIVENESS_UP,
    LIVENESS_MISSED,
    LIVENESS_CHANGED,
    RUNNING,
    PROBE_STARTED,
    ADVERTISED,
    RESULT_SLOTS
};

// And in the groups of counters.
enum counter_slot : std::uint8_t { PACKETS_SENT, PACKETS_RECEIVED, ADVERTISEMENTS, COUNTER_SLOTS };

// The metrics of a group, by slot.
[[nodiscard]] std::span<const metric> metrics_of(metric_group group);

}  // namespace perf_measure
