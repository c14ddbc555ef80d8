// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/pm_show_clock.h"

std::uint64_t pm_show_now_msec = 0;
