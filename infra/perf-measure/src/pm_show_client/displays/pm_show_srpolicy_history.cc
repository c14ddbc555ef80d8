// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_srpolicy_history.h"

#include "pm_show_client/blocks/history.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_utils/measurement_names.h"
#include "schema/pm_records.h"

namespace {

constexpr int COLON = 30;

void print_policy(const pm_srpolicy_history_parcel &history) {
    constexpr pm_lines LINES{2, COLON};
    pm_print<"SR Policy name: %s\n">(history.PolicyName);
    LINES.number("Color", history.Color);
    LINES.address("Endpoint", history.EndPointAddress);
}

void print_atomic_path(const pm_srpolicy_history_atomic_path_parcel &path) {
    pm_print_empty_line();
    pm_print_heading(6, "Atomic path");
    pm_show_hops(path.HopAddress, 8, COLON);
    print_history_sample_union(&path.HistoryInfo, 8, 0);
}

void print_segment_list(const pm_srpolicy_history_segment_list_parcel &list) {
    pm_print_empty_line();
    pm_lines{4, COLON}.text("Segment-List", list.SegmentListName);
    pm_show_segments(list.Segments, list.LocalAdjacencySID, list.EndpointNodeSID, 6);
    print_history_sample_union(&list.HistoryInfo, 6, 0);
    for (const pm_srpolicy_history_atomic_path_parcel &path : list.AtomicPathsHistory) {
        print_atomic_path(path);
    }
}

void print_candidate_path(const pm_srpolicy_history_candidate_path_parcel &candidate) {
    constexpr pm_lines LINES{4, COLON};
    pm_print_empty_line();
    pm_print_heading(2, "Candidate-Path");
    LINES.number("Preference", candidate.Preference);
    LINES.text("Protocol-origin", pm_srpolicy_origin_str(candidate.Origin));
    LINES.number("Discriminator", candidate.Discriminator);
    print_history_sample_union(&candidate.HistoryInfo, 4, PM_HISTORY_WITH_NOTIFICATIONS);
    for (const pm_srpolicy_history_segment_list_parcel &list : candidate.SegmentListsHistory) {
        print_segment_list(list);
    }
}

}  // namespace

int pm_show_srpolicy_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &history = *static_cast<const pm_srpolicy_history_parcel *>(decoded_parcel);
    print_policy(history);
    for (const pm_srpolicy_history_candidate_path_parcel &candidate : history.CandidatePathsHistory) {
        print_candidate_path(candidate);
    }
    return PM_SHOW_PRINTED;
}
