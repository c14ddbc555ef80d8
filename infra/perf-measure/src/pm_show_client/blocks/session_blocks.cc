// See session_blocks.h.
#include "pm_show_client/blocks/session_blocks.h"

#include <cstring>

#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/advert_reason.h"
#include "pm_utils/control_code.h"
#include "pm_utils/measurement_names.h"
#include "pm_utils/not_running_reason.h"

using namespace pm_session_lines;

namespace {

void print_profile(int indent, int width, const char *name, const char *type) {
    pm_print_label_str(width, indent, "Profile name", name);
    pm_print_label_str(width, indent, "Profile type", type);
}

void print_set_profile(const pm_profile_key_parcel &key, int indent, int width) {
    const char *const name = is_empty(key.Name) ? "Not configured" : key.Name;
    const char *const measurement = pm_measurement_type_str(key.MeasurementType);
    if (key.MeasurementType == PM_MEASUREMENT_PROBE && key.Transport_type == PM_TRANSPORT_GENERIC) {
        print_profile(indent, width, name, measurement);
        return;
    }
    char type[PM_LINE_SIZE];
    pm_format_text<"%s %s">(type, sizeof type, pm_transport_type_str(key.Transport_type), measurement);
    print_profile(indent, width, name, type);
}

void print_missing_profile(const char *profile_name, int indent, int width) {
    if (is_empty(profile_name)) {
        print_profile(indent, width, "Not configured", "N/A");
        return;
    }
    char name[PM_LINE_SIZE];
    pm_format_text<"%s %s">(name, sizeof name, profile_name, "(Profile not found)");
    print_profile(indent, width, name, "N/A");
}

void print_control_code(const pm_scb_control_code &code, int indent, const char *heading, const char *label) {
    pm_print_heading(indent, heading);
    pm_print_indented<"%s: %s (0x%x)\n">(indent + 2, label, pm_control_code_str(code.ControlCode), code.ControlCode);
    print_labelled(indent + 2, "Timestamp", pm_time_str(code.Timestamp));
}

}  // namespace

void pm_show_profile_keys(const pm_profile_key_parcel *key, const char *profile_name, int indent, int width) {
    if (key == nullptr) {
        return;
    }
    pm_print_heading(indent, "Profile Keys");
    if (key->ProfileIsSet != 0) {
        print_set_profile(*key, indent + 2, width);
    } else {
        print_missing_profile(profile_name, indent + 2, width);
    }
}

void pm_show_last_advertisement(const pm_scb_last_advert_parcel *advertisement, int indent, bool always_show_reason) {
    pm_print_heading(indent, "Last advertisement");
    indent += 2;
    if (advertisement->TimeOfAdvertisement == 0) {
        print_text(indent, "No advertisements have occured");
        return;
    }
    print_since(indent, "Advertised", advertisement->TimeOfAdvertisement);
    const bool withdraws = pm_advert_reason_withdraws_values(advertisement->AdvertisementReason);
    if (withdraws || always_show_reason) {
        print_labelled(indent, "Advertised reason", pm_advert_reason_str(advertisement->AdvertisementReason));
    }
    if (!withdraws) {
        print_delays(indent, "Advertised", advertisement->AdvertisedValues);
        print_labelled(indent, "A flag set", pm_true_or_false(advertisement->AFlagSet));
    }
    if (pm_show_options.internal) {
        print_labelled(indent, "Msg in flight", pm_true_or_false(advertisement->MsgInFlight));
    }
}

void pm_show_next_advertisement(const pm_scb_next_advert_parcel *advertisement, std::uint32_t interval_sec,
                                int indent) {
    pm_print_heading(indent, "Next advertisement");
    indent += 2;
    const std::uint32_t probes = advertisement->AdvertisementIntervalProbesRemaining;
    if (interval_sec == 0) {
        print_text(indent, "Periodic advertisement disabled");
    } else if (interval_sec != PM_NO_ADVERTISEMENT_INTERVAL && probes != 0) {
        pm_print_indented<"Threshold check scheduled in %u more probe%s (roughly every %u seconds)\n">(
            indent, probes, probes == 1 ? "" : "s", interval_sec);
    } else if (interval_sec != PM_NO_ADVERTISEMENT_INTERVAL) {
        pm_print_indented<"Check scheduled at the end of the current computation (roughly every %u seconds)\n">(
            indent, interval_sec);
    }
    // The minimum decides, not a count.
    if (advertisement->AdvertisementIntervalValues.Minimum != 0) {
        print_delays(indent, "Aggregated", advertisement->AdvertisementIntervalValues);
    } else {
        print_text(indent, "No probes completed");
    }
    if (advertisement->RollingAverage != 0) {
        pm_print_indented<"Rolling average (uSec): %u\n">(indent, advertisement->RollingAverage);
    }
}

void pm_show_next_advertisement_of_probe(const pm_scb_probe_parcel *probe,
                                         const pm_scb_next_advert_parcel *advertisement, std::uint32_t interval_sec,
                                         int indent) {
    if (probe->ProbeNotRunningReason == 0) {
        pm_show_next_advertisement(advertisement, interval_sec, indent);
        return;
    }
    pm_print_heading(indent, "Next advertisement");
    print_text(indent + 2, "Advertisement not scheduled as the probe is not running");
}

void pm_show_probe_results(const pm_scb_probe_results_parcel *results, int indent, const char *title,
                           const char *empty_text) {
    pm_print_heading(indent, title);
    indent += 2;
    if (results->NumberOfPacketsSent == 0) {
        print_text(indent, empty_text);
    } else if (results->NumberOfPacketsReceived == 0) {
        print_text(indent, "No packets received");
    } else {
        print_packets(indent, results->NumberOfPacketsSent, results->NumberOfPacketsReceived);
        print_delays(indent, "Measured", results->ProbeValues);
    }
}

bool pm_show_probe_lines(const pm_scb_probe_parcel *probe, int indent, int schedule_indent) {
    if (probe->ProbeNotRunningReason != 0) {
        print_labelled(indent, "Not running", pm_not_running_reason_str(probe->ProbeNotRunningReason));
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
        print_text(schedule_indent, "TX completed");
    } else {
        print_wait(schedule_indent, NEXT_PACKET, probe->NextPacketSentTimeRemainingInMillisec);
        print_packet_interval(schedule_indent, probe->TXInterval, probe->TXIntervalIsStretched);
    }
    return true;
}

void pm_show_current_computation(const pm_scb_probe_parcel *probe, int indent) {
    pm_print_heading(indent, "Current computation");
    // What comes next steps back to the heading's indent.
    (void)pm_show_probe_lines(probe, indent + 2, indent);
}

void pm_show_probe_samples(const parcel_array<pm_scb_sample_parcel> *samples, int indent) {
    pm_print_heading(indent, "Probe samples");
    indent += 2;
    if (samples->count == 0) {
        print_text(indent, "No History");
        return;
    }
    pm_print_indented<"%-25.25s %14.21s\n">(indent, "Packet Rx Timestamp", "Measured Delay (nsec)");
    for (const pm_scb_sample_parcel &sample : *samples) {
        pm_print_indented<"%-25.25s %14llu\n">(indent, pm_time_str(sample.QueryTimestamp), sample.MeasurementValue);
    }
}

void pm_show_last_error_cc(const pm_scb_control_code *code, int indent) {
    print_control_code(*code, indent, "Last error control code", "Error");
}

void pm_show_last_notification_cc(const pm_scb_control_code *code, int indent) {
    print_control_code(*code, indent, "Last notification control code", "Notification");
}

void pm_show_control_codes(const pm_scb_control_code *notification, const pm_scb_control_code *error, int indent) {
    if (notification->Timestamp != 0) {
        pm_show_last_notification_cc(notification, indent);
    }
    if (error->Timestamp != 0) {
        pm_show_last_error_cc(error, indent);
    }
}

void pm_show_liveness_state(const pm_liveness_state_info_parcel *state, int indent, bool needs_ipinip) {
    const char *const down = needs_ipinip ? "Down (Needs IPinIP support on endpoint)" : "Down";
    print_labelled(indent, "Session State", state->SessionIsUp != 0 ? "Up" : down);
    if (state->LastSessionStateChangeTimestamp != 0) {
        print_labelled(indent, "Last State Change Timestamp", pm_time_str(state->LastSessionStateChangeTimestamp));
    }
    pm_print_indented<"Missed count: %u\n">(indent, state->MissCount);
}

bool pm_needs_ipinip(const char *segment_list_name) {
    return is_empty(segment_list_name) || std::strcmp(segment_list_name, "None") == 0;
}

void pm_show_probe_session(const pm_scb_probe_session_parcel *session, int indent) {
    pm_print<"%*s%s session:\n">(indent, "", pm_probe_type_str(session->ProbeType));
    print_number(indent + 2, "Session ID", session->SessionId);
    if (pm_show_options.internal) {
        print_number(indent + 2, "Trace ID", session->TraceId);
    }
    pm_show_profile_keys(&session->ProfileKey, session->ProfileName, indent + 2, PM_PROFILE_WIDTH);
    pm_print_heading(indent + 2, "Current status");
    indent += 4;
    if (session->ProbeNotRunningReason != 0) {
        print_labelled(indent, "Not running", pm_not_running_reason_str(session->ProbeNotRunningReason));
    } else if (session->NextPacketSentTimeRemainingInMillisec == 0) {
        print_text(indent, "No packet scheduled yet");
    } else {
        // The interval comes first here, unlike in the block of a running probe.
        print_packet_interval(indent, session->TXInterval, session->TXIntervalIsStretched);
        print_wait(indent, NEXT_PACKET, session->NextPacketSentTimeRemainingInMillisec);
    }
}

void pm_show_responder(const pm_record_address *address, const std::uint8_t *hops, int indent, int width) {
    if (address != nullptr) {
        pm_print_label_address("Responder IP", *address, indent, width);
    }
    if (hops != nullptr) {
        pm_print_label_u32(width, indent, "Number of Hops", *hops, "");
    }
}
