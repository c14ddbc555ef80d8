// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/counters.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_options.h"

namespace {

constexpr int STEP = 2;  // indent of a group's lines within it

// Groups that the three kinds of sessions share; the records name these counters alike.

template <class Counters>
void print_packets(const Counters &counters, int indent) {
    pm_print_heading(indent, "Packets");
    const pm_lines lines = pm_lines_at(indent + STEP);
    lines.number("Total sent", counters.QueryPacketsSent);
    lines.number("Total received", counters.QueryPacketsReceived);
}

void print_error_totals(std::uint64_t sent, std::uint64_t received, int indent) {
    const pm_lines lines = pm_lines_at(indent + STEP);
    lines.number("Total sent errors", sent);
    lines.number("Total received errors", received);
}

template <class Counters>
void print_probes(const Counters &counters, int indent) {
    pm_print_heading(indent, "Probes");
    const pm_lines lines = pm_lines_at(indent + STEP);
    lines.number("Total started", counters.ProbesStarted);
    lines.number("Total completed", counters.ProbesComplete);
    lines.number("Total incomplete", counters.ProbesIncomplete);
    lines.number("Total advertisements", counters.Advertisement);
}

void print_liveness_missed(std::uint64_t missed, int indent) {
    pm_lines_at(indent + STEP).number("Total liveness missed count", missed);
}

// The six reasons for which any kind of session drops a received packet.
template <class Counters>
void print_probe_rx_reasons(const Counters &counters, const pm_lines &lines) {
    lines.number("Reason negative delay", counters.ReceivedPacketErrorNegativeDelay);
    lines.number("Reason delay threshold exceeded", counters.ReceivedPacketErrorDelayExceedsThreshold);
    lines.number("Reason missing TX timestamp", counters.ReceivedPacketErrorMissingTxTimestamp);
    lines.number("Reason missing RX timestamp", counters.ReceivedPacketErrorMissingRxTimestamp);
    lines.number("Reason probe full", counters.ReceivedPacketErrorProbeFull);
    lines.number("Reason probe not started", counters.ReceivedPacketErrorProbeNotStarted);
}

template <class Counters>
std::uint64_t probe_rx_errors(const Counters &counters) {
    return counters.ReceivedPacketErrorNegativeDelay + counters.ReceivedPacketErrorDelayExceedsThreshold +
           counters.ReceivedPacketErrorMissingTxTimestamp + counters.ReceivedPacketErrorMissingRxTimestamp +
           counters.ReceivedPacketErrorProbeFull + counters.ReceivedPacketErrorProbeNotStarted;
}

// Delay sessions also count the control codes of their replies.
std::uint64_t delay_rx_errors(const pm_querier_delay_counters_parcel &counters) {
    return probe_rx_errors(counters) + counters.ReceivedPacketControlCodeError +
           counters.ReceivedPacketControlCodeNotification;
}

std::uint64_t interface_tx_errors(const pm_intf_exclusive_delay_counters_info_parcel &counters) {
    return counters.QueryPacketSentErrorInterfaceDown + counters.QueryPacketSentErrorNoMPLSCaps +
           counters.QueryPacketSentErrorIPv4DownWithV4NextHop + counters.QueryPacketSentErrorIPv6DownWithV6NextHop +
           counters.QueryPacketSentErrorIPv4IPv6DownWithoutNextHop + counters.QueryPacketSentErrorNextHopMACMissing;
}

std::uint64_t delay_tx_errors(const pm_delay_counters_info_parcel &counters) {
    const pm_querier_delay_counters_parcel &generic = counters.GenericCounters;
    const std::uint64_t common = generic.QueryPacketSentErrors + generic.QueryPacketSentErrorNoIPAddress;
    switch (counters.ExclusiveCounters.TransportType) {
    case PM_TRANSPORT_INTERFACE:
        return common + interface_tx_errors(counters.ExclusiveCounters.InterfaceExclusiveCounters);
    case PM_TRANSPORT_RSVP_TE:
    case PM_TRANSPORT_SR_POLICY:
    case PM_TRANSPORT_ENDPOINT:  // without its missing segment-list labels
        return common;
    default:  // an unknown transport shows its received errors here
        return delay_rx_errors(generic);
    }
}

void print_interface_tx_reasons(const pm_intf_exclusive_delay_counters_info_parcel &counters, const pm_lines &lines) {
    lines.number("Reason interface down", counters.QueryPacketSentErrorInterfaceDown);
    lines.number("Reason no MPLS caps", counters.QueryPacketSentErrorNoMPLSCaps);
    lines.number("Reason IPv4 protocol down", counters.QueryPacketSentErrorIPv4DownWithV4NextHop);
    lines.number("Reason IPv6 protocol down", counters.QueryPacketSentErrorIPv6DownWithV6NextHop);
    lines.number("Reason IPv4 and IPv6 protocol down", counters.QueryPacketSentErrorIPv4IPv6DownWithoutNextHop);
    lines.number("Reason next hop MAC missing", counters.QueryPacketSentErrorNextHopMACMissing);
}

void print_missing_labels(std::uint64_t missing, const pm_lines &lines) {
    lines.number("Reason missing segment list labels", missing);
}

void print_other_reason(std::uint64_t other, const pm_lines &lines) { lines.number("Reason other", other); }

// Why packets were not sent, one overload for each kind of session.

void print_tx_reasons(const pm_delay_counters_info_parcel &counters, const pm_lines &lines) {
    switch (counters.ExclusiveCounters.TransportType) {
    case PM_TRANSPORT_INTERFACE:
        print_interface_tx_reasons(counters.ExclusiveCounters.InterfaceExclusiveCounters, lines);
        break;
    case PM_TRANSPORT_ENDPOINT:  // an endpoint's list ends here
        print_missing_labels(counters.ExclusiveCounters.EndpointExclusiveCounters.QueryPacketsSentErrorSlLabelMissing,
                             lines);
        return;
    default: break;
    }
    lines.number("Reason no IP address", counters.GenericCounters.QueryPacketSentErrorNoIPAddress);
    print_other_reason(counters.GenericCounters.QueryPacketSentErrors, lines);
}

void print_tx_reasons(const pm_srpolicy_liveness_counters_info_parcel &counters, const pm_lines &lines) {
    print_other_reason(counters.QueryPacketSentErrors, lines);
}

void print_tx_reasons(const pm_endpoint_liveness_counters_info_parcel &counters, const pm_lines &lines) {
    print_missing_labels(counters.QueryPacketsSentErrorSlLabelMissing, lines);
    print_other_reason(counters.QueryPacketSentErrors, lines);
}

// Why received packets were not used.

void print_rx_reasons(const pm_delay_counters_info_parcel &counters, const pm_lines &lines) {
    print_probe_rx_reasons(counters.GenericCounters, lines);
    lines.number("Reason control code error", counters.GenericCounters.ReceivedPacketControlCodeError);
    lines.number("Reason control code notif", counters.GenericCounters.ReceivedPacketControlCodeNotification);
}

template <class LivenessCounters>
void print_rx_reasons(const LivenessCounters &counters, const pm_lines &lines) {
    print_probe_rx_reasons(counters, lines);
}

template <class Counters>
void print_reasons(const Counters *counters, int direction, int indent) {
    if (counters == nullptr) {
        return;
    }
    if (direction == PM_DIRECTION_RX) {
        pm_print_heading(indent, "RX");
        print_rx_reasons(*counters, pm_lines_at(indent + STEP));
    } else if (direction == PM_DIRECTION_TX) {
        pm_print_heading(indent, "TX");
        print_tx_reasons(*counters, pm_lines_at(indent + STEP));
    }
}

// The errors by reason, or the totals of those that were met in sending and in receiving.
template <class Counters>
void print_errors(const Counters &counters, std::uint64_t sent, std::uint64_t received, int indent) {
    pm_print_heading(indent, "Errors");
    if (pm_show_options.detail) {
        print_reasons(&counters, PM_DIRECTION_TX, indent + 2 * STEP);
        print_reasons(&counters, PM_DIRECTION_RX, indent + 2 * STEP);
    } else {
        print_error_totals(sent, received, indent);
    }
}

template <class LivenessCounters>
void print_liveness(const LivenessCounters &counters, std::uint64_t sent_errors, int indent) {
    print_packets(counters, indent);
    print_errors(counters, sent_errors, probe_rx_errors(counters), indent);
    print_probes(counters, indent);
    print_liveness_missed(counters.LivenessDetectionMissedCount, indent);
}

}  // namespace

void pm_show_error_reasons(const pm_delay_counters_info_parcel *counters, int direction, int indent) {
    print_reasons(counters, direction, indent);
}

void pm_show_srpolicy_liveness_reasons(const pm_srpolicy_liveness_counters_info_parcel *counters, int direction,
                                       int indent) {
    print_reasons(counters, direction, indent);
}

void pm_show_endpoint_liveness_reasons(const pm_endpoint_liveness_counters_info_parcel *counters, int direction,
                                       int indent) {
    print_reasons(counters, direction, indent);
}

void pm_show_session_counters(const pm_delay_counters_info_parcel *counters, int indent) {
    print_packets(counters->GenericCounters, indent);
    print_errors(*counters, delay_tx_errors(*counters), delay_rx_errors(counters->GenericCounters), indent);
    print_probes(counters->GenericCounters, indent);
    const pm_exclusive_counters &exclusive = counters->ExclusiveCounters;
    if (exclusive.TransportType == PM_TRANSPORT_SR_POLICY) {
        print_liveness_missed(exclusive.SRPolicyExclusiveCounters.LivenessDetectionMissedCount, indent);
    } else if (exclusive.TransportType == PM_TRANSPORT_ENDPOINT) {
        print_liveness_missed(exclusive.EndpointExclusiveCounters.LivenessDetectionMissedCount, indent);
    }
}

void pm_show_srpolicy_liveness_counters(const pm_srpolicy_liveness_counters_info_parcel *counters, int indent) {
    print_liveness(*counters, counters->QueryPacketSentErrors, indent);
}

void pm_show_endpoint_liveness_counters(const pm_endpoint_liveness_counters_info_parcel *counters, int indent) {
    // The received errors are in both lines; an endpoint's sent errors have none of their own.
    print_liveness(*counters, probe_rx_errors(*counters), indent);
}
