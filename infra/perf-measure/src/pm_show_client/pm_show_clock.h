// SPDX-License-Identifier: Apache-2.0
// The time that the whole command works with.
#pragma once

#include <cstdint>

// Wall-clock milliseconds since the epoch, taken once at start. Every age is computed from it.
extern std::uint64_t pm_show_now_msec;
