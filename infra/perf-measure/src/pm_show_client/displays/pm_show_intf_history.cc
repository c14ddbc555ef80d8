// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_intf_history.h"

#include "base/pm_output.h"
#include "pm_show_client/blocks/history.h"
#include "pm_show_client/blocks/interface_name.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

int pm_show_intf_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &history = *static_cast<const pm_intf_history_parcel *>(decoded_parcel);
    pm_show_interface_name(history.InterfaceName, history.InterfaceHandle, 0);
    print_history_sample_union(&history.HistoryInfo, 0, 0);
    for (const pm_intf_history_parcel &member : history.BundleMembers) {
        pm_print<"Bundle member name: %s (ifh: 0x%x)\n">(member.InterfaceName, member.InterfaceHandle);
        print_history_sample_union(&member.HistoryInfo, 2, 0);
    }
    return PM_SHOW_PRINTED;
}
