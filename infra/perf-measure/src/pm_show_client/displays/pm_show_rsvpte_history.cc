// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_rsvpte_history.h"

#include "pm_show_client/blocks/history.h"
#include "pm_show_client/blocks/rsvpte_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

int pm_show_rsvpte_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &history = *static_cast<const pm_rsvpte_history_parcel *>(decoded_parcel);
    pm_show_tunnel_name(history.TunnelName);
    for (const pm_rsvpte_lsp_history_parcel &lsp : history.LSPList) {
        pm_show_lsp_id(lsp.LSP_ID);
        print_history_sample_union(&lsp.HistoryUnion, 4, 0);
    }
    return PM_SHOW_PRINTED;
}
