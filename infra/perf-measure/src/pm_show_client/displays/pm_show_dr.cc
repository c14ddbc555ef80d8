// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_dr.h"

#include <cstdint>

#include "platform/node.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"

namespace {

constexpr int COLON = 34;  // without a blank before or after it
constexpr std::uint32_t NO_NODE = 0xFFFFFFFF;
constexpr std::uint16_t NO_NPU = 0xFFFF;
constexpr std::size_t NODE_NAME_SIZE = 32;

void print_text(int indent, pm_text label, pm_text text) {
    pm_print_indented<"%-*s:%s\n">(indent, COLON - indent, label, text);
}

void print_number(int indent, pm_text label, std::uint32_t number) {
    pm_print_indented<"%-*s:%u\n">(indent, COLON - indent, label, number);
}

void print_flag(int indent, pm_text label, std::uint32_t flag) { print_text(indent, label, pm_true_or_false(flag)); }

void print_liveness(int indent, pm_text label, std::uint32_t is_up) {
    print_text(indent, label, is_up ? pm_text("UP") : pm_text("DOWN"));
}

void print_host(const pm_dr_session_info &session) {
    print_text(6, "Session host type", session.SessionHostType == PM_DR_SESSION_CPU ? pm_text("CPU") : pm_text("NPU"));
    char node[NODE_NAME_SIZE] = "N/A";
    if (session.NodeID != NO_NODE) {
        static_cast<void>(nodeid_to_str_external(session.NodeID, node, sizeof node));
    }
    print_text(6, "Node ID", node);
    if (session.NPU_ID < NO_NPU) {
        print_number(6, "NPU ID", session.NPU_ID);
    } else {
        print_text(6, "NPU ID", "N/A");
    }
}

void print_session_ids(const parcel_array<pm_sl_session_id_map_info> &pairs) {
    pm_print<"\n%*sSession ID map (Segment-list : Session-ID):\n">(6, "");
    print_number(8, "Number of entry", pairs.count);
    for (const pm_sl_session_id_map_info &pair : pairs) {
        pm_print<"%*s[%s : %u]\n">(8, "", pair.SegmentListName, pair.SessionID);
    }
}

void print_segment_list(const pm_sl_session_info &info) {
    if (!pm_show_options.internal) {
        print_liveness(8, info.SegmentListName, info.LivenessSessionStateUp);
        return;
    }
    pm_print_indented<"%s:">(8, info.SegmentListName);  // the first line below continues this one
    print_liveness(10, "State", info.LivenessSessionStateUp);
    print_text(10, "Sent at", pm_time_str(info.RecordSendTimestamp));
}

void print_segment_lists(const parcel_array<pm_sl_session_info> &infos) {
    if (infos.count == 0) {
        return;
    }
    pm_print<"\n%*sSegment List Liveness Info:\n">(6, "");
    for (const pm_sl_session_info &info : infos) {
        print_segment_list(info);
    }
}

void print_session(const pm_dr_session_info &session) {
    print_number(6, "Session LSP ID", session.LSP_ID);
    print_text(6, "Profile name", session.ProfileName);
    print_flag(6, "Delay notif rx", session.DelayNotificationReceived);
    print_flag(6, "Liveness notif rx", session.LivenessNotificationReceived);
    print_host(session);
    print_flag(6, "Distribution pending", session.DistributionPending);
    print_liveness(6, "Liveness state", session.LivenessSessionStateUp);
    print_session_ids(session.SessionIDPairs);
    print_segment_lists(session.SegmentListLivenessInfos);
}

// The heading of a list of sessions, which ends in a blank.
void print_sessions_heading(const char *host) { pm_print<"%*s%s Sessions: \n">(4, "", host); }

void print_cpu_sessions(const parcel_array<pm_dr_session_info> &sessions) {
    print_number(4, "Number of CPU Sessions", sessions.count);
    if (sessions.count != 0) {
        print_sessions_heading("CPU");
    }
    for (const pm_dr_session_info &session : sessions) {
        print_session(session);
        pm_print_empty_line();
    }
}

// Unlike those of the CPU, these follow each other without an empty line.
void print_npu_sessions(const parcel_array<pm_dr_session_info> &sessions) {
    print_number(4, "Number of NPU Sessions", sessions.count);
    if (sessions.count != 0) {
        print_sessions_heading("NPU");
    }
    for (const pm_dr_session_info &session : sessions) {
        print_session(session);
    }
}

}  // namespace

int pm_show_dr(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        pm_print<"No session distribution record found\n">();
        return PM_SHOW_NO_RECORD;
    }
    const auto &record = *static_cast<const pm_dr_info *>(decoded_parcel);
    print_text(2, "SR Policy Name", record.DistributionRecordName);
    print_text(4, "Created on", pm_time_str(record.RecordCreationTimestamp));
    pm_print_empty_line();
    print_cpu_sessions(record.Sessions);
    print_npu_sessions(record.NPUOffloadSessions);
    return PM_SHOW_PRINTED;
}
