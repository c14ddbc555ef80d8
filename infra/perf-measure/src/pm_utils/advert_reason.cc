// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/advert_reason.h"

#include "pm_utils/name_table.h"

namespace {

constexpr char NO_SHORT_CODE[] = "N/A";

constexpr pm_long_and_short_name ADVERT_REASONS[] = {
    {PM_ADVERT_REASON_NONE, "No advertisements have occured", "NONE"},  // spelled so
    {PM_ADVERT_REASON_PERIODIC_AVERAGE, "Periodic timer, avg delay threshold crossed", "PER-AVG"},
    {PM_ADVERT_REASON_PERIODIC_MINIMUM, "Periodic timer, min delay threshold crossed", "PER-MIN"},
    {PM_ADVERT_REASON_PERIODIC_MAXIMUM, "Periodic timer, max delay threshold crossed", "PER-MAX"},
    {PM_ADVERT_REASON_PERIODIC_VARIANCE, "Periodic timer, delay variance threshold crossed", NO_SHORT_CODE},
    {PM_ADVERT_REASON_ACCELERATED_AVERAGE, "Accel threshold crossed, avg delay threshold crossed", "ACCEL-AVG"},
    {PM_ADVERT_REASON_ACCELERATED_MINIMUM, "Accel threshold crossed, min delay threshold crossed", "ACCEL-MIN"},
    {PM_ADVERT_REASON_ACCELERATED_MAXIMUM, "Accel threshold crossed, max delay threshold crossed", "ACCEL-MAX"},
    {PM_ADVERT_REASON_UPPER_BOUND_AVERAGE, "Accel threshold crossed, avg delay upper-bound crossed", "ACCEL-UP-AVG"},
    {PM_ADVERT_REASON_UPPER_BOUND_MINIMUM, "Accel threshold crossed, min delay upper-bound crossed", "ACCEL-UP-MIN"},
    {PM_ADVERT_REASON_UPPER_BOUND_MAXIMUM, "Accel threshold crossed, max delay upper-bound crossed", "ACCEL-UP-MAX"},
    {PM_ADVERT_REASON_ANOMALY_DYNAMIC, "Min delay A flag toggled and dynamic delay is in effect", "ANOM-MIN-DYN"},
    {PM_ADVERT_REASON_ANOMALY_STATIC, "Min delay A flag toggled and static delay is in effect", "ANOM-MIN-STA"},
    {PM_ADVERT_REASON_ENABLED, "Advertisement enabled", "ENABLE"},
    {PM_ADVERT_REASON_DISABLED, "Advertisement disabled", "DISABLE"},
    {PM_ADVERT_REASON_SESSION_DELETED, "Session deleted", "DELETE"},
    {PM_ADVERT_REASON_EXEC_CLEAR, "Cleared through exec command", "EXEC-CLEAR"},
    {PM_ADVERT_REASON_DELAY_CONFIG, "Advertise delay config", "ADV-CFG"},
    {PM_ADVERT_REASON_DELAY_UNCONFIG, "Advertise delay unconfig", "ADV-UNCFG"},
    {PM_ADVERT_REASON_CONTROL_CODE_ERROR, "Control code error", "ERROR"},
    {PM_ADVERT_REASON_FIRST, "First advertisement", "FIRST"},
    {PM_ADVERT_REASON_LINK_DOWN, "Link state changed to down", "LINK-DOWN"},
    {PM_ADVERT_REASON_NEW_CHILD_SESSION, "New child session", "NEW-SESSION"},
    {PM_ADVERT_REASON_SESSION_ERROR, "Performance measurement session error", "PM-ERROR"},
    {PM_ADVERT_REASON_DYNAMIC_DELAY, "Dynamic delay advertisement is in effect", "DYN-DM"},
    {PM_ADVERT_REASON_PATH_TRACING_CONFIG, "Path tracing config", "PT-CFG"},
    {PM_ADVERT_REASON_PATH_TRACING_UNCONFIG, "Path tracing unconfig", "PT-UNCFG"},
    {PM_ADVERT_REASON_PATH_TRACING_READY, "Path tracing interface ready", "PT-INTF_READY"},
};

}  // namespace

const char *pm_advert_reason_str(pm_advert_reason_e reason) {
    return pm_name_of(ADVERT_REASONS, reason, "Invalid advertisement reason");
}

const char *pm_advert_reason_short_str(pm_advert_reason_e reason) {
    return pm_name_of(ADVERT_REASONS, reason, NO_SHORT_CODE, &pm_long_and_short_name::short_text);
}

bool pm_advert_reason_withdraws_values(pm_advert_reason_e reason) {
    switch (reason) {
    case PM_ADVERT_REASON_DISABLED:
    case PM_ADVERT_REASON_SESSION_DELETED:
    case PM_ADVERT_REASON_EXEC_CLEAR:
    case PM_ADVERT_REASON_DELAY_UNCONFIG:
    case PM_ADVERT_REASON_CONTROL_CODE_ERROR:
    case PM_ADVERT_REASON_SESSION_ERROR: return true;
    default: return false;
    }
}
