// See atomic_path.h.
#include "pm_show_client/blocks/atomic_path.h"

#include "base/pm_assert.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_blocks.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/npu_names.h"
#include "pm_utils/value_text.h"

using namespace pm_session_lines;

namespace {

void print_path(const pm_srpolicy_atomic_path_parcel &path, int indent, int width) {
    pm_show_hops(path.HopAddress, indent, width);
    pm_show_labels(path.Labels, indent, width);
    if (path.HopAddress.count == 0 && path.FlowLabel != nullptr) {
        pm_print_label_u32(width, indent, "Flow Label", *path.FlowLabel, "");
    }
    if (path.OutgoingInterface != 0) {
        pm_print_label_str(width, indent, "Outgoing Interface", pm_ifh_str(path.OutgoingInterface));
    }
    pm_print_label_u32(width, indent, "Session ID", path.SessionId, "");
    pm_print_label_u32(width, indent, "Trace ID", path.TraceId, "");
    if (pm_show_options.internal) {
        pm_print_label_str(width, indent, "Atomic path to be deleted", pm_true_or_false(path.ToBeDeleted));
    }
}

void print_npu_notification(const pm_npu_notif_info_parcel &notification, int indent, int width) {
    pm_print_heading(indent, "Last NPU notification");
    pm_print_label_str(width, indent + 2, "Session state", notification.SessionIsUp != 0 ? "Up" : "Down");
    pm_print_label_str(width, indent + 2, "Timestamp", pm_time_str(notification.LastNotificationReceiveTimestamp));
}

// Every session on an NPU has this record.
void print_session_npu_offload_info(const pm_session_npu_offload_info_parcel *parcel, int indent, int width) {
    PM_ASSERT(parcel != nullptr, "NULL != parcel", "pm_show_client", __func__);
    pm_print_label_u32(width, indent, "NPU number", parcel->NpuNumber, "");
    pm_print_label_str(width, indent, "NPU session state", pm_npu_session_state_str(parcel->NpuSessionState));
    pm_print_label_u32(width, indent + 2, "Retry count", parcel->RetryCount, "");
    if (parcel->NPUNotificationInfo != nullptr) {
        print_npu_notification(*parcel->NPUNotificationInfo, indent, width);
    }
    if (pm_show_options.internal && parcel->RXTimestampsOfLastThreeNPUPackets.count != 0) {
        pm_print_heading(indent, "Received timestamps of last three packets");
        for (const std::uint64_t timestamp : parcel->RXTimestampsOfLastThreeNPUPackets) {
            print_text(indent + 2, pm_time_str(timestamp));
        }
    }
}

void print_measurement(const pm_srpolicy_atomic_path_parcel &path, bool running, int indent) {
    pm_show_last_advertisement(&path.LastAdvertisementInformation, indent, true);
    pm_show_next_advertisement(&path.NextAdvertisementInformation, PM_NO_ADVERTISEMENT_INTERVAL, indent);
    pm_show_probe_results(&path.LastProbeResults, indent, "Last computation", "None");
    pm_show_probe_results(&path.CurrentProbeResults, indent, "Current computation",
                          running ? "Queued, will run in a different computation interval" : "Not Running");
    if (path.CurrentProbeResults.NumberOfPacketsSent != 0) {
        pm_show_probe_samples(&path.CurrentProbeHistory, indent);
    }
    print_liveness_detection(indent, false);
}

}  // namespace

void pm_show_atomic_path(const pm_srpolicy_atomic_path_parcel *path, bool running, int indent, int width) {
    pm_print_heading(indent, "Atomic path");
    indent += 2;
    print_path(*path, indent, width);
    pm_print_label_str(width, indent, "NPU Offloaded session", pm_true_or_false(path->NPUOffloadedSession));
    if (path->NPUOffloadedSession != 0) {
        print_session_npu_offload_info(path->SessionNPUOffloadInfo, indent + 2, width);
    }
    pm_print_label_str(width, indent, "Timestamping Enabled", pm_true_or_false(path->TimestampingEnabled));
    const bool is_liveness = path->LivenessDetectionEnabled != 0;
    if (is_liveness) {
        print_liveness_detection(indent, true);
        pm_show_liveness_state(&path->LivenessDetectionInfo, indent + 2, false);
    } else {
        print_measurement(*path, running, indent);
    }
    pm_show_responder(path->ResponderAddress, path->QueryNumberOfHops, indent, width);
    if (!is_liveness && pm_show_options.internal) {
        pm_show_control_codes(&path->LastNotificationControlCode, &path->LastErrorControlCode, indent);
    }
}
