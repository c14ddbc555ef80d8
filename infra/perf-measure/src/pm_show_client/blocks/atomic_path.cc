// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/atomic_path.h"

#include "base/pm_assert.h"
#include "pm_show_client/blocks/advertisement.h"
#include "pm_show_client/blocks/control_codes.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/liveness.h"
#include "pm_show_client/blocks/probe.h"
#include "pm_show_client/blocks/responder.h"
#include "pm_show_client/blocks/segments.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/npu_names.h"
#include "pm_utils/value_text.h"

namespace {

void print_path(const pm_srpolicy_atomic_path_parcel &path, const pm_lines &lines) {
    pm_show_hops(path.HopAddress, lines.indent, lines.colon);
    pm_show_labels(path.Labels, lines.indent, lines.colon);
    if (path.HopAddress.count == 0 && path.FlowLabel != nullptr) {
        lines.number("Flow Label", *path.FlowLabel);
    }
    if (path.OutgoingInterface != 0) {
        lines.text("Outgoing Interface", pm_ifh_str(path.OutgoingInterface));
    }
    lines.number("Session ID", path.SessionId);
    lines.number("Trace ID", path.TraceId);
    if (pm_show_options.internal) {
        lines.flag("Atomic path to be deleted", path.ToBeDeleted);
    }
}

void print_npu_notification(const pm_npu_notif_info_parcel &notification, const pm_lines &lines) {
    lines.text("Session state", notification.SessionIsUp != 0 ? "Up" : "Down");
    lines.text("Timestamp", pm_time_str(notification.LastNotificationReceiveTimestamp));
}

// Every session on an NPU has this record.
void print_session_npu_offload_info(const pm_session_npu_offload_info_parcel *parcel, int indent, int width) {
    PM_ASSERT(parcel != nullptr, "NULL != parcel", "pm_show_client", __func__);
    const pm_lines lines{indent, width};
    const pm_lines inner_lines{indent + 2, width};
    lines.number("NPU number", parcel->NpuNumber);
    lines.text("NPU session state", pm_npu_session_state_str(parcel->NpuSessionState));
    inner_lines.number("Retry count", parcel->RetryCount);
    if (parcel->NPUNotificationInfo != nullptr) {
        pm_print_heading(indent, "Last NPU notification");
        print_npu_notification(*parcel->NPUNotificationInfo, inner_lines);
    }
    if (pm_show_options.internal && parcel->RXTimestampsOfLastThreeNPUPackets.count != 0) {
        pm_print_heading(indent, "Received timestamps of last three packets");
        for (const std::uint64_t timestamp : parcel->RXTimestampsOfLastThreeNPUPackets) {
            pm_session_lines::print_sentence(indent + 2, pm_time_str(timestamp));
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
    pm_show_liveness_detection(false, indent);
}

}  // namespace

void pm_show_atomic_path(const pm_srpolicy_atomic_path_parcel *path, bool running, int indent, int width) {
    pm_print_heading(indent, "Atomic path");
    indent += 2;
    const pm_lines lines{indent, width};
    print_path(*path, lines);
    lines.flag("NPU Offloaded session", path->NPUOffloadedSession);
    if (path->NPUOffloadedSession != 0) {
        print_session_npu_offload_info(path->SessionNPUOffloadInfo, indent + 2, width);
    }
    lines.flag("Timestamping Enabled", path->TimestampingEnabled);
    const bool is_liveness = path->LivenessDetectionEnabled != 0;
    if (is_liveness) {
        pm_show_liveness_detection(true, indent);
        pm_show_liveness_state(&path->LivenessDetectionInfo, indent + 2, false);
    } else {
        print_measurement(*path, running, indent);
    }
    pm_show_responder(path->ResponderAddress, path->QueryNumberOfHops, indent, width);
    if (!is_liveness && pm_show_options.internal) {
        pm_show_control_codes(&path->LastNotificationControlCode, &path->LastErrorControlCode, indent);
    }
}
