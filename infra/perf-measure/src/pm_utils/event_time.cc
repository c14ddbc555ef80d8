// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/event_time.h"

#include <ctime>

#include "platform/kal_time.h"

std::uint64_t pm_get_epoch_time_in_msec() {
    std::timespec now{};
    kal_time_get_timespec_realtime(&now);
    return kal_timespec_to_msec64(&now);
}
