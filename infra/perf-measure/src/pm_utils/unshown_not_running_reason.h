// SPDX-License-Identifier: Apache-2.0
// Called by no show: how serious a reason is for which a probe is not running.
#pragma once

#include <cstdint>

#include "schema/pm_enums.h"

// Which counter of unsent query packets a reason belongs to, in the order of those counters.
enum pm_query_error_class : std::int32_t {
    PM_QUERY_ERROR_OTHER = 1,
    PM_QUERY_ERROR_INTERFACE_DOWN = 2,
    PM_QUERY_ERROR_NO_MPLS_CAPS = 3,
    PM_QUERY_ERROR_NO_IP_ADDRESS = 4,
    PM_QUERY_ERROR_IPV4_DOWN = 5,
    PM_QUERY_ERROR_IPV6_DOWN = 6,
    PM_QUERY_ERROR_IPV4_IPV6_DOWN = 7,
    PM_QUERY_ERROR_NEXT_HOP_MAC_MISSING = 8,
    PM_QUERY_ERROR_SEGMENT_LIST_MISSING = 9,
};

// PM_QUERY_ERROR_OTHER for every reason without a counter of its own, zero included.
[[nodiscard]] pm_query_error_class pm_not_running_reason_error_class(pm_probe_running_error_reason reason);

// The following take any value; reasons without a text are hard, reportable and not transient.

// The session is in error, not merely waiting for the interface's protocols or its next hop's MAC.
[[nodiscard]] bool pm_not_running_reason_is_hard(pm_probe_running_error_reason reason);

// The session shows the reason.
[[nodiscard]] bool pm_not_running_reason_is_reportable(pm_probe_running_error_reason reason);

// The reason may pass by itself.
[[nodiscard]] bool pm_not_running_reason_is_transient(pm_probe_running_error_reason reason);

// Always false: no reason is of this kind.
[[nodiscard]] bool pm_not_running_reason_is_permanent(pm_probe_running_error_reason reason);
