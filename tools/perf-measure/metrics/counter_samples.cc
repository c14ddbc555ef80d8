// SPDX-License-Identifier: Apache-2.0
// Counters of packets, and of errors by reason.
#include "perf-measure/metrics/series_labels.h"
#include "perf-measure/metrics/session_samples.h"

namespace perf_measure {

namespace {

constexpr std::string_view SEND = "send";
constexpr std::string_view RECEIVE = "receive";

template <class Counters>
struct reason_row {
    std::string_view direction;
    std::string_view reason;
    std::uint64_t Counters::*count;
};

// The reasons that the counters of all kinds of sessions have.
template <class Counters>
constexpr reason_row<Counters> COMMON_REASONS[] = {
    {SEND, "other", &Counters::QueryPacketSentErrors},
    {RECEIVE, "negative_delay", &Counters::ReceivedPacketErrorNegativeDelay},
    {RECEIVE, "delay_exceeds_threshold", &Counters::ReceivedPacketErrorDelayExceedsThreshold},
    {RECEIVE, "missing_tx_timestamp", &Counters::ReceivedPacketErrorMissingTxTimestamp},
    {RECEIVE, "missing_rx_timestamp", &Counters::ReceivedPacketErrorMissingRxTimestamp},
    {RECEIVE, "probe_full", &Counters::ReceivedPacketErrorProbeFull},
    {RECEIVE, "probe_not_started", &Counters::ReceivedPacketErrorProbeNotStarted},
};

constexpr reason_row<pm_querier_delay_counters_parcel> DELAY_REASONS[] = {
    {SEND, "no_ip_address", &pm_querier_delay_counters_parcel::QueryPacketSentErrorNoIPAddress},
    {RECEIVE, "control_code_error", &pm_querier_delay_counters_parcel::ReceivedPacketControlCodeError},
    {RECEIVE, "control_code_notification", &pm_querier_delay_counters_parcel::ReceivedPacketControlCodeNotification},
};

using interface_counters = pm_intf_exclusive_delay_counters_info_parcel;
constexpr reason_row<interface_counters> INTERFACE_REASONS[] = {
    {SEND, "interface_down", &interface_counters::QueryPacketSentErrorInterfaceDown},
    {SEND, "no_mpls_caps", &interface_counters::QueryPacketSentErrorNoMPLSCaps},
    {SEND, "ipv4_down", &interface_counters::QueryPacketSentErrorIPv4DownWithV4NextHop},
    {SEND, "ipv6_down", &interface_counters::QueryPacketSentErrorIPv6DownWithV6NextHop},
    {SEND, "ipv4_and_ipv6_down", &interface_counters::QueryPacketSentErrorIPv4IPv6DownWithoutNextHop},
    {SEND, "next_hop_mac_missing", &interface_counters::QueryPacketSentErrorNextHopMACMissing},
};

constexpr std::string_view LABELS_MISSING = "segment_list_labels_missing";

// Where the counters of one thing go.
struct target {
    const std::string &labels;
    const counter_groups &to;
    metric_store *metrics;

    void error(std::uint64_t count, std::string_view direction, std::string_view reason) const {
        if (count != 0 || to.all_reasons) {
            add_error(count, direction, reason, labels, to.errors, metrics);
        }
    }
    template <class Counters, std::size_t Count>
    void errors(const Counters &counters, const reason_row<Counters> (&rows)[Count]) const {
        for (const reason_row<Counters> &row : rows) {
            error(counters.*row.count, row.direction, row.reason);
        }
    }
    template <class Counters>
    void common(const Counters &counters) const {
        const metric_value values[COUNTER_SLOTS] = {
            metric_value::of_number(counters.QueryPacketsSent),
            metric_value::of_number(counters.QueryPacketsReceived),
            metric_value::of_number(counters.Advertisement),
        };
        metrics->add(to.counters, labels, values);
        errors(counters, COMMON_REASONS<Counters>);
    }
};

}  // namespace

void add_error(std::uint64_t count, std::string_view direction, std::string_view reason, const std::string &labels,
               metric_group group, metric_store *metrics) {
    std::string with_reason = labels;
    append_label("direction", direction, &with_reason);
    append_label("reason", reason, &with_reason);
    metrics->add(group, with_reason, metric_value::of_number(count));
}

void add_counters(const pm_delay_counters_info_parcel &counters, const std::string &labels, const counter_groups &to,
                  metric_store *metrics) {
    const target added{labels, to, metrics};
    added.common(counters.GenericCounters);
    added.errors(counters.GenericCounters, DELAY_REASONS);
    const pm_exclusive_counters &exclusive = counters.ExclusiveCounters;
    if (exclusive.TransportType == PM_TRANSPORT_INTERFACE) {
        added.errors(exclusive.InterfaceExclusiveCounters, INTERFACE_REASONS);
    } else if (exclusive.TransportType == PM_TRANSPORT_ENDPOINT) {
        added.error(exclusive.EndpointExclusiveCounters.QueryPacketsSentErrorSlLabelMissing, SEND, LABELS_MISSING);
    }
}

void add_counters(const pm_srpolicy_liveness_counters_info_parcel &counters, const std::string &labels,
                  const counter_groups &to, metric_store *metrics) {
    target{labels, to, metrics}.common(counters);
}

void add_counters(const pm_endpoint_liveness_counters_info_parcel &counters, const std::string &labels,
                  const counter_groups &to, metric_store *metrics) {
    const target added{labels, to, metrics};
    added.common(counters);
    added.error(counters.QueryPacketsSentErrorSlLabelMissing, SEND, LABELS_MISSING);
}

}  // namespace perf_measure
