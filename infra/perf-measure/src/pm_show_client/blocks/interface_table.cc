// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/interface_table.h"

#include "base/pm_output.h"
#include "pm_show_client/blocks/tables.h"

namespace {

void print_header() { pm_print<" %-30s%-16s %-32s\n">("Interface Name", "Tx/Rx", "Avg/Min/Max/Variance (uSec)"); }

void print_cells(const pm_scb_probe_parcel &probe) {
    pm_idle_text idle;
    if (pm_describe_idle(probe, &idle)) {
        pm_print<"%-47s">(idle.text);
    } else {
        const pm_delay_texts texts = pm_describe_delays(probe);
        pm_print<"%-16s %-31s">(texts.packets, texts.delays);
    }
}

}  // namespace

// A row has no line end of its own: the one before the next item ends it, and the sessions of an interface
// follow each other on one line.
void pm_show_interface_delay_row(const pm_intf_parcel &interface) {
    pm_print_table_header(print_header);
    const char *name = interface.InterfaceName;
    if (interface.DelayMeasurementSessions.count == 0) {
        pm_print<" %-30s">(name);
        pm_print_no_session();
        return;
    }
    for (const pm_scb_parcel &session : interface.DelayMeasurementSessions) {
        pm_print<" %-30s">(name);
        print_cells(session.CurrentProbe);
        name = "";
    }
}
