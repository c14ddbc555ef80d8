// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/rsvpte_lsp_session.h"

#include "platform/address.h"
#include "pm_show_client/blocks/advertisement.h"
#include "pm_show_client/blocks/control_codes.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/probe.h"
#include "pm_show_client/blocks/responder.h"
#include "pm_show_client/pm_show_options.h"

namespace {

void print_identity(const pm_rsvpte_lsp_delay_parcel &session, const pm_lines &lines) {
    lines.number("LSP ID", session.LSP_ID);
    lines.text("Source address", inet_ntoa_r(session.LSPSourceIPv4Address));
    lines.number("Session ID", session.SessionId);
    if (pm_show_options.internal) {
        lines.number("Trace ID", session.TraceId);
        lines.number("Local label", session.LocalLabel);
    }
}

}  // namespace

void pm_show_rsvpte_lsp_session(const pm_rsvpte_lsp_delay_parcel *session, int indent, int width) {
    print_identity(*session, {indent, width});
    pm_show_last_advertisement(&session->LastAdvertisementInformation, indent, true);
    pm_show_next_advertisement_of_probe(&session->CurrentProbe, &session->NextAdvertisementInformation,
                                        session->PeriodicAdvertisementIntervalInSec, indent);
    pm_show_probe_results(&session->LastProbeResults, indent, "Last computation", "None");
    pm_show_current_computation(&session->CurrentProbe, indent);
    pm_show_responder(session->ResponderAddress, session->QueryNumberOfHops, indent, width);
    if (pm_show_options.detail) {
        pm_show_probe_samples(&session->ProbeHistory, indent);
    }
    if (pm_show_options.internal) {
        if (session->LastErrorControlCode.Timestamp != 0) {
            pm_show_last_error_cc(&session->LastErrorControlCode, indent);
        }
        // The notification, too, is shown as an error.
        if (session->LastNotificationControlCode.Timestamp != 0) {
            pm_show_last_error_cc(&session->LastNotificationControlCode, indent);
        }
    }
}
