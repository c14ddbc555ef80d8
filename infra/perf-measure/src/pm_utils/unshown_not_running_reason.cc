// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_not_running_reason.h"

namespace {

struct reason_class {
    pm_probe_running_error_reason reason;
    pm_query_error_class error_class;
};

constexpr reason_class ERROR_CLASSES[] = {
    {PM_NOT_RUNNING_INTERFACE_ADMIN_DOWN, PM_QUERY_ERROR_INTERFACE_DOWN},
    {PM_NOT_RUNNING_INTERFACE_DOWN, PM_QUERY_ERROR_INTERFACE_DOWN},
    {PM_NOT_RUNNING_NO_MPLS_CAPS, PM_QUERY_ERROR_NO_MPLS_CAPS},
    {PM_NOT_RUNNING_NO_IP_ADDRESS, PM_QUERY_ERROR_NO_IP_ADDRESS},
    {PM_NOT_RUNNING_IPV4_DOWN, PM_QUERY_ERROR_IPV4_DOWN},
    {PM_NOT_RUNNING_IPV6_DOWN, PM_QUERY_ERROR_IPV6_DOWN},
    {PM_NOT_RUNNING_IPV4_IPV6_DOWN, PM_QUERY_ERROR_IPV4_IPV6_DOWN},
    {PM_NOT_RUNNING_NO_NEXT_HOP_MAC, PM_QUERY_ERROR_NEXT_HOP_MAC_MISSING},
    {PM_NOT_RUNNING_NO_SEGMENT_LIST, PM_QUERY_ERROR_SEGMENT_LIST_MISSING},
};

}  // namespace

pm_query_error_class pm_not_running_reason_error_class(pm_probe_running_error_reason reason) {
    for (const reason_class &row : ERROR_CLASSES) {
        if (row.reason == reason) {
            return row.error_class;
        }
    }
    return PM_QUERY_ERROR_OTHER;
}

bool pm_not_running_reason_is_hard(pm_probe_running_error_reason reason) {
    switch (reason) {
    case PM_NOT_RUNNING_NONE:
    case PM_NOT_RUNNING_IPV4_DOWN:
    case PM_NOT_RUNNING_IPV6_DOWN:
    case PM_NOT_RUNNING_IPV4_IPV6_DOWN:
    case PM_NOT_RUNNING_NO_NEXT_HOP_MAC: return false;
    default: return true;
    }
}

bool pm_not_running_reason_is_reportable(pm_probe_running_error_reason reason) {
    switch (reason) {
    case PM_NOT_RUNNING_NONE:
    case PM_NOT_RUNNING_CLIENT_NOT_READY:
    case PM_NOT_RUNNING_SUSPENDED:
    case PM_NOT_RUNNING_IPV4_DOWN:
    case PM_NOT_RUNNING_IPV6_DOWN:
    case PM_NOT_RUNNING_IPV4_IPV6_DOWN:
    case PM_NOT_RUNNING_NO_NEXT_HOP_MAC:
    case PM_NOT_RUNNING_SRC_PORT_FAILED: return false;
    default: return true;
    }
}

bool pm_not_running_reason_is_transient(pm_probe_running_error_reason reason) {
    return reason == PM_NOT_RUNNING_SEGMENT_LIST_DAMPENING || reason == PM_NOT_RUNNING_SWFWD_NOT_READY;
}

bool pm_not_running_reason_is_permanent(pm_probe_running_error_reason) { return false; }
