// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_allowed_responders.h"

#include "pm_show_client/blocks/allowed_prefixes.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

int pm_show_allowed_responders(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &summary = *static_cast<const pm_responder_prefixes_summary *>(decoded_parcel);
    const auto *const cpu_port = summary.QuerierUnauthenticatedTwampDelayMeasurementPortStatus;
    const auto &npu_ports = summary.QuerierUnauthenticatedTwampDelayMeasurementNPUPortStatus;
    if (cpu_port == nullptr && npu_ports.count == 0) {
        pm_print_no_applicable_port();
        return PM_SHOW_PRINTED;
    }
    pm_print_allowed_prefixes("Allowed-responder IPv4 prefix", summary.IPv4PrefixInfo);
    pm_print_allowed_prefixes("Allowed-responder IPv6 prefix", summary.IPv6PrefixInfo);
    if (cpu_port != nullptr) {
        pm_print_ports_heading("Querier CPU UDP port status");
        pm_print_port_status("TWAMP-Light Default Unauthenticated querier port", cpu_port);
    }
    if (npu_ports.count != 0) {
        pm_print_ports_heading("Querier NPU UDP port status");
        for (const pm_udp_port_rxpol_prefix_status &port : npu_ports) {
            pm_print_port_detail(port, 2);
        }
    }
    return PM_SHOW_PRINTED;
}
