// SPDX-License-Identifier: Apache-2.0
// Summaries: the sessions and counters of a whole node, of its network processors and of its responder.
#include "perf-measure/metrics/item_samples.h"
#include "perf-measure/metrics/series_labels.h"
#include "perf-measure/metrics/session_samples.h"

namespace perf_measure {

namespace {

constexpr counter_groups NODE_COUNTERS{metric_group::node_counters, metric_group::node_errors, true};

std::string labels_of(const std::string &node, std::string_view family, std::string_view kind) {
    std::string labels = node;
    append_label("family", family, &labels);
    append_label("kind", kind, &labels);
    return labels;
}

void add_state(std::string_view state, std::uint64_t sessions, const std::string &labels, metric_group group,
               metric_store *metrics) {
    std::string with_state = labels;
    append_label("state", state, &with_state);
    metrics->add(group, with_state, metric_value::of_number(sessions));
}

// Sessions that are neither running nor in error wait for something, or their summary does not say.
void add_sessions(std::uint64_t all, std::uint64_t running, std::uint64_t with_error, const std::string &labels,
                  metric_store *metrics) {
    const std::uint64_t known = running + with_error;
    add_state("running", running, labels, metric_group::sessions, metrics);
    add_state("error", with_error, labels, metric_group::sessions, metrics);
    add_state("other", all > known ? all - known : 0, labels, metric_group::sessions, metrics);
}

void add_delay(const pm_delay_transport_summary_parcel &summary, std::string_view family, const std::string &node,
               metric_store *metrics) {
    const std::string labels = labels_of(node, family, DELAY);
    const pm_delay_session_counter_parcel &sessions = summary.DelaySessionCounters;
    add_sessions(sessions.TotalDelaySessions, sessions.TotalProbeRunningDelaySessions,
                 sessions.TotalProbeRunningWithErrorDelaySessions, labels, metrics);
    add_counters(summary.DelayTransportCounters, labels, NODE_COUNTERS, metrics);
}

template <class Sessions, class Counters>
void add_liveness(const Sessions &sessions, const Counters &counters, std::string_view family, const std::string &node,
                  metric_store *metrics) {
    const std::string labels = labels_of(node, family, LIVENESS);
    add_sessions(sessions.TotalSessions, sessions.TotalProbeRunningSessions,
                 sessions.TotalProbeRunningWithErrorSessions, labels, metrics);
    add_counters(counters, labels, NODE_COUNTERS, metrics);
}

void add_loss(const pm_loss_transport_summary_parcel &summary, const std::string &node, metric_store *metrics) {
    const std::string labels = labels_of(node, INTERFACES, LOSS);
    add_sessions(summary.TotalLossSessions, 0, 0, labels, metrics);
    add_counters(summary.LossTransportCounters, labels, NODE_COUNTERS, metrics);
}

// Path tracing and path assurance together.
void add_probes(const pm_probe_summary_parcel &summary, const std::string &node, metric_store *metrics) {
    const std::string labels = labels_of(node, ENDPOINTS, PROBE);
    const pm_probe_session_counters_parcel &sessions = summary.PT_PA_Sessions_counter;
    add_sessions(
        sessions.TotalSessions,
        std::uint64_t{sessions.TotalProbeRunningPASessions} + sessions.TotalProbeRunningPTSessions,
        std::uint64_t{sessions.TotalProbeRunningWithErrorPASessions} + sessions.TotalProbeRunningWithErrorPTSessions,
        labels, metrics);
    const pm_probe_session_packet_counters_parcel &packets = summary.PT_PA_pkt_counters;
    metric_value values[COUNTER_SLOTS];
    values[PACKETS_SENT] = metric_value::of_number(packets.PA_QueryPacketsSent + packets.PT_QueryPacketsSent);
    metrics->add(metric_group::node_counters, labels, values);
    add_error(packets.PA_QueryPacketSentErrors + packets.PT_QueryPacketSentErrors, "send", "other", labels,
              metric_group::node_errors, metrics);
}

// Packets that belong to no session.
void add_strays(const pm_delay_global_counters_parcel &counters, std::string_view kind, const std::string &node,
                metric_store *metrics) {
    const std::string labels = labels_of(node, "", kind);
    add_error(counters.ReceivedPacketErrorInvalidSessionID, "receive", "invalid_session_id", labels,
              metric_group::node_errors, metrics);
    add_error(counters.ReceivedPacketErrorNoSession, "receive", "no_session", labels, metric_group::node_errors,
              metrics);
}

void add_npu(const pm_npu_summary_parcel &npu, const std::string &node, metric_store *metrics) {
    std::string labels = node;
    append_label("npu", std::to_string(npu.NPU_ID), &labels);
    const pm_npu_srpolicy_liveness_session_counters_parcel &sessions =
        npu.NPULivenessSummary.NPU_SRPolicyLivenessSummary.NPULivenessSessionCounters;
    const auto add = [&](std::string_view state, std::uint32_t count) {
        add_state(state, count, labels, metric_group::npu_sessions, metrics);
    };
    add("not_created", sessions.TotalNotCreatedSessions);
    add("created", sessions.TotalCreatedSessions);
    add("pending_create", sessions.TotalPendingCreateSessions);
    add("pending_update", sessions.TotalPendingUpdateSessions);
    add("pending_delete", sessions.TotalPendingDeleteSessions);
    const pm_npu_packet_counters_parcel &packets = npu.NPUGlobalCounters.NPUPacketCounters;
    const metric_value values[] = {
        metric_value::of_number(packets.TotalPacketsSent),
        metric_value::of_number(packets.TotalPacketsReceived),
        metric_value::of_number(packets.TotalPacketsErrors),
    };
    metrics->add(metric_group::npu_counters, labels, values);
}

struct responder_reason {
    std::string_view direction;
    std::string_view reason;
    std::uint64_t pm_counter_resp_parcel::*count;
};
constexpr responder_reason RESPONDER_REASONS[] = {
    {"send", "other", &pm_counter_resp_parcel::ReplyPacketSentError},
    {"receive", "uro_tlv_missing", &pm_counter_resp_parcel::ReceivedPacketErrorURO_TLVNotPresent},
    {"receive", "invalid_source_port", &pm_counter_resp_parcel::ReceivedPacketErrorInvalidSourcePortNumber},
    {"receive", "no_source_address", &pm_counter_resp_parcel::ReceivedPacketErrorNoSourceAddress},
    {"receive", "no_return_path", &pm_counter_resp_parcel::ReceivedPacketErrorNoReturnPath},
    {"receive", "unsupported_control_code", &pm_counter_resp_parcel::ReceivedPacketErrorInvalidQuerierControlCode},
    {"receive", "unsupported_timestamp_format", &pm_counter_resp_parcel::ReceivedPacketErrorUnsupportedTimestampFormat},
    {"receive", "timestamp_not_available", &pm_counter_resp_parcel::ReceivedPacketErrorTimestampNotAvailable},
    {"receive", "unsupported_mandatory_tlv", &pm_counter_resp_parcel::ReceivedPacketErrorUnsupportedMandatoryTLV},
    {"receive", "invalid_packet", &pm_counter_resp_parcel::ReceivedPacketErrorInvalidPacket},
};

}  // namespace

void add_item(const pm_summary_parcel &summary, const std::string &labels, metric_store *metrics) {
    const pm_delay_summary_parcel &delay = summary.DelaySummary;
    add_delay(delay.InterfaceDelaySummary, INTERFACES, labels, metrics);
    add_delay(delay.SRPolicyDelaySummary, SR_POLICIES, labels, metrics);
    add_delay(delay.RSVP_TEDelaySummary, TUNNELS, labels, metrics);
    add_delay(delay.EndpointDelaySummary, ENDPOINTS, labels, metrics);
    add_loss(summary.LossSummary.InterfaceLossSummary, labels, metrics);
    const pm_srpolicy_liveness_summary_parcel &policies = summary.LivenessSummary.SRPolicyLivenessSummary;
    add_liveness(policies.SRPolicyLivenessSessionCounters, policies.SRPolicyLivenessTransportCounters, SR_POLICIES,
                 labels, metrics);
    const pm_endpoint_liveness_summary_parcel &endpoints = summary.LivenessSummary.EndpointLivenessSummary;
    add_liveness(endpoints.EndpointLivenessSessionCounters, endpoints.EndpointLivenessTransportCounters, ENDPOINTS,
                 labels, metrics);
    add_probes(summary.ProbeSummary, labels, metrics);
    add_strays(delay.DelayGlobalCounters, DELAY, labels, metrics);
    add_strays(summary.LossSummary.DelayGlobalCounters, LOSS, labels, metrics);
    for (const pm_npu_summary_parcel &npu : summary.NPUSummary) {
        add_npu(npu, labels, metrics);
    }
}

void add_item(const pm_resp_summary_parcel &responder, const std::string &labels, metric_store *metrics) {
    const pm_counter_resp_parcel &counters = responder.ResponderCounters;
    const metric_value values[] = {metric_value::of_number(counters.QueryPacketReceived),
                                   metric_value::of_number(counters.ReplyPacketSent)};
    metrics->add(metric_group::responder_counters, labels, values);
    for (const responder_reason &row : RESPONDER_REASONS) {
        add_error(counters.*row.count, row.direction, row.reason, labels, metric_group::responder_errors, metrics);
    }
}

}  // namespace perf_measure
