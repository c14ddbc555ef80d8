// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_advert_reason.h"

bool pm_advert_reason_is_triggered(pm_advert_reason_e reason) {
    const bool is_threshold_or_anomaly =
        reason >= PM_ADVERT_REASON_PERIODIC_AVERAGE && reason <= PM_ADVERT_REASON_ANOMALY_STATIC;
    return is_threshold_or_anomaly || reason == PM_ADVERT_REASON_FIRST || reason == PM_ADVERT_REASON_NEW_CHILD_SESSION;
}
