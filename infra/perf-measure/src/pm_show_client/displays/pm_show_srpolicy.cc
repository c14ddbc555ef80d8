// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_srpolicy.h"

#include "platform/address.h"
#include "pm_show_client/blocks/advertisement.h"
#include "pm_show_client/blocks/atomic_path.h"
#include "pm_show_client/blocks/control_codes.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/liveness.h"
#include "pm_show_client/blocks/probe.h"
#include "pm_show_client/blocks/profile_keys.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/blocks/srpolicy_table.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "pm_utils/value_text.h"
#include "schema/pm_records.h"

namespace {

constexpr int COLON = 30;
constexpr pm_lines POLICY_LINES{2, COLON};
constexpr pm_lines PATH_LINES{4, COLON};  // of a candidate path
constexpr pm_lines LIST_LINES{6, COLON};  // of a segment list

// A policy's own lines -----------------------------------------------------------------------------

void print_policy(const pm_srpolicy_parcel &policy) {
    pm_print<"SR Policy name: %s\n">(policy.PolicyName);
    POLICY_LINES.number("Color", policy.Color);
    POLICY_LINES.address("SRv6 Encap Source Address", policy.SRv6EncapsulationSourceAddress);
    POLICY_LINES.address("Endpoint", policy.EndPointAddress);
    if (pm_show_options.internal) {
        POLICY_LINES.padded_hex("Handle", policy.InterfaceName);
        POLICY_LINES.flag("Policy to be deleted", policy.ToBeDeleted);
    }
    POLICY_LINES.number("Number of candidate-paths", policy.CandidatePathTotalCount);
}

// A segment list -----------------------------------------------------------------------------------

void print_reverse_path(const pm_srpolicy_segment_list_parcel &list) {
    if (list.ReversePathSegments.count == 0) {
        pm_plain_lines(6).text("Reverse path segment-List", "Not configured");
        return;
    }
    LIST_LINES.text("Reverse path segment-List", list.ReversePathSegmentListName);
    pm_show_segments(list.ReversePathSegments, nullptr, nullptr, 8);
}

void print_list_identity(const pm_srpolicy_segment_list_parcel &list) {
    PATH_LINES.text("Segment-List", list.SegmentListName);
    pm_show_segments(list.Segments, list.LocalAdjacencySID, list.EndpointNodeSID, 6);
    if (list.InternalLabel != PM_NO_INTERNAL_LABEL) {
        pm_plain_lines(6).number("Internal label allocated", list.InternalLabel);
    }
    pm_plain_lines(6).number("Segment List ID", list.SegmentListID);
    print_reverse_path(list);
    if (pm_show_options.internal) {
        LIST_LINES.flag("Segment-list to be deleted", list.ToBeDeleted);
    }
    LIST_LINES.number("Number of atomic paths", list.AtomicPathTotalCount);
}

void print_list_measurement(const pm_srpolicy_segment_list_parcel &list, bool running) {
    if (list.LivenessDetectionEnabled != 0) {
        pm_show_liveness_detection(true, 6);
        pm_show_liveness_state(&list.LivenessDetectionInfo, 8, false);
        return;
    }
    pm_show_last_advertisement(&list.LastAdvertisementInformation, 6, false);
    pm_show_next_advertisement(&list.NextAdvertisementInformation, PM_NO_ADVERTISEMENT_INTERVAL, 6);
    pm_show_probe_results(&list.LastProbeResults, 6, "Last computation", "None");
    pm_show_probe_results(&list.CurrentProbeResults, 6, "Current computation",
                          running ? "Queued, will run in a different probe" : "Not Running");
    pm_show_liveness_detection(false, 6);
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
            pm_show_atomic_path(&path, running, 6, COLON);
        }
    }
}

// A candidate path ---------------------------------------------------------------------------------

void print_fast_notification(const pm_srpolicy_candidate_path_parcel &path) {
    pm_plain_lines(4).enabled("Fast notification for session down", path.NotificationToFIBEnabled);
    if (path.LastNotificationToFIBTimestamp != 0) {
        pm_plain_lines(6).text("Last fast notification timestamp", pm_time_str(path.LastNotificationToFIBTimestamp));
    } else {
        pm_session_lines::print_sentence(6, "No fast notifications have been sent");
    }
}

void print_path_identity(const pm_srpolicy_candidate_path_parcel &path) {
    pm_print_heading(2, "Candidate-Path");
    PATH_LINES.number("Instance", path.Instance);
    PATH_LINES.number("Preference", path.Preference);
    PATH_LINES.text("Protocol-origin", pm_srpolicy_origin_str(path.Origin));
    PATH_LINES.number("Discriminator", path.Discriminator);
    pm_show_profile_keys(&path.ProfileKey, path.ProfileName, 4, COLON);
    if (pm_show_options.internal) {
        PATH_LINES.flag("Candidate path to be deleted", path.ToBeDeleted);
    }
    PATH_LINES.text("Source address", path.SourceAddressV4 != 0 ? inet_ntoa_r(path.SourceAddressV4)
                                                                : inet6_ntoa_r(path.SourceAddressV6.octets));
    if (pm_show_options.internal) {
        if (path.LocalLabel != 0) {
            PATH_LINES.number("Local label", path.LocalLabel);
        } else {
            PATH_LINES.text("Local label", "Not set");
        }
        print_fast_notification(path);
    }
    PATH_LINES.number("Number of segment-lists", path.SegmentListTotalCount);
}

void print_path_measurement(const pm_srpolicy_candidate_path_parcel &path) {
    if (path.LivenessDetectionEnabled != 0) {
        pm_show_liveness_detection(true, 4);
        if (pm_show_options.internal) {
            // "Minumum" is what scripts look for.
            pm_plain_lines(6).text("Minumum SL Up Required", pm_count_or_all_str(path.MinimumSLUp));
        }
        pm_show_liveness_state(&path.LivenessDetectionInfo, 6, false);
        return;
    }
    pm_show_last_advertisement(&path.LastAdvertisementInformation, 4, false);
    pm_show_next_advertisement_of_probe(&path.CurrentProbe, &path.NextAdvertisementInformation,
                                        path.PeriodicAdvertisementIntervalInSec, 4);
    pm_show_probe_results(&path.LastProbeResults, 4, "Last computation", "None");
    pm_show_current_computation(&path.CurrentProbe, 4);
    pm_show_liveness_detection(false, 4);
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
