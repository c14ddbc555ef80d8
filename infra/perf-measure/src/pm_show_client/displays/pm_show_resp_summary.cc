// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_resp_summary.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/resp_counters.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

namespace {

void print_rate(pm_text label, std::uint32_t rate_pps) { pm_lines_at(2).unit(label, rate_pps, "pkts/sec"); }

}  // namespace

int pm_show_resp_summary(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &summary = *static_cast<const pm_resp_summary_parcel *>(decoded_parcel);
    pm_print_heading(0, "Delay-Measurement");
    pm_lines_at(2).number("Total interfaces", summary.TotalInterfaces);
    pm_show_resp_counters(&summary.ResponderCounters, 2);
    print_rate("Current rate", summary.PacketRate);
    print_rate("Rate high water mark", summary.PacketRateHighWaterMark);
    return PM_SHOW_PRINTED;
}
