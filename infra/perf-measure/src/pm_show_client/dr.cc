// See dr.h.
#include "pm_show_client/dr.h"

#include "pm_show_client/lines.h"
#include "pm_show_client/node_name.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"

namespace {

constexpr std::uint32_t NO_NODE = 0xFFFFFFFF;
constexpr std::uint32_t NO_NPU = 65535;

constexpr int LABEL_END = 34;  // column of the colon, except of those of the record's own lines

// The lines of this display: the colon stands right behind the label's column, with no blank after it.
void print_text(int indent, const char *label, const char *text) {
    pm_print_indented<"%-*s:%s\n">(indent, LABEL_END - indent, label, text);
}

void print_u32(int indent, const char *label, std::uint32_t value) {
    pm_print_indented<"%-*s:%u\n">(indent, LABEL_END - indent, label, value);
}

void print_flag(int indent, const char *label, std::uint32_t flag) {
    print_text(indent, label, flag != 0 ? "True" : "False");
}

const char *liveness_str(std::uint32_t is_up) { return is_up != 0 ? "UP" : "DOWN"; }

void print_host(const pm_dr_session_info &session) {
    print_text(6, "Session host type", session.SessionHostType == PM_DR_SESSION_CPU ? "CPU" : "NPU");
    print_text(6, "Node ID", session.NodeID != NO_NODE ? pm_node_name<32>(session.NodeID).text : "N/A");
    if (session.NPU_ID < NO_NPU) {
        print_u32(6, "NPU ID", session.NPU_ID);
    } else {
        print_text(6, "NPU ID", "N/A");
    }
}

void print_session_ids(const parcel_array<pm_sl_session_id_map_info> &pairs) {
    pm_print<"\n%*sSession ID map (Segment-list : Session-ID):\n">(6, "");
    print_u32(8, "Number of entry", pairs.count);
    for (const pm_sl_session_id_map_info &pair : pairs) {
        pm_print<"%*s[%s : %u]\n">(8, "", pair.SegmentListName, pair.SessionID);
    }
}

void print_segment_list(const pm_sl_session_info &info) {
    const char *const liveness = liveness_str(info.LivenessSessionStateUp);
    if (!pm_show_options.internal) {
        print_text(8, info.SegmentListName, liveness);
        return;
    }
    pm_print_indented<"%s:">(8, info.SegmentListName);  // no newline: the state stands on this line
    print_text(10, "State", liveness);
    print_text(10, "Sent at", pm_time_str(info.RecordSendTimestamp));
}

void print_segment_lists(const parcel_array<pm_sl_session_info> &segment_lists) {
    if (segment_lists.count == 0) {
        return;
    }
    pm_print<"\n%*sSegment List Liveness Info:\n">(6, "");
    for (const pm_sl_session_info &info : segment_lists) {
        print_segment_list(info);
    }
}

void print_session(const pm_dr_session_info &session) {
    print_u32(6, "Session LSP ID", session.LSP_ID);
    print_text(6, "Profile name", session.ProfileName);
    print_flag(6, "Delay notif rx", session.DelayNotificationReceived);
    print_flag(6, "Liveness notif rx", session.LivenessNotificationReceived);
    print_host(session);
    print_flag(6, "Distribution pending", session.DistributionPending);
    print_text(6, "Liveness state", liveness_str(session.LivenessSessionStateUp));
    print_session_ids(session.SessionIDPairs);
    print_segment_lists(session.SegmentListLivenessInfos);
}

// `separator` stands behind each session.
void print_sessions(const char *kind, const parcel_array<pm_dr_session_info> &sessions, const char *separator) {
    char label[32];
    pm_format_text<"Number of %s Sessions">(label, sizeof label, kind);
    print_u32(4, label, sessions.count);
    if (sessions.count == 0) {
        return;
    }
    pm_print<"%*s%s Sessions: \n">(4, "", kind);
    for (const pm_dr_session_info &session : sessions) {
        print_session(session);
        pm_print<"%s">(separator);
    }
}

}  // namespace

int pm_show_dr(const void *decoded_parcel) {
    const auto *const record = static_cast<const pm_dr_info *>(decoded_parcel);
    if (record == nullptr) {
        pm_print<"No session distribution record found">();  // no newline
        return PM_SHOW_NO_RECORD;
    }
    pm_print_indented<"%-30s  :%s\n">(2, "SR Policy Name", record->DistributionRecordName);
    print_text(4, "Created on", pm_time_str(record->RecordCreationTimestamp));
    pm_print<"\n">();
    print_sessions("CPU", record->Sessions, "\n");
    print_sessions("NPU", record->NPUOffloadSessions, "");  // unlike those of the CPU, one right behind the other
    return PM_SHOW_PRINTED;
}
