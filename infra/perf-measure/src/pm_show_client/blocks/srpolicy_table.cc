// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/srpolicy_table.h"

#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/tables.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_utils/value_text.h"

namespace {

constexpr int NAME_LENGTH = 32;  // of a policy, before ".." marks the cut

void print_delay_header() {
    char name[PM_LINE_SIZE];
    pm_format_text<"Policy Name(%d char)">(name, sizeof name, NAME_LENGTH);
    pm_print<" %-34.34s %-10.10s %-11.11s %-43.43s\n">(static_cast<const char *>(name), "LSP ID", "Tx/Rx",
                                                       "Avg/Min/Max/Variance (uSec)");
}

void print_liveness_header() {
    char name[PM_LINE_SIZE];
    pm_format_text<"Policy Name(%d char)">(name, sizeof name, NAME_LENGTH);
    pm_print<" %-34.34s %-10.10s %-15.15s %-25.25s %-5.5s\n">(static_cast<const char *>(name), "LSP ID",
                                                              "Session State", "Timestamp", "Host");
}

void print_name(const char *name) { pm_print<" %-34.34s ">(name); }

// The columns of a candidate path that both tables begin with; only the first path of a policy shows its name.
void print_path_start(const pm_srpolicy_candidate_path_parcel &path, bool is_first, const char *name) {
    if (!is_first) {
        pm_print_empty_line();
    }
    print_name(is_first ? name : "");
    char instance[16];
    pm_format_text<"%u">(instance, sizeof instance, path.Instance);
    pm_print<"%-10.10s ">(static_cast<const char *>(instance));
}

// A session on a network processor has no probe of its own that would have to run first.
void print_state(const pm_srpolicy_candidate_path_parcel &path) {
    const pm_scb_probe_parcel &probe = path.CurrentProbe;
    const bool is_offloaded = probe.ProbeNotRunningReason == 0 && path.NPUOffloadSessionEnabled != 0;
    if (is_offloaded || !pm_print_idle_cell(probe)) {
        const pm_liveness_state_info_parcel &state = path.LivenessDetectionInfo;
        pm_print<"%-15.15s %-25.25s ">(state.SessionIsUp != 0 ? "UP" : "DOWN",
                                       pm_time_str(state.LastSessionStateChangeTimestamp));
    }
}

// Prints the rows of a policy; `print_columns` prints the columns of one path after those of both tables.
template <class PrintHeader, class PrintColumns>
void print_rows(const pm_srpolicy_parcel &policy, PrintHeader print_header, PrintColumns print_columns) {
    pm_print_table_header(print_header);
    const char *const name = pm_truncate_name(policy.PolicyName, NAME_LENGTH);
    if (policy.CandidatePaths.count == 0) {
        print_name(name);
        pm_print_no_session();
        return;
    }
    for (const pm_srpolicy_candidate_path_parcel &path : policy.CandidatePaths) {
        print_path_start(path, &path == policy.CandidatePaths.begin(), name);
        print_columns(path);
    }
}

}  // namespace

void pm_show_srpolicy_delay_row(const pm_srpolicy_parcel &policy) {
    print_rows(policy, print_delay_header,
               [](const pm_srpolicy_candidate_path_parcel &path) { pm_print_delay_cells(path.CurrentProbe); });
}

void pm_show_srpolicy_liveness_row(const pm_srpolicy_parcel &policy) {
    print_rows(policy, print_liveness_header, [](const pm_srpolicy_candidate_path_parcel &path) {
        // Without liveness detection the host follows the LSP ID directly.
        if (path.LivenessDetectionEnabled != 0) {
            print_state(path);
        }
        pm_print<"%-5.5s">(path.NPUOffloadSessionEnabled != 0 ? "NPU" : "CPU");
    });
}
