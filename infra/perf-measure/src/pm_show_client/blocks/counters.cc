// See counters.h.
#include "pm_show_client/blocks/counters.h"

#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_options.h"

namespace {

constexpr int STEP = 2;  // indent of a group's lines within it

// Groups that the three kinds of sessions share; the records name these counters alike.

template <class Counters>
void print_packets(const Counters &counters, int indent) {
    pm_print_heading(indent, "Packets");
    pm_print_counter(indent + STEP, "Total sent", counters.QueryPacketsSent);
    pm_print_counter(indent + STEP, "Total received", counters.QueryPacketsReceived);
}

void print_error_totals(std::uint64_t sent, std::uint64_t received, int indent) {
    pm_print_counter(indent + STEP, "Total sent errors", sent);
    pm_print_counter(indent + STEP, "Total received errors", received);
}

template <class Counters>
void print_probes(const Counters &counters, int indent) {
    pm_print_heading(indent, "Probes");
    pm_print_counter(indent + STEP, "Total started", counters.ProbesStarted);
    pm_print_counter(indent + STEP, "Total completed", counters.ProbesComplete);
    pm_print_counter(indent + STEP, "Total incomplete", counters.ProbesIncomplete);
    pm_print_counter(indent + STEP, "Total advertisements", counters.Advertisement);
}

void print_liveness_missed(std::uint64_t missed, int indent) {
    pm_print_counter(indent + STEP, "Total liveness missed count", missed);
}

// The six reasons for which any kind of session drops a received packet.
template <class Counters>
void print_probe_rx_reasons(const Counters &counters, int indent) {
    pm_print_counter(indent, "Reason negative delay", counters.ReceivedPacketErrorNegativeDelay);
    pm_print_counter(indent, "Reason delay threshold exceeded", counters.ReceivedPacketErrorDelayExceedsThreshold);
    pm_print_counter(indent, "Reason missing TX timestamp", counters.ReceivedPacketErrorMissingTxTimestamp);
    pm_print_counter(indent, "Reason missing RX timestamp", counters.ReceivedPacketErrorMissingRxTimestamp);
    pm_print_counter(indent, "Reason probe full", counters.ReceivedPacketErrorProbeFull);
    pm_print_counter(indent, "Reason probe not started", counters.ReceivedPacketErrorProbeNotStarted);
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

void print_interface_tx_reasons(const pm_intf_exclusive_delay_counters_info_parcel &counters, int indent) {
    pm_print_counter(indent, "Reason interface down", counters.QueryPacketSentErrorInterfaceDown);
    pm_print_counter(indent, "Reason no MPLS caps", counters.QueryPacketSentErrorNoMPLSCaps);
    pm_print_counter(indent, "Reason IPv4 protocol down", counters.QueryPacketSentErrorIPv4DownWithV4NextHop);
    pm_print_counter(indent, "Reason IPv6 protocol down", counters.QueryPacketSentErrorIPv6DownWithV6NextHop);
    pm_print_counter(indent, "Reason IPv4 and IPv6 protocol down",
                     counters.QueryPacketSentErrorIPv4IPv6DownWithoutNextHop);
    pm_print_counter(indent, "Reason next hop MAC missing", counters.QueryPacketSentErrorNextHopMACMissing);
}

void print_missing_labels(std::uint64_t missing, int indent) {
    pm_print_counter(indent, "Reason missing segment list labels", missing);
}

void print_other_reason(std::uint64_t other, int indent) { pm_print_counter(indent, "Reason other", other); }

// Why packets were not sent, one overload for each kind of session.

void print_tx_reasons(const pm_delay_counters_info_parcel &counters, int indent) {
    switch (counters.ExclusiveCounters.TransportType) {
    case PM_TRANSPORT_INTERFACE:
        print_interface_tx_reasons(counters.ExclusiveCounters.InterfaceExclusiveCounters, indent);
        break;
    case PM_TRANSPORT_ENDPOINT:  // an endpoint's list ends here
        print_missing_labels(counters.ExclusiveCounters.EndpointExclusiveCounters.QueryPacketsSentErrorSlLabelMissing,
                             indent);
        return;
    default: break;
    }
    pm_print_counter(indent, "Reason no IP address", counters.GenericCounters.QueryPacketSentErrorNoIPAddress);
    print_other_reason(counters.GenericCounters.QueryPacketSentErrors, indent);
}

void print_tx_reasons(const pm_srpolicy_liveness_counters_info_parcel &counters, int indent) {
    print_other_reason(counters.QueryPacketSentErrors, indent);
}

void print_tx_reasons(const pm_endpoint_liveness_counters_info_parcel &counters, int indent) {
    print_missing_labels(counters.QueryPacketsSentErrorSlLabelMissing, indent);
    print_other_reason(counters.QueryPacketSentErrors, indent);
}

// Why received packets were not used.

void print_rx_reasons(const pm_delay_counters_info_parcel &counters, int indent) {
    print_probe_rx_reasons(counters.GenericCounters, indent);
    pm_print_counter(indent, "Reason control code error", counters.GenericCounters.ReceivedPacketControlCodeError);
    pm_print_counter(indent, "Reason control code notif",
                     counters.GenericCounters.ReceivedPacketControlCodeNotification);
}

template <class LivenessCounters>
void print_rx_reasons(const LivenessCounters &counters, int indent) {
    print_probe_rx_reasons(counters, indent);
}

template <class Counters>
void print_reasons(const Counters *counters, int direction, int indent) {
    if (counters == nullptr) {
        return;
    }
    if (direction == PM_DIRECTION_RX) {
        pm_print_heading(indent, "RX");
        print_rx_reasons(*counters, indent + STEP);
    } else if (direction == PM_DIRECTION_TX) {
        pm_print_heading(indent, "TX");
        print_tx_reasons(*counters, indent + STEP);
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
    // The received errors stand in both lines; an endpoint's sent errors have none of their own.
    print_liveness(*counters, probe_rx_errors(*counters), indent);
}
