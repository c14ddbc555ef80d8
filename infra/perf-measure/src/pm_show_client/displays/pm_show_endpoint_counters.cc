// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_endpoint_counters.h"

#include "pm_show_client/blocks/counters.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/segment_list_filter.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"

namespace {

void print_counters(const pm_endpoint_segment_list_counters_parcel &list, int indent) {
    if (list.Counters != nullptr) {
        pm_show_session_counters(list.Counters, indent);
    }
    if (list.LivenessCounters != nullptr) {
        pm_show_endpoint_liveness_counters(list.LivenessCounters, indent);
    }
}

// The counters are at `indent`.
void print_all_counters(const pm_endpoint_segment_list_counters_parcel &list, int indent) {
    print_counters(list, indent);
    if (pm_show_options.internal) {
        // The list's counters again for each atomic entry, not the entry's own.
        for (std::uint32_t entry = 0; entry < list.AtomicCountersData.count; ++entry) {
            pm_print_heading(indent, "Atomic data");
            print_counters(list, indent);
        }
    }
}

void print_segment_list(const pm_endpoint_segment_list_counters_parcel &list) {
    if (pm_session_lines::is_empty(list.SegmentListName)) {  // measured without a segment list: no filter applies
        print_all_counters(list, 4);
    } else if (pm_segment_list_is_wanted(list.SegmentListName)) {
        pm_lines{4, 30}.text("Segment-List", list.SegmentListName);
        pm_show_segments(list.Segments, nullptr, nullptr, 8);
        print_all_counters(list, 6);
    }
}

}  // namespace

int pm_show_endpoint_counters(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &endpoint = *static_cast<const pm_endpoint_counters_parcel *>(decoded_parcel);
    pm_print<"Endpoint name: %s\n">(endpoint.EndpointName);
    if (endpoint.ConsolidatedCountersData.count == 0) {
        pm_print<"%*sNo delay-measurement\n">(2, "");
    }
    for (const pm_endpoint_consolidated_counters_data_parcel &profile : endpoint.ConsolidatedCountersData) {
        for (const pm_endpoint_segment_list_counters_parcel &list : profile.SegmentListCounters) {
            print_segment_list(list);
        }
    }
    return PM_SHOW_PRINTED;
}
