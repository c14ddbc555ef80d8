// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_rsvpte.h"

#include "platform/address.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/rsvpte_lsp_session.h"
#include "pm_show_client/blocks/tables.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"

namespace {

constexpr int COLON = 30;

void print_detail(const pm_rsvpte_parcel &tunnel) {
    pm_print<"Tunnel name: %s (ifh: 0x%x)\n">(tunnel.TunnelName, tunnel.InterfaceHandle);
    pm_lines{2, COLON}.text("Destination", inet_ntoa_r(tunnel.TunnelDestinationIPv4Address));
    for (const pm_rsvpte_lsp_delay_parcel &lsp : tunnel.RSVPTELSPDelaySessions) {
        pm_print_empty_line();
        pm_print_heading(2, "Delay Measurement session");
        pm_show_rsvpte_lsp_session(&lsp, 4, COLON);
    }
}

void print_header() {
    pm_print<"%-27s%-7s%-13s %-32s\n">("Tunnel Name", "LSP ID", "Tx/Rx", "Avg/Min/Max/Variance (uSec)");
}

void print_cells(const pm_scb_probe_parcel &probe) {
    if (!pm_print_idle_cell(probe)) {
        const pm_delay_texts texts = pm_describe_delays(probe);
        pm_print<"%-13.13s %-31.31s">(texts.packets, texts.delays);
    }
}

void print_rows(const pm_rsvpte_parcel &tunnel) {
    pm_print_table_header(print_header);
    pm_print<"%-27.27s">(tunnel.TunnelName);  // cut without a mark, unlike the names of other tables
    if (tunnel.RSVPTELSPDelaySessions.count == 0) {
        pm_print_no_session();
        return;
    }
    for (const pm_rsvpte_lsp_delay_parcel &lsp : tunnel.RSVPTELSPDelaySessions) {
        if (&lsp != tunnel.RSVPTELSPDelaySessions.begin()) {
            pm_print<"\n%27.27s">("");
        }
        pm_print<"%-7u">(lsp.LSP_ID);
        print_cells(lsp.CurrentProbe);
    }
}

}  // namespace

int pm_show_rsvpte(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &tunnel = *static_cast<const pm_rsvpte_parcel *>(decoded_parcel);
    (pm_show_options.brief ? print_rows : print_detail)(tunnel);
    return PM_SHOW_PRINTED;
}
