// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_summary.h"

#include "pm_show_client/blocks/counters.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/queue.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "schema/pm_records.h"

namespace {

// A heading of two parts, "SR Policy Liveness Detection".
void print_heading(int indent, const char *first, const char *second) {
    pm_print<"%*s%s %s:\n">(indent, "", first, second);
}

// A 64-bit count that the report shows with its low 32 bits.
void print_low_u32(int indent, pm_text label, std::uint64_t value) {
    pm_lines_at(indent).number(label, static_cast<std::uint32_t>(value));
}

// The internal state of the process ---------------------------------------------------------------

void print_timer_drift(const pm_summary_timer_drift_parcel &drift) {
    pm_print_heading(2, "TX timer drift statistics");
    pm_lines_at(4).unit("Average drift", drift.AverageTimerDrift, "msec");
    pm_lines_at(4).unit("Maximum drift", drift.MaximumTimerDrift, "msec");
    pm_lines_at(4).text("Time of maximum drift", pm_time_str(drift.MaximumTimerDriftTimestamp));
    pm_lines_at(4).percent("Over 10 msec drift", static_cast<std::uint32_t>(drift.DriftAboveThresholdPercentage));
}

void print_infrastructure(const pm_summary_parcel &summary) {
    pm_print_heading(0, "Performance-Measurement Infrastructure Information");
    pm_show_queue(PM_QUEUE_CHECKPOINT_OPERATION, summary.CheckpointOperationQueue, 2);
    print_timer_drift(summary.TXTimerDrift);
    pm_print_empty_line();
}

// The sessions that the CPU runs ------------------------------------------------------------------

void print_totals(const pm_summary_parcel &summary) {
    pm_print_heading(0, "Measurement Information");
    pm_lines_at(2).number("Total interfaces with PM sessions", summary.TotalInterfaces);
    pm_lines_at(2).number("Total SR Policies with PM sessions", summary.TotalSRPolicies);
    pm_lines_at(2).number("Total Endpoints with PM sessions", summary.TotalEndpoints);
    pm_lines_at(2).number("Total RSVP-TE tunnels with PM sessions", summary.TotalRSVP_TETunnels);
    pm_print_empty_line();
}

void print_delay(pm_transport_type_e transport, const pm_delay_transport_summary_parcel &summary) {
    const pm_delay_session_counter_parcel &sessions = summary.DelaySessionCounters;
    print_heading(4, pm_transport_type_str(transport), "Delay-Measurement");
    pm_lines_at(6).number("Total sessions", sessions.TotalDelaySessions);
    pm_lines_at(8).number("Total running sessions", sessions.TotalProbeRunningDelaySessions);
    pm_lines_at(8).number("Total running IPv4 sessions", sessions.TotalProbeRunningIPv4DelaySessions);
    pm_lines_at(8).number("Total running IPv6 sessions", sessions.TotalProbeRunningIPv6DelaySessions);
    pm_lines_at(8).number("Total running SRv6 sessions", sessions.TotalProbeRunningSRv6DelaySessions);
    pm_lines_at(8).number("Total running MPLS sessions", sessions.TotalProbeRunningMPLSDelaySessions);
    pm_lines_at(8).number("Total running error sessions", sessions.TotalProbeRunningWithErrorDelaySessions);
    pm_print_heading(6, "Counters");
    pm_show_session_counters(&summary.DelayTransportCounters, 8);
    pm_print_empty_line();
}

void print_delays(const pm_delay_summary_parcel &summary) {
    print_delay(PM_TRANSPORT_INTERFACE, summary.InterfaceDelaySummary);
    print_delay(PM_TRANSPORT_SR_POLICY, summary.SRPolicyDelaySummary);
    print_delay(PM_TRANSPORT_ENDPOINT, summary.EndpointDelaySummary);
    print_delay(PM_TRANSPORT_RSVP_TE, summary.RSVP_TEDelaySummary);
}

// The lines that liveness sessions of both transports begin with.
template <class Sessions>
void print_liveness_sessions(pm_transport_type_e transport, const Sessions &sessions) {
    print_heading(4, pm_transport_type_str(transport), pm_measurement_type_str(PM_MEASUREMENT_LIVENESS));
    pm_lines_at(6).number("Total sessions", sessions.TotalSessions);
    pm_lines_at(8).number("Total running sessions", sessions.TotalProbeRunningSessions);
    pm_lines_at(8).number("Total running IPv4 sessions", sessions.TotalProbeRunningIPv4Sessions);
    pm_lines_at(8).number("Total running IPv6 sessions", sessions.TotalProbeRunningIPv6Sessions);
}

void print_srpolicy_liveness(const pm_srpolicy_liveness_summary_parcel &summary) {
    const pm_srpolicy_liveness_session_counters_parcel &sessions = summary.SRPolicyLivenessSessionCounters;
    print_liveness_sessions(PM_TRANSPORT_SR_POLICY, sessions);
    // The record counts neither SR-MPLS nor SRv6 sessions; the report repeats those of IPv4 and IPv6.
    pm_lines_at(8).number("Total running SR-MPLS sessions", sessions.TotalProbeRunningIPv4Sessions);
    pm_lines_at(8).number("Total running SRv6 sessions", sessions.TotalProbeRunningIPv6Sessions);
    pm_lines_at(8).number("Total running error sessions", sessions.TotalProbeRunningWithErrorSessions);
    pm_print_heading(6, "Counters");
    pm_show_srpolicy_liveness_counters(&summary.SRPolicyLivenessTransportCounters, 8);
    pm_print_empty_line();
}

void print_endpoint_liveness(const pm_endpoint_liveness_summary_parcel &summary) {
    const pm_endpoint_liveness_session_counters_parcel &sessions = summary.EndpointLivenessSessionCounters;
    print_liveness_sessions(PM_TRANSPORT_ENDPOINT, sessions);
    pm_lines_at(8).number("Total running SRv6 sessions", sessions.TotalProbeRunningSRv6Sessions);
    pm_lines_at(8).number("Total running error sessions", sessions.TotalProbeRunningWithErrorSessions);
    pm_print_heading(6, "Counters");
    pm_show_endpoint_liveness_counters(&summary.EndpointLivenessTransportCounters, 8);
    pm_print_empty_line();
}

void print_global_counters(const pm_cpu_global_counters_parcel &counters) {
    pm_print_heading(4, "Global Counters");
    pm_lines_at(6).number("Total packets sent", counters.QueryPacketsSent);
    pm_lines_at(6).number("Total query packets received", counters.QueryPacketsReceived);
    pm_lines_at(6).number("Total invalid session id", counters.ReceivedPacketErrorInvalidSessionID);
    pm_lines_at(6).number("Total missing session", counters.ReceivedPacketErrorNoSession);
    pm_print_empty_line();
}

void print_probe_sessions(const pm_probe_summary_parcel &summary) {
    const pm_probe_session_counters_parcel &sessions = summary.PT_PA_Sessions_counter;
    const pm_probe_session_packet_counters_parcel &packets = summary.PT_PA_pkt_counters;
    pm_print_heading(4, "Probe sessions");
    pm_lines_at(6).number("Total sessions", sessions.TotalSessions);
    pm_print_heading(8, "Path-tracing sessions");
    pm_lines_at(10).number("Total running sessions", sessions.TotalProbeRunningPTSessions);
    pm_lines_at(10).number("Total running error sessions", sessions.TotalProbeRunningWithErrorPTSessions);
    pm_print_heading(8, "Path-assurance sessions");
    pm_lines_at(10).number("Total running sessions", sessions.TotalProbeRunningPASessions);
    pm_lines_at(10).number("Total running error sessions", sessions.TotalProbeRunningWithErrorPASessions);
    pm_print_heading(6, "Counters");
    pm_print_heading(8, "Path-tracing packets");
    print_low_u32(10, "Total sent", packets.PT_QueryPacketsSent);
    print_low_u32(10, "Total sent errors", packets.PT_QueryPacketSentErrors);
    pm_print_heading(8, "Path-assurance packets");
    print_low_u32(10, "Total sent", packets.PA_QueryPacketsSent);
    print_low_u32(10, "Total sent errors", packets.PA_QueryPacketSentErrors);
    pm_print_empty_line();
}

// The sessions offloaded to NPUs ------------------------------------------------------------------

void print_npu_sessions(const pm_npu_srpolicy_liveness_session_counters_parcel &sessions) {
    print_heading(6, pm_transport_type_str(PM_TRANSPORT_SR_POLICY), pm_measurement_type_str(PM_MEASUREMENT_LIVENESS));
    pm_lines_at(8).number("Total sessions", sessions.TotalSessions);
    pm_lines_at(10).number("Sessions created successfully", sessions.TotalCreatedSessions);
    pm_lines_at(10).number("Sessions create pending", sessions.TotalPendingCreateSessions);
    pm_lines_at(10).number("Sessions update pending", sessions.TotalPendingUpdateSessions);
    pm_lines_at(10).number("Sessions delete pending", sessions.TotalPendingDeleteSessions);
    pm_lines_at(10).number("Sessions not created", sessions.TotalNotCreatedSessions);
}

void print_npu_counters(const pm_npu_global_counters &counters) {
    const pm_npu_packet_counters_parcel &packets = counters.NPUPacketCounters;
    const pm_npu_notification_counters_parcel &notifications = counters.NPUNotificationCounters;
    pm_print_empty_line();
    pm_print_heading(6, "NPU Counters");
    pm_lines_at(8).number("Total sessions", counters.TotalSessions);
    pm_print_heading(8, "Packets");
    pm_lines_at(10).number("Total packets sent", packets.TotalPacketsSent);
    pm_lines_at(10).number("Total packets received", packets.TotalPacketsReceived);
    pm_lines_at(10).number("Total packets errors", packets.TotalPacketsErrors);
    pm_print_heading(6, "Notifications");
    pm_lines_at(8).number("Total notification packets", notifications.TotalNotificationPackets);
    pm_lines_at(8).number("Total session state notifications", notifications.TotalNotifications);
    pm_lines_at(10).number("Liveness up notifications", notifications.TotalLivenessUpNotifications);
    pm_lines_at(10).number("Liveness down notifications", notifications.TotalLivenessDownNotifications);
    pm_lines_at(10).number("Malformed notifications", notifications.TotalMalformedNotifications);
    pm_lines_at(10).number("Notifications with invalid session ID", notifications.TotalInvalidSessionIDNotifications);
}

void print_npus(const parcel_array<pm_npu_summary_parcel> &npus) {
    pm_print_heading(2, "NPU Offloaded Sessions");
    for (const pm_npu_summary_parcel &npu : npus) {
        if (&npu != npus.begin()) {
            pm_print_empty_line();
        }
        pm_print<"%*sNPU%u:\n">(4, "", npu.NPU_ID);
        print_npu_sessions(npu.NPULivenessSummary.NPU_SRPolicyLivenessSummary.NPULivenessSessionCounters);
        if (!pm_show_options.liveness_kind) {
            print_npu_counters(npu.NPUGlobalCounters);
        }
    }
}

}  // namespace

int pm_show_summary(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &summary = *static_cast<const pm_summary_parcel *>(decoded_parcel);
    const bool delay = pm_show_options.delay_kind;
    const bool liveness = pm_show_options.liveness_kind;
    if (pm_show_options.internal) {
        print_infrastructure(summary);
    }
    print_totals(summary);
    pm_print_heading(2, "CPU Sessions");
    if (delay || !liveness) {
        print_delays(summary.DelaySummary);
    }
    if (liveness || !delay) {
        print_srpolicy_liveness(summary.LivenessSummary.SRPolicyLivenessSummary);
        print_endpoint_liveness(summary.LivenessSummary.EndpointLivenessSummary);
    }
    if (!delay && !liveness) {
        print_global_counters(summary.GlobalCounters);
    }
    print_probe_sessions(summary.ProbeSummary);
    if (!delay && summary.NPUSummary.count != 0) {
        print_npus(summary.NPUSummary);
    }
    return PM_SHOW_PRINTED;
}
