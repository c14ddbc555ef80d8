// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_session.h"

#include "pm_show_client/blocks/atomic_path.h"
#include "pm_show_client/blocks/delay_session.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/liveness.h"
#include "pm_show_client/blocks/probe.h"
#include "pm_show_client/blocks/profile_keys.h"
#include "pm_show_client/blocks/rsvpte_lsp_session.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "schema/pm_records.h"

namespace {

constexpr pm_lines LINES{0, 28};

void print_interface(const pm_session_intf_parcel &session) {
    LINES.text("Interface name", session.InterfaceName);
    LINES.address("Nexthop", session.NextHop);
    pm_show_intf_dm_session(&session.Session, 0);
}

void print_rsvpte(const pm_session_rsvpte_parcel &session) {
    LINES.text("Tunnel name", session.TunnelName);
    pm_show_rsvpte_lsp_session(&session.LSPSession, LINES.indent, LINES.colon);
}

void print_srpolicy(const pm_session_srpolicy_parcel &session) {
    LINES.text("Policy name", session.PolicyName);
    LINES.number("Color", session.Color);
    LINES.address("Endpoint", session.EndPointAddress);
    LINES.number("Instance", session.Instance);
    LINES.number("preference", session.Preference);  // in lower case, unlike its neighbours
    LINES.text("Protocol-origin", pm_srpolicy_origin_str(session.Origin));
    LINES.number("Discriminator", session.Discriminator);
    LINES.text("Segment-list", session.SegmentListName);
    if (session.InternalLabel != PM_NO_INTERNAL_LABEL) {
        LINES.number("Internal label allocated", session.InternalLabel);
    }
    pm_show_atomic_path(&session.AtomicPath, session.AtomicPath.ProbeStartTimeStamp != 0, LINES.indent, LINES.colon);
}

void print_endpoint_liveness(const pm_endpoint_session_liveness &liveness, bool needs_ipinip) {
    constexpr pm_lines ID_LINES = pm_session_lines::identity_lines(2);
    ID_LINES.number("Session ID", liveness.SessionId);
    if (pm_show_options.internal) {
        ID_LINES.number("Trace ID", liveness.TraceId);
    }
    pm_show_profile_keys(&liveness.ProfileKey, liveness.ProfileName, 2, PM_PROFILE_WIDTH);
    pm_show_liveness_state(&liveness.EPLivenessInfo, 2, needs_ipinip);
}

void print_endpoint_measurement(const pm_session_endpoint_parcel &session) {
    if (session.IsProbeSession != 0) {
        if (session.ProbeSession != nullptr) {
            pm_show_probe_session(session.ProbeSession, 0);
        }
    } else if (session.LivenessDetectionEnabled != 0) {
        pm_show_liveness_detection(true, 0);
        if (session.EPSessionLiveness != nullptr) {
            print_endpoint_liveness(*session.EPSessionLiveness, pm_needs_ipinip(session.SegmentListName));
        }
    } else {
        pm_show_liveness_detection(false, 0);
        pm_show_intf_dm_session(&session.Session, 0);
    }
}

// What a hop-by-hop probe brought back.
void print_hop_by_hop(const pm_hbh_parcel *received) {
    if (received == nullptr) {
        pm_print<"No HBH received\n">();
        return;
    }
    constexpr pm_lines TIME_LINES{2, 16};
    constexpr pm_lines HOP_LINES{6, 22};
    pm_print_heading(0, "HBH Info");
    TIME_LINES.text("TX timestamp", pm_time_nsec_str(received->TransmitTime));
    TIME_LINES.text("RX timestamp", pm_time_nsec_str(received->ReceiveTime));
    pm_lines{2, 18}.number("Hops", received->HopInfos.count);
    for (std::uint32_t hop = 0; hop < received->HopInfos.count; ++hop) {
        pm_print<"%*sHop[%u]:\n">(4, "", hop);
        HOP_LINES.number("Interface ID", received->HopInfos[hop].InterfaceID);
        HOP_LINES.number("Timestamp", received->HopInfos[hop].TimeStamp);
    }
}

void print_endpoint(const pm_session_endpoint_parcel &session) {
    LINES.text("Endpoint name", session.EndpointName);
    LINES.address("endpoint", session.EndPointDestAddress);  // these labels are in lower case
    LINES.address("source", session.EndPointSrcAddress);
    LINES.text("vrf", session.VrfName != nullptr ? session.VrfName : "");
    LINES.text("Segment-list", session.SegmentListName);
    print_endpoint_measurement(session);
    if (session.HBHEnabled != 0) {
        print_hop_by_hop(session.HBHInfo);
    }
}

}  // namespace

int pm_show_session(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &item = *static_cast<const pm_session_parcel *>(decoded_parcel);
    const pm_transport_session &session = item.Session;
    LINES.text("Transport type", pm_transport_type_str(session.type));
    LINES.text("Measurement type", pm_measurement_type_str(item.MeasurementType));
    switch (session.type) {
    case PM_TRANSPORT_INTERFACE: print_interface(session.InterfaceSession); break;
    case PM_TRANSPORT_RSVP_TE: print_rsvpte(session.RSVPTETunnelSession); break;
    case PM_TRANSPORT_SR_POLICY: print_srpolicy(session.SRPolicySession); break;
    case PM_TRANSPORT_ENDPOINT: print_endpoint(session.EndpointSession); break;
    default: break;  // nothing is known of another transport's session
    }
    pm_print_empty_line();
    return PM_SHOW_PRINTED;
}
