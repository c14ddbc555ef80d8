// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_rsvpte_counters.h"

#include "pm_show_client/blocks/counters.h"
#include "pm_show_client/blocks/rsvpte_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

int pm_show_rsvpte_counters(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &tunnel = *static_cast<const pm_rsvpte_counters_parcel *>(decoded_parcel);
    pm_show_tunnel_name(tunnel.TunnelName);
    for (const pm_rsvpte_lsp_delay_counters_parcel &lsp : tunnel.RSVPTELSPDelayCounters) {
        pm_show_lsp_id(lsp.LSP_ID);
        pm_show_session_counters(&lsp.Counters, 4);
    }
    return PM_SHOW_PRINTED;
}
