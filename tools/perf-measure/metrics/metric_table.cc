// SPDX-License-Identifier: Apache-2.0
// The rows of the metrics.
#include "perf-measure/metrics/metric_table.h"

#include <iterator>

namespace perf_measure {

namespace {

using enum metric_type;

// clang-format off
constexpr metric NODE[] = {
    {"perf_node_up", gauge, "", "Whether the measurement service of the node runs and was read."},
};
constexpr metric PUBLISHER[] = {
    {"perf_publisher_state", stateset, "", "State of the process that publishes a part of the node's state. Nothing else is written of one that does not run."},
};
constexpr metric SESSIONS[] = {
    {"perf_sessions", gauge, "", "Sessions of a node by state."},
};
constexpr metric NODE_COUNTERS[] = {
    {"perf_node_packets_sent", counter, "", "Test packets sent by all sessions of a node."},
    {"perf_node_packets_received", counter, "", "Test packets received by all sessions of a node."},
    {"perf_node_advertisements", counter, "", "Advertisements by all sessions of a node."},
};
constexpr metric NODE_ERRORS[] = {
    {"perf_node_packet_errors", counter, "", "Test packets of a node that were not sent or not used, by reason."},
};
constexpr metric NPU_SESSIONS[] = {
    {"perf_npu_sessions", gauge, "", "Liveness sessions on a network processor by state."},
};
constexpr metric NPU_COUNTERS[] = {
    {"perf_npu_packets_sent", counter, "", "Test packets sent by a network processor."},
    {"perf_npu_packets_received", counter, "", "Test packets received by a network processor."},
    {"perf_npu_packet_errors", counter, "", "Test packets of a network processor with errors."},
};
constexpr metric RESPONDER_COUNTERS[] = {
    {"perf_responder_queries_received", counter, "", "Queries that the responder of a node received."},
    {"perf_responder_replies_sent", counter, "", "Replies that the responder of a node sent."},
};
constexpr metric RESPONDER_ERRORS[] = {
    {"perf_responder_packet_errors", counter, "", "Packets that the responder of a node did not send or not answer, by reason."},
};
constexpr metric STALE[] = {
    {"perf_stale", gauge, "", "Whether the service marked an interface or endpoint as stale."},
};
constexpr metric RESULTS[] = {
    {"perf_delay_average_seconds", gauge, "seconds", "Average delay that a probe measured."},
    {"perf_delay_minimum_seconds", gauge, "seconds", "Smallest delay that a probe measured."},
    {"perf_delay_maximum_seconds", gauge, "seconds", "Largest delay that a probe measured."},
    {"perf_delay_variance_seconds", gauge, "seconds", "Variance of the delays that a probe measured, as the shows have it."},
    {"perf_loss_ratio", gauge, "ratio", "Part of a probe's packets that did not come back: 0 none, 1 all."},
    {"perf_liveness_up", gauge, "", "Whether liveness detection finds the path alive."},
    {"perf_liveness_missed_packets", gauge, "packets", "Liveness packets missed in a row."},
    {"perf_liveness_change_timestamp_seconds", gauge, "seconds", "When the liveness state changed last."},
    {"perf_session_running", gauge, "", "Whether the probe of a session runs."},
    {"perf_probe_start_timestamp_seconds", gauge, "seconds", "When the current probe began."},
    {"perf_advertisement_timestamp_seconds", gauge, "seconds", "When values were advertised last."},
};
constexpr metric REASONS[] = {
    {"perf_session_not_running", gauge, "", "Why the probe of a session does not run; always 1."},
};
constexpr metric COUNTERS[] = {
    {"perf_packets_sent", counter, "", "Test packets sent."},
    {"perf_packets_received", counter, "", "Test packets received."},
    {"perf_advertisements", counter, "", "Advertisements."},
};
constexpr metric ERRORS[] = {
    {"perf_packet_errors", counter, "", "Test packets that were not sent or not used, by reason. A reason that has not occurred is left out."},
};
// clang-format on
static_assert(std::size(RESULTS) == RESULT_SLOTS && std::size(COUNTERS) == COUNTER_SLOTS &&
              std::size(NODE_COUNTERS) == COUNTER_SLOTS && std::size(NPU_COUNTERS) == COUNTER_SLOTS);

// In the order of metric_group.
constexpr std::span<const metric> GROUPS[] = {
    NODE,         PUBLISHER,    SESSIONS,           NODE_COUNTERS,    NODE_ERRORS,
    NPU_SESSIONS, NPU_COUNTERS, RESPONDER_COUNTERS, RESPONDER_ERRORS, STALE,
    RESULTS,      REASONS,      COUNTERS,           ERRORS,
};
static_assert(std::size(GROUPS) == METRIC_GROUPS);

}  // namespace

std::span<const metric> metrics_of(metric_group group) { return GROUPS[static_cast<std::size_t>(group)]; }

}  // namespace perf_measure
