// SPDX-License-Identifier: Apache-2.0
// Whether a session can run on this host as it is now, and if so from where: the reasons for which the shows have
// words.
#pragma once

#include <cstdint>

#include "perf-probed/config/config.h"
#include "perf-probed/net/address.h"
#include "perf-probed/net/host_state.h"
#include "schema/pm_enums.h"

namespace probed {

struct resolved {
    pm_probe_running_error_reason reason = PM_NOT_RUNNING_NONE;
    ip_address source;            // none: the system chooses
    std::uint32_t interface = 0;  // to leave by; 0: as the routes say
};

// `has_profile`: the profile that it names is there. `mode`: of the profile; liveness and probes have two-way.
[[nodiscard]] resolved resolve(const endpoint_config &endpoint, bool has_profile, pm_delay_mode_e mode,
                               const host_state &host);
[[nodiscard]] resolved resolve(const interface_config &interface, bool has_profile, pm_delay_mode_e mode,
                               const host_state &host);

}  // namespace probed
