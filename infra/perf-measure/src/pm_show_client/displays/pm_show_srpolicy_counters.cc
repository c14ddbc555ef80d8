// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_srpolicy_counters.h"

#include "pm_show_client/blocks/counters.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "schema/pm_records.h"

namespace {

constexpr pm_lines LINES{6, 32};
constexpr pm_lines PATH_LINES{10, 30};  // of an atomic path

// What the records of both kinds of sessions have alike.

template <class CandidatePath>
void print_identity(const CandidatePath &path) {
    pm_print_heading(4, "Candidate-Path");
    LINES.number("Instance", path.Instance);
    LINES.number("Preference", path.Preference);
    LINES.text("Protocol-origin", pm_srpolicy_origin_str(path.Origin));
    LINES.number("Discriminator", path.Discriminator);
}

template <class SegmentList>
void print_segment_list(const SegmentList &list) {
    LINES.text("Segment-List", list.SegmentListName);
    pm_show_segments(list.Segments, list.LocalAdjacencySID, list.EndpointNodeSID, 8);
}

template <class AtomicPath>
void print_atomic_path(const AtomicPath &path) {
    pm_print_heading(8, "Atomic path");
    pm_show_hops(path.HopAddress, PATH_LINES.indent, PATH_LINES.colon);
    pm_show_labels(path.Labels, PATH_LINES.indent, PATH_LINES.colon);
}

bool shows_atomic_paths() { return pm_show_options.verbose || pm_show_options.internal; }

// Sessions on the CPU ------------------------------------------------------------------------------

template <class Counted>
void print_counters(const Counted &counted, int indent) {
    if (counted.Counters != nullptr) {
        pm_show_session_counters(counted.Counters, indent);
    }
    if (counted.LivenessCounters != nullptr) {
        pm_show_srpolicy_liveness_counters(counted.LivenessCounters, indent);
    }
}

void print_cpu_segment_list(const pm_srpolicy_segment_list_counters_parcel &list) {
    print_segment_list(list);
    print_counters(list, 8);
    if (shows_atomic_paths()) {
        for (const pm_srpolicy_atomic_path_counters_parcel &path : list.AtomicPathCounters) {
            print_atomic_path(path);
            print_counters(path, 10);
        }
    }
}

void print_cpu_sessions(const parcel_array<pm_srpolicy_candidate_path_counters_parcel> &paths) {
    pm_print_heading(2, "CPU Sessions");
    for (const pm_srpolicy_candidate_path_counters_parcel &path : paths) {
        print_identity(path);
        print_counters(path, 6);
        for (const pm_srpolicy_segment_list_counters_parcel &list : path.SegmentListCounters) {
            print_cpu_segment_list(list);
        }
    }
}

// Sessions on network processors -------------------------------------------------------------------

void print_npu_counters(const pm_npu_counters_info_parcel &counters) {
    if (pm_show_options.internal) {
        const pm_npu_session_packet_counters_parcel &packets = counters.NPUSessionPacketsCounters;
        pm_print_heading(10, "Packets");
        pm_lines_at(12).number("Total sent", packets.TotalPacketsSent);
        pm_lines_at(12).number("Total received", packets.TotalPacketsReceived);
        pm_lines_at(12).number("Total errors", packets.TotalPacketsErrors);
    }
    const pm_npu_notif_counters_parcel &notifications = counters.NPUNotifications;
    pm_print_heading(10, "Notifications");
    pm_lines_at(12).number("Liveness up", notifications.LivenessUPNotificatins);
    pm_lines_at(12).number("Liveness down", notifications.LivenessDownNotifications);
    // Indented by two more than its siblings; its colon is in their column.
    pm_lines_at(14).number("Liveness down with TX packet error",
                           notifications.LivenessDownWithTXPacketErrorNotificatins);
}

void print_npu_segment_list(const pm_srpolicy_npu_offload_segment_list_counters_parcel &list) {
    print_segment_list(list);
    if (shows_atomic_paths()) {
        for (const pm_srpolicy_npu_offload_atomic_path_counters_parcel &path : list.NPUAtomicPathCounters) {
            print_atomic_path(path);
            PATH_LINES.number("NPU number", path.NPU_ID);
            print_npu_counters(path.Counters);
        }
    }
}

void print_npu_sessions(const parcel_array<pm_srpolicy_npu_offload_candidate_path_counters_parcel> &paths) {
    pm_print_heading(2, "NPU Offloaded Sessions");
    for (const pm_srpolicy_npu_offload_candidate_path_counters_parcel &path : paths) {
        print_identity(path);
        for (const pm_srpolicy_npu_offload_segment_list_counters_parcel &list : path.NPUSegmentListCounters) {
            print_npu_segment_list(list);
        }
    }
}

}  // namespace

int pm_show_srpolicy_counters(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &policy = *static_cast<const pm_srpolicy_counters_parcel *>(decoded_parcel);
    const bool on_cpu = policy.CandidateCounters.count != 0;
    const bool on_npu = policy.NPUOffloadedCandidatePathCounters.count != 0;
    pm_print<"SR Policy name: %s\n">(policy.PolicyName);
    if (!on_cpu && !on_npu) {
        pm_print<"%*sNo Candidate-Paths\n">(2, "");
    }
    if (on_cpu) {
        print_cpu_sessions(policy.CandidateCounters);
    }
    if (on_cpu && on_npu) {
        pm_print_empty_line();
    }
    if (on_npu) {
        print_npu_sessions(policy.NPUOffloadedCandidatePathCounters);
    }
    return PM_SHOW_PRINTED;
}
