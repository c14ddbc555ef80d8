// SPDX-License-Identifier: Apache-2.0
// What the service manager is told of this process (sd_notify(3)): a datagram to the socket that it names in the
// environment. Nothing happens where there is none.
#pragma once

#include <string>

#include "perf-probed/schedule/clocks.h"

namespace probed {

// `state` is for example "READY=1" or "STATUS=...", several separated by line ends.
void notify_manager(const std::string &state);

// How long the manager waits for "WATCHDOG=1" before it takes this process for dead (sd_watchdog_enabled(3)); 0: it
// does not wait for that.
[[nodiscard]] mono_nsec watchdog_interval();

}  // namespace probed
