// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/probe.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/profile_keys.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "pm_utils/not_running_reason.h"

using namespace pm_session_lines;

namespace {

void print_not_running(int indent, pm_probe_running_error_reason reason) {
    pm_plain_lines(indent).text("Not running", pm_not_running_reason_str(reason));
}

void print_probe_status(const pm_scb_probe_session_parcel &session, int indent) {
    pm_print_heading(indent, "Current status");
    indent += 2;
    if (session.ProbeNotRunningReason != 0) {
        print_not_running(indent, session.ProbeNotRunningReason);
    } else if (session.NextPacketSentTimeRemainingInMillisec == 0) {
        print_sentence(indent, "No packet scheduled yet");
    } else {
        // The interval comes first here, unlike in the block of a running probe.
        print_packet_interval(indent, session.TXInterval, session.TXIntervalIsStretched);
        print_wait(indent, NEXT_PACKET, session.NextPacketSentTimeRemainingInMillisec);
    }
}

}  // namespace

void pm_show_probe_results(const pm_scb_probe_results_parcel *results, int indent, const char *title,
                           const char *empty_text) {
    pm_print_heading(indent, title);
    indent += 2;
    if (results->NumberOfPacketsSent == 0) {
        print_sentence(indent, empty_text);
    } else if (results->NumberOfPacketsReceived == 0) {
        print_sentence(indent, "No packets received");
    } else {
        print_packets(indent, results->NumberOfPacketsSent, results->NumberOfPacketsReceived);
        print_delays(indent, "Measured", results->ProbeValues);
    }
}

void pm_show_current_computation(const pm_scb_probe_parcel *probe, int indent) {
    pm_print_heading(indent, "Current computation");
    // What comes next steps back to the heading's indent.
    static_cast<void>(pm_show_probe_lines(probe, indent + 2, indent));
}

bool pm_show_probe_lines(const pm_scb_probe_parcel *probe, int indent, int schedule_indent) {
    if (probe->ProbeNotRunningReason != 0) {
        print_not_running(indent, probe->ProbeNotRunningReason);
        return false;
    }
    if (probe->ProbeStartTimeStamp == 0) {
        print_wait(indent, PROBE_WILL_START, probe->NextProbeStartTimeRemainingInMillisec);
        return false;
    }
    print_since(indent, "Started", probe->ProbeStartTimeStamp);
    print_packets(indent, probe->NumberOfPacketsSent, probe->NumberOfPacketsReceived);
    print_delays(indent, "Measured", probe->ProbeResults);
    print_next_probe(schedule_indent, probe->NextProbeStartTimeRemainingInMillisec);
    if (probe->NextPacketSentTimeRemainingInMillisec == 0) {
        print_sentence(schedule_indent, "TX completed");
    } else {
        print_wait(schedule_indent, NEXT_PACKET, probe->NextPacketSentTimeRemainingInMillisec);
        print_packet_interval(schedule_indent, probe->TXInterval, probe->TXIntervalIsStretched);
    }
    return true;
}

void pm_show_probe_samples(const parcel_array<pm_scb_sample_parcel> *samples, int indent) {
    pm_print_heading(indent, "Probe samples");
    indent += 2;
    if (samples->count == 0) {
        print_sentence(indent, "No History");
        return;
    }
    pm_print_indented<"%-25.25s %14.21s\n">(indent, "Packet Rx Timestamp", "Measured Delay (nsec)");
    for (const pm_scb_sample_parcel &sample : *samples) {
        pm_print_indented<"%-25.25s %14llu\n">(indent, pm_time_str(sample.QueryTimestamp), sample.MeasurementValue);
    }
}

void pm_show_probe_session(const pm_scb_probe_session_parcel *session, int indent) {
    pm_print<"%*s%s session:\n">(indent, "", pm_probe_type_str(session->ProbeType));
    indent += 2;
    const pm_lines lines = identity_lines(indent);
    lines.number("Session ID", session->SessionId);
    if (pm_show_options.internal) {
        lines.number("Trace ID", session->TraceId);
    }
    pm_show_profile_keys(&session->ProfileKey, session->ProfileName, indent, PM_PROFILE_WIDTH);
    print_probe_status(*session, indent);
}
