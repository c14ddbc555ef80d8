// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_resp_intf_counters.h"

#include "pm_show_client/blocks/interface_name.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/resp_counters.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

int pm_show_resp_intf_counters(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &interface = *static_cast<const pm_resp_intf_parcel *>(decoded_parcel);
    pm_show_interface_name(interface.InterfaceName);
    pm_print_heading(2, "Delay-Measurement");
    pm_show_resp_counters(&interface.InterfaceCounters, 4);
    return PM_SHOW_PRINTED;
}
