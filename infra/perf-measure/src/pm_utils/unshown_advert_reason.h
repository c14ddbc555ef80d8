// SPDX-License-Identifier: Apache-2.0
// Called by no show: what triggered an advertisement.
#pragma once

#include "schema/pm_enums.h"

// Whether measured values triggered the advertisement: a crossed threshold, an anomaly, a first
// result or a new child session.
[[nodiscard]] bool pm_advert_reason_is_triggered(pm_advert_reason_e reason);
