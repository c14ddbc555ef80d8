// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/print_lc_npu_db.h"

#include <cstdint>

#include "base/pm_assert.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

namespace {

constexpr std::uint16_t NO_NPU = 0xFFFF;

// Assertions report these lines, wherever the checks are.
constexpr char SOURCE[] = "pm_show_client";
constexpr int REPORTED_DATABASE_LINE = 5424;
constexpr int REPORTED_NPU_LINE = 5346;

void print_npu(const pm_dr_npu_info &npu) {
    pm_lines_at(6).number("Node ID", npu.NodeID);
    if (npu.NPU_ID == NO_NPU) {
        pm_lines_at(6).text("NPU ID", "N/A");
    } else {
        pm_lines_at(6).number("NPU ID", npu.NPU_ID);
    }
    pm_lines_at(6).flag("NPU offload Supported", npu.NPUOffloadSupported);
    pm_lines_at(6).text("NPU offload engine state", npu.NPUOffloadEngineReady ? "Ready" : "Not ready");
    pm_lines_at(6).number("Max number of session supported", npu.MaxNumberOfSessionsSupported);
    pm_lines_at(6).number("Current number of session hosted", npu.CurrentNumberOfSessions);
    pm_lines_at(6).number("Available number of session", npu.AvailableNumberOfSessions);
    pm_lines_at(6).number("NPU UDP source port", npu.SourcePort);
    pm_print_empty_line();
}

void print_npus(const parcel_array<pm_dr_npu_info> &npus) {
    if (npus.count == 0) {
        pm_print_indented<"%-*s\n">(4, PM_COLON - 4, "No NPU information available");
        return;
    }
    pm_lines_at(4).number("Number of NPU's", npus.count);
    if (npus.elements == nullptr) {
        pm_assertion_failed("NULL != npu_parcel", SOURCE, REPORTED_NPU_LINE, "void print_npu(pm_dr_npu_info *)");
    }
    for (const pm_dr_npu_info &npu : npus) {
        print_npu(npu);
    }
}

void print_linecard(const pm_dr_lc_info &linecard) {
    pm_lines_at(4).text("Linecard Node location", linecard.LinecardLocationName);
    pm_lines_at(4).number("Linecard Node ID", linecard.LinecardNodeID);
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
    pm_lines_at(2).number("Total Number of Linecards", database.LinecardInfo.count);
    pm_lines_at(2).number("Number of Successfully Connected Linecards", database.NumberOfConnectedLinecards);
    for (const pm_dr_lc_info &linecard : database.LinecardInfo) {
        print_linecard(linecard);
    }
    return PM_SHOW_PRINTED;
}
