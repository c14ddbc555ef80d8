// See srpolicy.h.
#include "pm_show_client/displays/srpolicy.h"

#include "platform/address.h"
#include "pm_show_client/blocks/atomic_path.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_blocks.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/blocks/srpolicy_table.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "pm_utils/value_text.h"

using namespace pm_session_lines;

namespace {

constexpr int WIDTH = 30;

void print_str(int indent, const char *label, const char *text) { pm_print_label_str(WIDTH, indent, label, text); }
void print_u32(int indent, const char *label, std::uint32_t value) {
    pm_print_label_u32(WIDTH, indent, label, value, "");
}

// A policy's own lines -----------------------------------------------------------------------------

void print_policy(const pm_srpolicy_parcel &policy) {
    pm_print<"SR Policy name: %s\n">(policy.PolicyName);
    print_u32(2, "Color", policy.Color);
    pm_print_label_address("SRv6 Encap Source Address", policy.SRv6EncapsulationSourceAddress, 2, WIDTH);
    pm_print_label_address("Endpoint", policy.EndPointAddress, 2, WIDTH);
    if (pm_show_options.internal) {
        pm_print_label_hex("Handle", policy.InterfaceName);
        print_str(2, "Policy to be deleted", pm_true_or_false(policy.ToBeDeleted));
    }
    print_u32(2, "Number of candidate-paths", policy.CandidatePathTotalCount);
}

// A segment list -----------------------------------------------------------------------------------

void print_reverse_path(const pm_srpolicy_segment_list_parcel &list) {
    if (list.ReversePathSegments.count == 0) {
        pm_print<"%*sReverse path segment-List: Not configured\n">(6, "");
        return;
    }
    print_str(6, "Reverse path segment-List", list.ReversePathSegmentListName);
    pm_show_segments(list.ReversePathSegments, nullptr, nullptr, 8);
}

void print_list_identity(const pm_srpolicy_segment_list_parcel &list) {
    print_str(4, "Segment-List", list.SegmentListName);
    pm_show_segments(list.Segments, list.LocalAdjacencySID, list.EndpointNodeSID, 6);
    if (list.InternalLabel != PM_NO_INTERNAL_LABEL) {
        pm_print<"%*sInternal label allocated: %u\n">(6, "", list.InternalLabel);
    }
    pm_print<"%*sSegment List ID: %u\n">(6, "", list.SegmentListID);
    print_reverse_path(list);
    if (pm_show_options.internal) {
        print_str(6, "Segment-list to be deleted", pm_true_or_false(list.ToBeDeleted));
    }
    print_u32(6, "Number of atomic paths", list.AtomicPathTotalCount);
}

void print_list_measurement(const pm_srpolicy_segment_list_parcel &list, bool running) {
    if (list.LivenessDetectionEnabled != 0) {
        print_liveness_detection(6, true);
        pm_show_liveness_state(&list.LivenessDetectionInfo, 8, false);
        return;
    }
    pm_show_last_advertisement(&list.LastAdvertisementInformation, 6, false);
    pm_show_next_advertisement(&list.NextAdvertisementInformation, PM_NO_ADVERTISEMENT_INTERVAL, 6);
    pm_show_probe_results(&list.LastProbeResults, 6, "Last computation", "None");
    pm_show_probe_results(&list.CurrentProbeResults, 6, "Current computation",
                          running ? "Queued, will run in a different probe" : "Not Running");
    print_liveness_detection(6, false);
    if (pm_show_options.internal) {
        pm_show_control_codes(&list.LastNotificationControlCode, &list.LastErrorControlCode, 6);
    }
}

// `running` tells whether the probe of the list's candidate path runs.
void print_segment_list(const pm_srpolicy_segment_list_parcel &list, bool running) {
    pm_print_empty_line();
    print_list_identity(list);
    print_list_measurement(list, running);
    if (pm_show_options.verbose) {
        for (const pm_srpolicy_atomic_path_parcel &path : list.AtomicPaths) {
            pm_print_empty_line();
            pm_show_atomic_path(&path, running, 6, WIDTH);
        }
    }
}

// A candidate path ---------------------------------------------------------------------------------

void print_fast_notification(const pm_srpolicy_candidate_path_parcel &path) {
    pm_print<"%*sFast notification for session down: %s\n">(
        4, "", path.NotificationToFIBEnabled != 0 ? "Enabled" : "Disabled");
    if (path.LastNotificationToFIBTimestamp != 0) {
        pm_print<"%*sLast fast notification timestamp: %s\n">(6, "", pm_time_str(path.LastNotificationToFIBTimestamp));
    } else {
        pm_print<"%*sNo fast notifications have been sent\n">(6, "");
    }
}

void print_path_identity(const pm_srpolicy_candidate_path_parcel &path) {
    pm_print_heading(2, "Candidate-Path");
    print_u32(4, "Instance", path.Instance);
    print_u32(4, "Preference", path.Preference);
    print_str(4, "Protocol-origin", pm_srpolicy_origin_str(path.Origin));
    print_u32(4, "Discriminator", path.Discriminator);
    pm_show_profile_keys(&path.ProfileKey, path.ProfileName, 4, WIDTH);
    if (pm_show_options.internal) {
        print_str(4, "Candidate path to be deleted", pm_true_or_false(path.ToBeDeleted));
    }
    print_str(
        4, "Source address",
        path.SourceAddressV4 != 0 ? inet_ntoa_r(path.SourceAddressV4) : inet6_ntoa_r(path.SourceAddressV6.octets));
    if (pm_show_options.internal) {
        if (path.LocalLabel != 0) {
            print_u32(4, "Local label", path.LocalLabel);
        } else {
            print_str(4, "Local label", "Not set");
        }
        print_fast_notification(path);
    }
    print_u32(4, "Number of segment-lists", path.SegmentListTotalCount);
}

void print_path_measurement(const pm_srpolicy_candidate_path_parcel &path) {
    if (path.LivenessDetectionEnabled != 0) {
        print_liveness_detection(4, true);
        if (pm_show_options.internal) {
            // "Minumum" is what scripts look for.
            pm_print<"%*sMinumum SL Up Required: %s\n">(6, "", pm_count_or_all_str(path.MinimumSLUp));
        }
        pm_show_liveness_state(&path.LivenessDetectionInfo, 6, false);
        return;
    }
    pm_show_last_advertisement(&path.LastAdvertisementInformation, 4, false);
    pm_show_next_advertisement_of_probe(&path.CurrentProbe, &path.NextAdvertisementInformation,
                                        path.PeriodicAdvertisementIntervalInSec, 4);
    pm_show_probe_results(&path.LastProbeResults, 4, "Last computation", "None");
    pm_show_current_computation(&path.CurrentProbe, 4);
    print_liveness_detection(4, false);
    if (pm_show_options.internal) {
        pm_show_control_codes(&path.LastNotificationControlCode, &path.LastErrorControlCode, 4);
    }
}

void print_candidate_path(const pm_srpolicy_candidate_path_parcel &path) {
    pm_print_empty_line();
    print_path_identity(path);
    print_path_measurement(path);
    if (pm_show_options.detail) {
        const bool running = path.CurrentProbe.ProbeStartTimeStamp != 0 && path.CurrentProbe.ProbeNotRunningReason == 0;
        for (const pm_srpolicy_segment_list_parcel &list : path.SegmentLists) {
            print_segment_list(list, running);
        }
    }
}

void print_detail(const pm_srpolicy_parcel &policy) {
    print_policy(policy);
    for (const pm_srpolicy_candidate_path_parcel &path : policy.CandidatePaths) {
        print_candidate_path(path);
    }
}

}  // namespace

int pm_show_srpolicy(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &policy = *static_cast<const pm_srpolicy_parcel *>(decoded_parcel);
    if (!pm_show_options.brief) {
        print_detail(policy);
        return PM_SHOW_PRINTED;
    }
    switch (pm_show_options.h_value) {
    case PM_MEASUREMENT_DELAY:
    case PM_SHOW_EVERY_KIND: pm_show_srpolicy_delay_row(policy); break;
    case PM_MEASUREMENT_LIVENESS: pm_show_srpolicy_liveness_row(policy); break;
    default: break;
    }
    return PM_SHOW_PRINTED;
}
