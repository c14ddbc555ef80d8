// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/delay_session.h"

#include "pm_show_client/blocks/advertisement.h"
#include "pm_show_client/blocks/control_codes.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/probe.h"
#include "pm_show_client/blocks/profile_keys.h"
#include "pm_show_client/blocks/responder.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"

namespace {

constexpr int RESPONDER_WIDTH = 30;

void print_identity(const pm_scb_parcel &session, int indent) {
    const pm_lines lines = pm_session_lines::identity_lines(indent);
    lines.number("Session ID", session.SessionId);
    if (session.IsSrv6 == 1) {
        lines.number("Flow-label", session.FlowLabel);
    }
    if (pm_show_options.internal) {
        lines.number("Trace ID", session.TraceId);
    }
    if (session.TransportType != PM_TRANSPORT_ENDPOINT) {
        pm_show_profile_keys(&session.ProfileKey, session.ProfileName, indent, PM_PROFILE_WIDTH);
    }
}

void print_control_codes(const pm_scb_parcel &session, int indent) {
    if (session.LastNotificationControlCode.Timestamp != 0) {
        pm_print_empty_line();
        pm_show_last_notification_cc(&session.LastNotificationControlCode, indent);
    }
    if (session.LastErrorControlCode.Timestamp != 0) {
        pm_print_empty_line();
        pm_show_last_error_cc(&session.LastErrorControlCode, indent);
    }
}

void print_computation(const pm_scb_parcel &session, int indent) {
    constexpr int HEADING_INDENT = 4;  // whatever the session's
    pm_print_empty_line();
    pm_print_heading(HEADING_INDENT, "Current computation");
    if (!pm_show_probe_lines(&session.CurrentProbe, indent, indent)) {
        return;
    }
    pm_show_responder(session.ResponderAddress, session.QueryNumberOfHops, indent, RESPONDER_WIDTH);
    if (pm_show_options.detail) {
        pm_show_probe_samples(&session.ProbeHistory, indent);
    }
}

}  // namespace

void pm_show_intf_dm_session(const pm_scb_parcel *session, int indent) {
    const char *const measurement = pm_measurement_type_str(session->MeasurementType);
    if (session->MeasurementType == PM_MEASUREMENT_PROBE) {
        pm_print<"%*s%s Invalid session\n">(indent, "", measurement);
        return;
    }
    pm_print<"%*s%s session:\n">(indent, "", measurement);
    print_identity(*session, indent + 2);
    pm_show_last_advertisement(&session->LastAdvertisementInformation, indent + 2, true);
    pm_print_empty_line();
    pm_show_next_advertisement_of_probe(&session->CurrentProbe, &session->NextAdvertisementInformation,
                                        session->PeriodicAdvertisementIntervalInSec, indent + 2);
    print_control_codes(*session, indent + 2);
    print_computation(*session, indent + 4);
}
