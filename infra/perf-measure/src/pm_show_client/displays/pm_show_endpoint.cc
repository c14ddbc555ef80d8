// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_endpoint.h"

#include "pm_show_client/blocks/delay_session.h"
#include "pm_show_client/blocks/endpoint_table.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/liveness.h"
#include "pm_show_client/blocks/probe.h"
#include "pm_show_client/blocks/profile_keys.h"
#include "pm_show_client/blocks/segment_list_filter.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "pm_utils/not_running_reason.h"
#include "schema/pm_records.h"

using namespace pm_session_lines;

namespace {

constexpr int COLON = 30;
constexpr pm_lines LINES{2, COLON};

const char *or_not_set(const char *text) { return is_empty(text) ? "Not set" : text; }

// The first lines of an endpoint in every section.
template <class Endpoint>
void print_name_and_source(const Endpoint &endpoint) {
    pm_print<"Endpoint name: %s\n">(endpoint.EndpointName);
    LINES.address("Source address", endpoint.EndPointSessionSourceAddress);
}

void print_vrf(const char *name) { LINES.text("VRF name", or_not_set(name)); }

template <class SegmentList>
void print_segment_list_name(const SegmentList &list) {
    LINES.text("Segment-list", list.SegmentListName);
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
    LINES.number("Destination Port", endpoint.DestinationUDPPort);
    LINES.number("Source Port", endpoint.SourceUDPPort);
    print_vrf(endpoint.VRFName);
    if (pm_show_options.internal) {
        LINES.padded_hex("VRF ID", endpoint.VRF_ID);
        LINES.padded_hex("Routing table ID", endpoint.RoutingTableID);
    }
    LINES.enabled("Delay-measurement", endpoint.EP_Consolidated_Detail.count != 0);
    LINES.text("Description", or_not_set(endpoint.Description));
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
        pm_show_profile_keys(&profile.EpConsProfileKey, profile.EpConsProfileName, 2, COLON);
        for (const pm_endpoint_detail_segment_list_parcel &list : profile.EP_SegmentLists) {
            if (pm_segment_list_is_wanted(list.SegmentListName)) {
                print_delay_list(list);
            }
        }
    }
}

// Liveness -----------------------------------------------------------------------------------------

void print_liveness_list(const pm_endpoint_liveness_segment_list_parcel &list) {
    constexpr pm_lines SESSION_LINES{4, COLON};
    print_segment_list_name(list);
    print_segments(list);
    pm_print<"%*s%s session:\n">(2, "", pm_measurement_type_str(PM_MEASUREMENT_LIVENESS));
    SESSION_LINES.number("Session ID", list.SessionId);
    SESSION_LINES.number("Flow-label", list.FlowLabel);
    if (list.LivenessDetectionEnabled != 0) {
        if (list.ProbeNotRunningReason != 0) {
            pm_plain_lines(4).text("Session State", "Not running");
            print_sentence(6, pm_not_running_reason_str(list.ProbeNotRunningReason));
        } else {
            pm_show_liveness_state(&list.EPLivenessInfo, 4, pm_needs_ipinip(list.SegmentListName));
        }
    }
    pm_print_empty_line();
}

void print_liveness(const pm_endpoint_liveness &endpoint) {
    print_name_and_source(endpoint);
    print_vrf(endpoint.VRFName);
    LINES.text("Liveness Detection", "Enabled");
    if (pm_show_options.loss_kind) {
        return;
    }
    for (const pm_endpoint_consolidated_liveness_parcel &profile : endpoint.EP_Consolidated_Liveness) {
        pm_show_profile_keys(&profile.EpLiveProfileKey, profile.EpLiveProfileName, 2, COLON);
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
    LINES.text("Probe Measurement", "Enabled");
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
