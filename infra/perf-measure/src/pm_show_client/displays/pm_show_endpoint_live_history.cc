// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_endpoint_live_history.h"

#include "pm_show_client/displays/pm_show_endpoint_history.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

int pm_show_endpoint_live_history(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    if (static_cast<const pm_endpoint_history_parcel *>(decoded_parcel)->EPLivenessDetectionEnabled == 0) {
        return PM_SHOW_NOTHING;
    }
    return pm_show_endpoint_history(decoded_parcel);
}
