// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/endpoint_table.h"

#include <cstring>

#include "platform/bounded.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/segment_list_filter.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/blocks/tables.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/not_running_reason.h"
#include "pm_utils/value_text.h"

namespace {

constexpr std::size_t NAME_LENGTH = 64;       // of an endpoint, as its header states it
constexpr std::size_t LIST_NAME_LENGTH = 32;  // of a segment list, likewise; names are cut one before
constexpr std::size_t COPY_LIMIT = 256;

// The name that the rows of an endpoint begin with. One of NAME_LENGTH characters or more does not fit and is empty.
struct row_name {
    char text[NAME_LENGTH];
};

row_name row_name_of(const char *endpoint) {
    row_name name;
    strncpy_s(name.text, sizeof name.text, pm_truncate_name(endpoint, NAME_LENGTH), COPY_LIMIT);
    return name;
}

void print_name(const row_name &name) { pm_print<" %-66.66s ">(name.text); }

// A row that continues the endpoint of the row before.
void print_continuation() { pm_print<"\n%-67.67s ">(""); }

void print_list_name(const char *name) { pm_print<"%-33.33s ">(pm_truncate_name(name, LIST_NAME_LENGTH - 1)); }

// The columns of names that the tables begin with.
void print_header_names() {
    char name[PM_LINE_SIZE];
    char list_name[PM_LINE_SIZE];
    pm_format_text<"Endpoint Name(%d char)">(name, sizeof name, NAME_LENGTH);
    pm_format_text<"SL Name(%d char)">(list_name, sizeof list_name, LIST_NAME_LENGTH);
    pm_print<" %-66.66s %-33.33s ">(static_cast<const char *>(name), static_cast<const char *>(list_name));
}

void print_delay_header() {
    print_header_names();
    pm_print<"%-11.11s %-43.43s\n">("Tx/Rx", "Avg/Min/Max/Variance (uSec)");
}

void print_state_header() {
    print_header_names();
    pm_print<"%-13.13s %-30.30s\n">("Session State", "TimeStamp");  // "Timestamp" in the table of SR policies
}

// Calls `print_rows` for each list that the filter wants, with a line break after the rows unless the list is
// the last of its profile or the one before it was skipped.
template <class SegmentList, class PrintRows>
void for_each_wanted_list(const parcel_array<SegmentList> &lists, PrintRows print_rows) {
    bool skipped_before = false;
    for (std::uint32_t i = 0; i < lists.count; ++i) {
        if (!pm_segment_list_is_wanted(lists[i].SegmentListName)) {
            skipped_before = true;
            continue;
        }
        print_rows(lists[i]);
        if (i + 1 != lists.count && !skipped_before) {
            pm_print_empty_line();
        }
        skipped_before = false;
    }
}

void print_delay_list(const pm_endpoint_detail_segment_list_parcel &list, const row_name &name) {
    for (const pm_scb_parcel &session : list.DelayMeasurementSessions) {
        if (&session == list.DelayMeasurementSessions.begin()) {
            print_name(name);
        } else {
            print_continuation();
        }
        print_list_name(list.SegmentListName);
        pm_print_delay_cells(session.CurrentProbe);
    }
}

void print_liveness_cells(const pm_endpoint_liveness_segment_list_parcel &list) {
    if (list.ProbeNotRunningReason != 0) {
        pm_print_not_running_cell(list.ProbeNotRunningReason);
    } else if (list.LivenessDetectionEnabled == 0) {
        pm_print_wide_cell("Liveness-Detection is disabled");
    } else {
        const pm_liveness_state_info_parcel &state = list.EPLivenessInfo;
        pm_print<"%-13.13s %-30.30s">(state.SessionIsUp != 0 ? "Up" : "Down",
                                      pm_time_str(state.LastSessionStateChangeTimestamp));
    }
}

// Whether the filter wants a session. A session without a segment list's name cannot be compared.
bool is_wanted(const pm_endpoint_probe_session_parcel &session) {
    if (!pm_show_options.n_set) {
        return true;
    }
    int difference = 0;
    if (strcmp_s(pm_show_options.n_text, std::strlen(pm_show_options.n_text), session.SegmentListName, &difference) !=
        ERRCODE_SUCCESS) {
        pm_print_error<"Failed to check segment list name filter">();
        return false;
    }
    return difference == 0;
}

void print_probe_state(const pm_scb_probe_session_parcel &session) {
    if (session.ProbeNotRunningReason != 0) {
        pm_print<"Not running: %s">(pm_not_running_reason_str(session.ProbeNotRunningReason));
    } else if (session.NextPacketSentTimeRemainingInMillisec != 0) {
        const pm_duration wait = pm_duration_of(session.NextPacketSentTimeRemainingInMillisec);
        pm_print<"%s %u.%u seconds">(pm_session_lines::NEXT_PACKET, wait.seconds, wait.msec);
    } else {
        pm_print<"No packet scheduled yet">();
    }
}

}  // namespace

void pm_show_endpoint_delay_rows(const pm_endpoint_detail &endpoint) {
    pm_print_table_header(print_delay_header);
    const row_name name = row_name_of(endpoint.EndpointName);
    if (endpoint.EP_Consolidated_Detail.count == 0) {
        print_name(name);
        pm_print_no_session();
        return;
    }
    // There is no line break between two profiles: the next one's first row continues the line.
    for (const pm_endpoint_consolidated_detail_parcel &profile : endpoint.EP_Consolidated_Detail) {
        for_each_wanted_list(profile.EP_SegmentLists,
                             [&](const pm_endpoint_detail_segment_list_parcel &list) { print_delay_list(list, name); });
    }
}

void pm_show_endpoint_liveness_rows(const pm_endpoint_liveness &endpoint) {
    pm_print_table_header(print_state_header);
    const row_name name = row_name_of(endpoint.EndpointName);
    if (endpoint.EP_Consolidated_Liveness.count == 0) {
        print_name(name);
        pm_print_no_session();
        return;
    }
    for (const pm_endpoint_consolidated_liveness_parcel &profile : endpoint.EP_Consolidated_Liveness) {
        const bool is_first = &profile == endpoint.EP_Consolidated_Liveness.begin();
        for_each_wanted_list(profile.EPLivenessSegmentLists, [&](const pm_endpoint_liveness_segment_list_parcel &list) {
            if (is_first) {
                print_name(name);
            } else {
                pm_print<"%-34.34s ">("");  // not as wide as the name, on purpose
            }
            print_list_name(list.SegmentListName);
            print_liveness_cells(list);
        });
    }
}

void pm_show_endpoint_probe_rows(const pm_endpoint_probe &endpoint) {
    pm_print_table_header(print_state_header);
    const row_name name = row_name_of(endpoint.EndpointName);
    if (endpoint.Sessions.count == 0) {
        print_name(name);
        pm_print_no_session();
        return;
    }
    for (const pm_endpoint_probe_session_parcel &session : endpoint.Sessions) {
        if (!is_wanted(session)) {
            continue;
        }
        // The name is in the row of the first session only, and nowhere when the filter skips that.
        if (&session == endpoint.Sessions.begin()) {
            print_name(name);
        } else {
            print_continuation();
        }
        print_list_name(session.SegmentListName);
        print_probe_state(session.Session);
    }
}
