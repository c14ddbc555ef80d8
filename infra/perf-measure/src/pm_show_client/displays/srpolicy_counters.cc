// See srpolicy_counters.h.
#include "pm_show_client/displays/srpolicy_counters.h"

#include "pm_show_client/blocks/counters.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"

using namespace pm_session_lines;

namespace {

constexpr int WIDTH = 30;

void print_str(const char *label, const char *text) { pm_print_indented<"%-26s: %s\n">(6, label, text); }
void print_u32(const char *label, std::uint32_t value) { pm_print_indented<"%-26s: %u\n">(6, label, value); }

// What the records of both kinds of sessions have alike.

template <class CandidatePath>
void print_identity(const CandidatePath &path) {
    pm_print_heading(4, "Candidate-Path");
    print_u32("Instance", path.Instance);
    print_u32("Preference", path.Preference);
    print_str("Protocol-origin", pm_srpolicy_origin_str(path.Origin));
    print_u32("Discriminator", path.Discriminator);
}

template <class SegmentList>
void print_segment_list(const SegmentList &list) {
    print_str("Segment-List", list.SegmentListName);
    pm_show_segments(list.Segments, list.LocalAdjacencySID, list.EndpointNodeSID, 8);
}

template <class AtomicPath>
void print_atomic_path(const AtomicPath &path) {
    pm_print_heading(8, "Atomic path");
    pm_show_hops(path.HopAddress, 10, WIDTH);
    pm_show_labels(path.Labels, 10, WIDTH);
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
        pm_print_counter(12, "Total sent", packets.TotalPacketsSent);
        pm_print_counter(12, "Total received", packets.TotalPacketsReceived);
        pm_print_counter(12, "Total errors", packets.TotalPacketsErrors);
    }
    const pm_npu_notif_counters_parcel &notifications = counters.NPUNotifications;
    pm_print_heading(10, "Notifications");
    pm_print_counter(12, "Liveness up", notifications.LivenessUPNotificatins);
    pm_print_counter(12, "Liveness down", notifications.LivenessDownNotifications);
    // Two further in than its siblings; its colon stands in their column.
    pm_print_counter(14, "Liveness down with TX packet error", notifications.LivenessDownWithTXPacketErrorNotificatins);
}

void print_npu_segment_list(const pm_srpolicy_npu_offload_segment_list_counters_parcel &list) {
    print_segment_list(list);
    if (shows_atomic_paths()) {
        for (const pm_srpolicy_npu_offload_atomic_path_counters_parcel &path : list.NPUAtomicPathCounters) {
            print_atomic_path(path);
            pm_print_label_u32(WIDTH, 10, "NPU number", path.NPU_ID, "");
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
