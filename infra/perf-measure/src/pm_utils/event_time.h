// SPDX-License-Identifier: Apache-2.0
// The time of the realtime clock.
#pragma once

#include <cstdint>

// Milliseconds since the epoch, now.
[[nodiscard]] std::uint64_t pm_get_epoch_time_in_msec();
