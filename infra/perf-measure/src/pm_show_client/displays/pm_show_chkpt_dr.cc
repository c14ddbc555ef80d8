// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_chkpt_dr.h"

#include "pm_show_client/blocks/chkpt_blob.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_utils/node_name.h"
#include "schema/pm_records.h"

int pm_show_chkpt_dr(const void *decoded_parcel) {
    const auto *const parcel = static_cast<const pm_chkpt_dr_info *>(decoded_parcel);
    if (!pm_has_blob(parcel)) {
        pm_print<"No session distribution record available\n">();
        return PM_SHOW_NO_RECORD;
    }
    const ChkptDistribution distribution = pm_decode_blob(parcel->buf, ChkptDistribution_decode);
    pm_print<"LC list: ">();
    if (distribution.linecards.count == 0) {
        pm_print<"None\n">();
        return PM_SHOW_PRINTED;
    }
    for (const std::uint32_t node : distribution.linecards) {
        pm_print<"%s ">(pm_name_of_node(node).text);
    }
    pm_print_empty_line();
    return PM_SHOW_PRINTED;
}
