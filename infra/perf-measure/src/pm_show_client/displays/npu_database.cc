// See npu_database.h.
#include "pm_show_client/displays/npu_database.h"

#include <cstdint>

#include "base/pm_assert.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_display.h"

namespace {

constexpr std::uint16_t NO_NPU = 0xFFFF;

// Assertions report these lines, wherever the checks stand.
constexpr char SOURCE[] = "pm_show_client";
constexpr int REPORTED_DATABASE_LINE = 5424;
constexpr int REPORTED_NPU_LINE = 5346;

void print_npu(const pm_dr_npu_info &npu) {
    pm_print_column_u32(6, "Node ID", npu.NodeID);
    if (npu.NPU_ID == NO_NPU) {
        pm_print_column_str(6, "NPU ID", "N/A");
    } else {
        pm_print_column_u32(6, "NPU ID", npu.NPU_ID);
    }
    pm_print_column_str(6, "NPU offload Supported", pm_true_or_false(npu.NPUOffloadSupported));
    pm_print_column_str(6, "NPU offload engine state", npu.NPUOffloadEngineReady ? "Ready" : "Not ready");
    pm_print_column_u32(6, "Max number of session supported", npu.MaxNumberOfSessionsSupported);
    pm_print_column_u32(6, "Current number of session hosted", npu.CurrentNumberOfSessions);
    pm_print_column_u32(6, "Available number of session", npu.AvailableNumberOfSessions);
    pm_print_column_u32(6, "NPU UDP source port", npu.SourcePort);
    pm_print_empty_line();
}

void print_npus(const parcel_array<pm_dr_npu_info> &npus) {
    if (npus.count == 0) {
        pm_print_indented<"%-*s\n">(4, PM_COUNTER_WIDTH - 4, "No NPU information available");
        return;
    }
    pm_print_column_u32(4, "Number of NPU's", npus.count);
    if (npus.elements == nullptr) {
        pm_assertion_failed("NULL != npu_parcel", SOURCE, REPORTED_NPU_LINE, "void print_npu(pm_dr_npu_info *)");
    }
    for (const pm_dr_npu_info &npu : npus) {
        print_npu(npu);
    }
}

void print_linecard(const pm_dr_lc_info &linecard) {
    pm_print_column_str(4, "Linecard Node location", linecard.LinecardLocationName);
    pm_print_column_u32(4, "Linecard Node ID", linecard.LinecardNodeID);
    print_npus(linecard.NPUInfo);
    pm_print_empty_line();
}

}  // namespace

int print_lc_npu_db(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        pm_assertion_failed("NULL != decoded_parcel", SOURCE, REPORTED_DATABASE_LINE,
                            "errcode print_lc_npu_db(void *)");
    }
    const auto &database = *static_cast<const pm_dr_lc_npu_info *>(decoded_parcel);
    if (database.LinecardInfo.count == 0) {
        pm_print<"No Linecard information available">();  // without an end of line
        return PM_SHOW_PRINTED;
    }
    pm_print_column_u32(2, "Total Number of Linecards", database.LinecardInfo.count);
    pm_print_column_u32(2, "Number of Successfully Connected Linecards", database.NumberOfConnectedLinecards);
    for (const pm_dr_lc_info &linecard : database.LinecardInfo) {
        print_linecard(linecard);
    }
    return PM_SHOW_PRINTED;
}
