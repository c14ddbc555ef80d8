// SPDX-License-Identifier: Apache-2.0
// The configuration of a profile of liveness detection.
#pragma once

#include "schema/pm_records.h"

// `transport` says whose values are printed. A profile for PM_TRANSPORT_GENERIC serves several transports: what
// takes effect for each of them is printed.
void pm_show_liveness_profile(const pm_liveness_transport_profile_parcel &profile, pm_transport_type_e transport);
