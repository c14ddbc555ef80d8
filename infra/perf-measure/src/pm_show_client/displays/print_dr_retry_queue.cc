// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/print_dr_retry_queue.h"

#include "base/pm_assert.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_utils/engine_names.h"
#include "schema/pm_records.h"

namespace {

void print_entry(const pm_dr_retry_entry &entry) {
    pm_lines_at(4).text("SR Policy Name", entry.DistributionRecordName);
    pm_lines_at(4).number("LSP ID", entry.LSP_ID);
    pm_lines_at(4).text("Retry reason", pm_dr_retry_reason_str(entry.RetryReason));
    pm_print_empty_line();
}

}  // namespace

int print_dr_retry_queue(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        // The report names a place of its own, whatever the line here.
        pm_assertion_failed("NULL != decoded_parcel", "pm_show_client", 5488, "errcode print_dr_retry_queue(void *)");
    }
    const parcel_array<pm_dr_retry_entry> &entries =
        static_cast<const pm_dr_retry_queue_info *>(decoded_parcel)->RetryEntry;
    if (entries.count == 0) {
        pm_print<"Distribution retry queue is empty">();  // no newline
        return PM_SHOW_PRINTED;
    }
    pm_lines_at(2).number("Total Number of retry entry", entries.count);
    for (const pm_dr_retry_entry &entry : entries) {
        print_entry(entry);
    }
    return PM_SHOW_PRINTED;
}
