// See history_displays.h.
#include "pm_show_client/displays/history_displays.h"

#include "pm_show_client/blocks/history.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/segment_list_filter.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_utils/measurement_names.h"

using namespace pm_session_lines;

namespace {

constexpr int WIDTH = 30;

void print_str(int indent, const char *label, const char *text) {
    pm_print_indented<"%-26s: %s\n">(indent, label, text);
}
void print_u32(int indent, const char *label, std::uint32_t value) {
    pm_print_indented<"%-26s: %u\n">(indent, label, value);
}

void print_atomic_path(const pm_srpolicy_history_atomic_path_parcel &path) {
    pm_print_empty_line();
    pm_print_heading(6, "Atomic path");
    pm_show_hops(path.HopAddress, 8, WIDTH);
    print_history_sample_union(&path.HistoryInfo, 8, 0);
}

void print_segment_list(const pm_srpolicy_history_segment_list_parcel &list) {
    pm_print_empty_line();
    print_str(4, "Segment-List", list.SegmentListName);
    pm_show_segments(list.Segments, list.LocalAdjacencySID, list.EndpointNodeSID, 6);
    print_history_sample_union(&list.HistoryInfo, 6, 0);
    for (const pm_srpolicy_history_atomic_path_parcel &path : list.AtomicPathsHistory) {
        print_atomic_path(path);
    }
}

void print_candidate_path(const pm_srpolicy_history_candidate_path_parcel &candidate) {
    pm_print_empty_line();
    pm_print_heading(2, "Candidate-Path");
    print_u32(4, "Preference", candidate.Preference);
    print_str(4, "Protocol-origin", pm_srpolicy_origin_str(candidate.Origin));
    print_u32(4, "Discriminator", candidate.Discriminator);
    print_history_sample_union(&candidate.HistoryInfo, 4, PM_HISTORY_WITH_NOTIFICATIONS);
    for (const pm_srpolicy_history_segment_list_parcel &list : candidate.SegmentListsHistory) {
        print_segment_list(list);
    }
}

}  // namespace

int pm_show_intf_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &history = *static_cast<const pm_intf_history_parcel *>(decoded_parcel);
    pm_print<"Interface Name: %s (ifh: 0x%x)\n">(history.InterfaceName, history.InterfaceHandle);
    print_history_sample_union(&history.HistoryInfo, 0, 0);
    for (const pm_intf_history_parcel &member : history.BundleMembers) {
        pm_print<"Bundle member name: %s (ifh: 0x%x)\n">(member.InterfaceName, member.InterfaceHandle);
        print_history_sample_union(&member.HistoryInfo, 2, 0);
    }
    return PM_SHOW_PRINTED;
}

int pm_show_srpolicy_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &history = *static_cast<const pm_srpolicy_history_parcel *>(decoded_parcel);
    pm_print<"SR Policy name: %s\n">(history.PolicyName);
    pm_print_label_u32(WIDTH, 2, "Color", history.Color, "");
    pm_print_label_address("Endpoint", history.EndPointAddress, 2, WIDTH);
    for (const pm_srpolicy_history_candidate_path_parcel &candidate : history.CandidatePathsHistory) {
        print_candidate_path(candidate);
    }
    return PM_SHOW_PRINTED;
}

int pm_show_rsvpte_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &history = *static_cast<const pm_rsvpte_history_parcel *>(decoded_parcel);
    pm_print<"Tunnel name: %s\n">(history.TunnelName);
    for (const pm_rsvpte_lsp_history_parcel &lsp : history.LSPList) {
        pm_print_label_decimal("LSP ID", lsp.LSP_ID);
        print_history_sample_union(&lsp.HistoryUnion, 4, 0);
    }
    return PM_SHOW_PRINTED;
}

int pm_show_endpoint_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &history = *static_cast<const pm_endpoint_history_parcel *>(decoded_parcel);
    pm_print<"Endpoint name: %s\n">(history.EndpointName);
    pm_print_label_str(WIDTH, 2, "vrf", history.VRFName != nullptr ? history.VRFName : "");
    pm_print_label_address("endpoint", history.EndPointAddress, 2, WIDTH);
    pm_print_label_address("source", history.EndPointSessionSourceAddress, 2, WIDTH);
    for (const pm_endpoint_history_segment_list_parcel &list : history.EP_SegmentListsHistory) {
        if (pm_segment_list_is_wanted(list.SegmentListName)) {
            pm_print_empty_line();
            print_str(2, "Segment-List", list.SegmentListName);
            pm_show_segments(list.Segments, nullptr, nullptr, 4);
            print_history_sample_union(&list.HistoryInfo, 4, 0);
        }
    }
    return PM_SHOW_PRINTED;
}

int pm_show_endpoint_live_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    if (static_cast<const pm_endpoint_history_parcel *>(decoded_parcel)->EPLivenessDetectionEnabled == 0) {
        return PM_SHOW_NOTHING;
    }
    return pm_show_endpoint_history(decoded_parcel);
}
