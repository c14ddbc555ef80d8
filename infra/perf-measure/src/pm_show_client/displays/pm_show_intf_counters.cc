// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_intf_counters.h"

#include "pm_show_client/blocks/counters.h"
#include "pm_show_client/blocks/interface_name.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

int pm_show_intf_counters(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &interface = *static_cast<const pm_intf_parcel *>(decoded_parcel);
    pm_show_interface_name(interface.InterfaceName, interface.InterfaceHandle, 0);
    pm_print_heading(2, "Delay-Measurement");
    if (interface.DelayMeasurementSessions.count == 0) {
        pm_print<"%*sNo session\n">(4, "");
    }
    for (const pm_scb_parcel &session : interface.DelayMeasurementSessions) {
        pm_show_session_counters(&session.SessionCounters, 4);
    }
    return PM_SHOW_PRINTED;
}
