// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_endpoint_history.h"

#include "pm_show_client/blocks/history.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/segment_list_filter.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

namespace {

void print_endpoint(const pm_endpoint_history_parcel &history) {
    constexpr pm_lines LINES{2, 30};
    pm_print<"Endpoint name: %s\n">(history.EndpointName);
    LINES.text("vrf", history.VRFName != nullptr ? history.VRFName : "");
    LINES.address("endpoint", history.EndPointAddress);
    LINES.address("source", history.EndPointSessionSourceAddress);
}

void print_segment_list(const pm_endpoint_history_segment_list_parcel &list) {
    pm_print_empty_line();
    pm_lines{2, 28}.text("Segment-List", list.SegmentListName);
    pm_show_segments(list.Segments, nullptr, nullptr, 4);
    print_history_sample_union(&list.HistoryInfo, 4, 0);
}

}  // namespace

int pm_show_endpoint_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &history = *static_cast<const pm_endpoint_history_parcel *>(decoded_parcel);
    print_endpoint(history);
    for (const pm_endpoint_history_segment_list_parcel &list : history.EP_SegmentListsHistory) {
        if (pm_segment_list_is_wanted(list.SegmentListName)) {
            print_segment_list(list);
        }
    }
    return PM_SHOW_PRINTED;
}
