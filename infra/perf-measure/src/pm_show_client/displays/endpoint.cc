// See endpoint.h.
#include "pm_show_client/displays/endpoint.h"

#include "pm_show_client/blocks/delay_session.h"
#include "pm_show_client/blocks/endpoint_table.h"
#include "pm_show_client/blocks/segment_list_filter.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_blocks.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "pm_utils/not_running_reason.h"

using namespace pm_session_lines;

namespace {

constexpr int WIDTH = 30;

void print_str(int indent, const char *label, const char *text) { pm_print_label_str(WIDTH, indent, label, text); }
void print_u32(int indent, const char *label, std::uint32_t value) {
    pm_print_label_u32(WIDTH, indent, label, value, "");
}

const char *or_not_set(const char *text) { return is_empty(text) ? "Not set" : text; }

// The first lines of an endpoint in every section.
template <class Endpoint>
void print_name_and_source(const Endpoint &endpoint) {
    pm_print<"Endpoint name: %s\n">(endpoint.EndpointName);
    pm_print_label_address("Source address", endpoint.EndPointSessionSourceAddress, 2, WIDTH);
}

void print_vrf(const char *name) { print_str(2, "VRF name", or_not_set(name)); }

template <class SegmentList>
void print_segment_list_name(const SegmentList &list) {
    print_str(2, "Segment-list", list.SegmentListName);
}

template <class SegmentList>
void print_segments(const SegmentList &list) {
    if (pm_show_options.detail) {
        pm_show_segments(list.Segments, nullptr, nullptr, 4);
    }
}

// Delay --------------------------------------------------------------------------------------------

void print_delay_head(const pm_endpoint_detail &endpoint) {
    print_name_and_source(endpoint);
    pm_print_label_decimal("Destination Port", endpoint.DestinationUDPPort);
    pm_print_label_decimal("Source Port", endpoint.SourceUDPPort);
    print_vrf(endpoint.VRFName);
    if (pm_show_options.internal) {
        pm_print_label_hex("VRF ID", endpoint.VRF_ID);
        pm_print_label_hex("Routing table ID", endpoint.RoutingTableID);
    }
    print_str(2, "Delay-measurement", endpoint.EP_Consolidated_Detail.count != 0 ? "Enabled" : "Disabled");
    print_str(2, "Description", or_not_set(endpoint.Description));
}

void print_delay_list(const pm_endpoint_detail_segment_list_parcel &list) {
    pm_print_empty_line();
    print_segment_list_name(list);
    for (const pm_scb_parcel &session : list.DelayMeasurementSessions) {
        print_segments(list);  // before every session, on purpose
        pm_show_intf_dm_session(&session, 2);
    }
}

void print_delay(const pm_endpoint_detail &endpoint) {
    print_delay_head(endpoint);
    if (pm_show_options.loss_kind) {
        return;
    }
    for (const pm_endpoint_consolidated_detail_parcel &profile : endpoint.EP_Consolidated_Detail) {
        pm_show_profile_keys(&profile.EpConsProfileKey, profile.EpConsProfileName, 2, WIDTH);
        for (const pm_endpoint_detail_segment_list_parcel &list : profile.EP_SegmentLists) {
            if (pm_segment_list_is_wanted(list.SegmentListName)) {
                print_delay_list(list);
            }
        }
    }
}

// Liveness -----------------------------------------------------------------------------------------

void print_liveness_list(const pm_endpoint_liveness_segment_list_parcel &list) {
    print_segment_list_name(list);
    print_segments(list);
    pm_print<"%*s%s session:\n">(2, "", pm_measurement_type_str(PM_MEASUREMENT_LIVENESS));
    print_u32(4, "Session ID", list.SessionId);
    print_u32(4, "Flow-label", list.FlowLabel);
    if (list.LivenessDetectionEnabled != 0) {
        if (list.ProbeNotRunningReason != 0) {
            print_labelled(4, "Session State", "Not running");
            print_text(6, pm_not_running_reason_str(list.ProbeNotRunningReason));
        } else {
            pm_show_liveness_state(&list.EPLivenessInfo, 4, pm_needs_ipinip(list.SegmentListName));
        }
    }
    pm_print_empty_line();
}

void print_liveness(const pm_endpoint_liveness &endpoint) {
    print_name_and_source(endpoint);
    print_vrf(endpoint.VRFName);
    print_str(2, "Liveness Detection", "Enabled");
    if (pm_show_options.loss_kind) {
        return;
    }
    for (const pm_endpoint_consolidated_liveness_parcel &profile : endpoint.EP_Consolidated_Liveness) {
        pm_show_profile_keys(&profile.EpLiveProfileKey, profile.EpLiveProfileName, 2, WIDTH);
        for (const pm_endpoint_liveness_segment_list_parcel &list : profile.EPLivenessSegmentLists) {
            if (pm_segment_list_is_wanted(list.SegmentListName)) {
                print_liveness_list(list);
            }
        }
    }
}

// Probe --------------------------------------------------------------------------------------------

void print_probe(const pm_endpoint_probe &endpoint) {
    print_name_and_source(endpoint);
    print_vrf(endpoint.VRFName);
    print_str(2, "Probe Measurement", "Enabled");
    for (const pm_endpoint_probe_session_parcel &session : endpoint.Sessions) {
        if (pm_segment_list_is_wanted(session.SegmentListName)) {
            pm_print_empty_line();
            print_segment_list_name(session);
            print_segments(session);
            pm_show_probe_session(&session.Session, 2);
        }
    }
}

// The sections -------------------------------------------------------------------------------------

[[nodiscard]] bool is_asked_for(pm_measurement_type_e kind) {
    return pm_show_options.h_value == PM_SHOW_EVERY_KIND || pm_show_options.h_value == static_cast<std::uint32_t>(kind);
}

// Prints a section, as a table or as detail; false when it is not asked for or empty.
template <class Endpoint>
bool print_section(pm_measurement_type_e kind, const parcel_array<Endpoint> &endpoints,
                   void (*print_rows)(const Endpoint &), void (*print_detail)(const Endpoint &)) {
    if (!is_asked_for(kind) || endpoints.count == 0) {
        return false;
    }
    for (const Endpoint &endpoint : endpoints) {
        (pm_show_options.brief ? print_rows : print_detail)(endpoint);
    }
    return true;
}

}  // namespace

int pm_show_endpoint(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &item = *static_cast<const pm_endpoint_common *>(decoded_parcel);
    const bool delay =
        print_section(PM_MEASUREMENT_DELAY, item.EndpointDelay, pm_show_endpoint_delay_rows, print_delay);
    const bool liveness =
        print_section(PM_MEASUREMENT_LIVENESS, item.EndpointLiveness, pm_show_endpoint_liveness_rows, print_liveness);
    const bool probe =
        print_section(PM_MEASUREMENT_PROBE, item.EndpointProbe, pm_show_endpoint_probe_rows, print_probe);
    return delay || liveness || probe ? PM_SHOW_PRINTED : PM_SHOW_NOTHING;
}
