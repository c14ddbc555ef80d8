// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_chkpt_dr_session.h"

#include "base/pm_output.h"
#include "pm_show_client/blocks/chkpt_blob.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_utils/node_name.h"
#include "schema/pm_records.h"

namespace {

constexpr pm_lines HEAD_LINES{0, 16};
constexpr pm_lines LINES{2, 18};

const char *liveness_str(bool is_up) { return is_up ? "UP" : "DOWN"; }

void print_node(std::uint32_t node) { LINES.text("Node", node != CHKPT_NO_NODE ? pm_name_of_node(node).text : "N/A"); }

void print_npu(std::uint32_t npu) {
    if (npu == CHKPT_NO_NPU) {
        LINES.text("NPU", "N/A");
    } else {
        LINES.signed_number("NPU", npu);
    }
}

void print_session(std::uint32_t checkpoint_id, const ChkptDrSession &session) {
    const bool on_npu = session.host_type == CHKPT_HOST_NPU;
    HEAD_LINES.hex("checkpoint-id", checkpoint_id);
    HEAD_LINES.text("SR Policy Name", session.policy_name);
    LINES.number("LSP ID", session.lsp_id);
    LINES.text("Liveness state", liveness_str(session.is_up));
    print_node(session.node_id);
    if (on_npu) {
        print_npu(session.npu_id);
    }
    LINES.text("session type", on_npu ? pm_text("NPU") : pm_text("CPU"));
}

void print_session_ids(const chkpt_array<ChkptSessionIdPair> &pairs) {
    if (pairs.count == 0) {
        return;
    }
    pm_print<"%*sSession ID map (Segment-list : Session-ID):\n">(2, "");
    for (const ChkptSessionIdPair &pair : pairs) {
        pm_print<"%*s[%s : %u]\n">(4, "", static_cast<const char *>(pair.segment_list), pair.session_id);
    }
}

void print_segment_lists(const chkpt_array<ChkptSegmentListInfo> &segment_lists) {
    if (segment_lists.count == 0) {
        return;
    }
    pm_print<"%*sSegment List Info (Segment-list : Liveness Status):\n">(2, "");
    for (const ChkptSegmentListInfo &info : segment_lists) {
        pm_print<"%*s[%s : %s]\n">(4, "", static_cast<const char *>(info.segment_list), liveness_str(info.is_up));
    }
}

}  // namespace

int pm_show_chkpt_dr_session(const void *decoded_parcel) {
    const auto *const parcel = static_cast<const pm_chkpt_dr_db_sess_info *>(decoded_parcel);
    if (!pm_has_blob(parcel)) {
        pm_print<"No distributed session checkpoint record available\n">();
        return PM_SHOW_NO_RECORD;
    }
    const ChkptDrSession session = pm_decode_blob(parcel->buf, ChkptDrSession_decode);
    print_session(parcel->CheckpointId, session);
    print_session_ids(session.session_ids);
    print_segment_lists(session.segment_lists);
    return PM_SHOW_PRINTED;
}
