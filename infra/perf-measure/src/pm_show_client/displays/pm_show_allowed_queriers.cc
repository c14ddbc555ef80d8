// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_allowed_queriers.h"

#include "pm_show_client/blocks/allowed_prefixes.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

int pm_show_allowed_queriers(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &summary = *static_cast<const pm_querier_prefixes_summary *>(decoded_parcel);
    const auto *const default_port = summary.ResponderUnAuthenticatedTwampDelayMeasurementDefaultPortStatus;
    const auto *const configured_port = summary.ResponderUnAuthenticatedTwampDelayMeasurementConfiguredPortStatus;
    if (default_port == nullptr && configured_port == nullptr) {
        pm_print_no_applicable_port();
        return PM_SHOW_PRINTED;
    }
    pm_print_allowed_prefixes("Allowed-querier IPv4 prefix", summary.IPv4PrefixInfo);
    pm_print_allowed_prefixes("Allowed-querier IPv6 prefix", summary.IPv6PrefixInfo);
    pm_print_ports_heading("RX UDP port status");
    pm_print_port_status("TWAMP-Light Default Unauthenticated responder port", default_port);
    pm_print_port_status("TWAMP-Light Configured Unauthenticated responder port", configured_port);
    return PM_SHOW_PRINTED;
}
