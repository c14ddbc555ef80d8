// See session.h.
#include "pm_show_client/displays/session.h"

#include "pm_show_client/blocks/atomic_path.h"
#include "pm_show_client/blocks/delay_session.h"
#include "pm_show_client/blocks/rsvpte_lsp_session.h"
#include "pm_show_client/blocks/session_blocks.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"

using namespace pm_session_lines;

namespace {

constexpr int WIDTH = 28;

void print_str(const char *label, const char *text) { pm_print_label_str(WIDTH, 0, label, text); }
void print_u32(const char *label, std::uint32_t value) { pm_print_label_u32(WIDTH, 0, label, value, ""); }
void print_address(const char *label, const pm_record_address &address) {
    pm_print_label_address(label, address, 0, WIDTH);
}

void print_interface(const pm_session_intf_parcel &session) {
    print_str("Interface name", session.InterfaceName);
    print_address("Nexthop", session.NextHop);
    pm_show_intf_dm_session(&session.Session, 0);
}

void print_rsvpte(const pm_session_rsvpte_parcel &session) {
    print_str("Tunnel name", session.TunnelName);
    pm_show_rsvpte_lsp_session(&session.LSPSession, 0, WIDTH);
}

void print_srpolicy(const pm_session_srpolicy_parcel &session) {
    print_str("Policy name", session.PolicyName);
    print_u32("Color", session.Color);
    print_address("Endpoint", session.EndPointAddress);
    print_u32("Instance", session.Instance);
    print_u32("preference", session.Preference);  // in lower case, unlike its neighbours
    print_str("Protocol-origin", pm_srpolicy_origin_str(session.Origin));
    print_u32("Discriminator", session.Discriminator);
    print_str("Segment-list", session.SegmentListName);
    if (session.InternalLabel != PM_NO_INTERNAL_LABEL) {
        print_u32("Internal label allocated", session.InternalLabel);
    }
    pm_show_atomic_path(&session.AtomicPath, session.AtomicPath.ProbeStartTimeStamp != 0, 0, WIDTH);
}

void print_endpoint_liveness(const pm_endpoint_session_liveness &liveness, bool needs_ipinip) {
    print_number(2, "Session ID", liveness.SessionId);
    if (pm_show_options.internal) {
        print_number(2, "Trace ID", liveness.TraceId);
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
        print_liveness_detection(0, true);
        if (session.EPSessionLiveness != nullptr) {
            print_endpoint_liveness(*session.EPSessionLiveness, pm_needs_ipinip(session.SegmentListName));
        }
    } else {
        print_liveness_detection(0, false);
        pm_show_intf_dm_session(&session.Session, 0);
    }
}

void print_hop_number(int indent, const char *label, std::uint32_t value) {
    pm_print<"%*s%-16s: %u\n">(indent, "", label, value);
}

// What a hop-by-hop probe brought back. The colons of the times stand in column 16, that of the count in 18 and
// those of a hop in 22.
void print_hop_by_hop(const pm_hbh_parcel *received) {
    if (received == nullptr) {
        pm_print<"No HBH received\n">();
        return;
    }
    pm_print_heading(0, "HBH Info");
    pm_print_label_str(16, 2, "TX timestamp", pm_time_nsec_str(received->TransmitTime));
    pm_print_label_str(16, 2, "RX timestamp", pm_time_nsec_str(received->ReceiveTime));
    print_hop_number(2, "Hops", received->HopInfos.count);
    for (std::uint32_t hop = 0; hop < received->HopInfos.count; ++hop) {
        pm_print<"%*sHop[%u]:\n">(4, "", hop);
        print_hop_number(6, "Interface ID", received->HopInfos[hop].InterfaceID);
        print_hop_number(6, "Timestamp", received->HopInfos[hop].TimeStamp);
    }
}

void print_endpoint(const pm_session_endpoint_parcel &session) {
    print_str("Endpoint name", session.EndpointName);
    print_address("endpoint", session.EndPointDestAddress);  // these labels are in lower case
    print_address("source", session.EndPointSrcAddress);
    print_str("vrf", session.VrfName != nullptr ? session.VrfName : "");
    print_str("Segment-list", session.SegmentListName);
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
    print_str("Transport type", pm_transport_type_str(session.type));
    print_str("Measurement type", pm_measurement_type_str(item.MeasurementType));
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
