// SPDX-License-Identifier: Apache-2.0
// Words for the inner workings of the measurement engine: its queues, events and distribution. More are in
// unshown_engine_names.h.
//
// Every routine takes any value and returns constant text, never null; a value without a word of
// its own gives the word stated as "else".
#pragma once

#include <cstdint>

#include "schema/pm_enums.h"

// From 0; else "Unknown queue type".
[[nodiscard]] const char *pm_queue_type_str(std::int32_t type);

// Events of the interface manager, from 0; else "UNKNOWN".
[[nodiscard]] const char *pm_im_event_str(std::int32_t type);

// Why the distribution of a record waits for another try; else "".
[[nodiscard]] const char *pm_dr_retry_reason_str(pm_dr_retry_reason_e reason);
