// SPDX-License-Identifier: Apache-2.0
// The reasons of advertisements, short and long.
#include "front/advert_legend.h"

#include "base/pm_output.h"
#include "pm_utils/advert_reason.h"

namespace {

// In the legend's own order, which is not numeric; the reasons without a line here are left out.
constexpr pm_advert_reason_e LEGEND_REASONS[] = {
    PM_ADVERT_REASON_FIRST,                // 20
    PM_ADVERT_REASON_NEW_CHILD_SESSION,    // 22
    PM_ADVERT_REASON_PERIODIC_AVERAGE,     // 1
    PM_ADVERT_REASON_PERIODIC_MINIMUM,     // 2
    PM_ADVERT_REASON_PERIODIC_MAXIMUM,     // 3
    PM_ADVERT_REASON_ACCELERATED_AVERAGE,  // 5
    PM_ADVERT_REASON_ACCELERATED_MINIMUM,  // 6
    PM_ADVERT_REASON_ACCELERATED_MAXIMUM,  // 7
    PM_ADVERT_REASON_ENABLED,              // 13
    PM_ADVERT_REASON_DISABLED,             // 14
    PM_ADVERT_REASON_LINK_DOWN,            // 21
    PM_ADVERT_REASON_SESSION_DELETED,      // 15
    PM_ADVERT_REASON_CONTROL_CODE_ERROR,   // 19
    PM_ADVERT_REASON_DYNAMIC_DELAY,        // 24
    PM_ADVERT_REASON_DELAY_CONFIG,         // 17
    PM_ADVERT_REASON_DELAY_UNCONFIG,       // 18
    PM_ADVERT_REASON_EXEC_CLEAR,           // 16
    PM_ADVERT_REASON_SESSION_ERROR,        // 23
    PM_ADVERT_REASON_ANOMALY_DYNAMIC,      // 11
    PM_ADVERT_REASON_ANOMALY_STATIC,       // 12
};

}  // namespace

void pm_show_advert_legend() {
    pm_print<"\n">();
    for (const pm_advert_reason_e reason : LEGEND_REASONS) {
        pm_print<" %-12.12s: %-25.70s\n">(pm_advert_reason_short_str(reason), pm_advert_reason_str(reason));
    }
}
