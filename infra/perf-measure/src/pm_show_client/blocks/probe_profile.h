// SPDX-License-Identifier: Apache-2.0
// The configuration of a profile of probes.
#pragma once

#include "schema/pm_records.h"

void pm_show_probe_profile(const pm_probe_transport_profile_parcel &profile);
