// SPDX-License-Identifier: Apache-2.0
// Records as a busy router publishes them: plausible counters and delays, many zeroes.
#pragma once

#include "schema/pm_records.h"

// A route processor's summary with two NPUs.
[[nodiscard]] const pm_summary_parcel &sample_summary();
// A policy with two candidate paths of two segment lists of two atomic paths each.
[[nodiscard]] const pm_srpolicy_parcel &sample_policy();
// An interface with one delay session and its last four samples.
[[nodiscard]] const pm_intf_parcel &sample_interface();
