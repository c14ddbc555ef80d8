// SPDX-License-Identifier: Apache-2.0
// The tables of SR policies: delays, and liveness states.
#pragma once

#include "schema/pm_records.h"

// A row for each candidate path, after the header when that is still to come.
void pm_show_srpolicy_delay_row(const pm_srpolicy_parcel &policy);
void pm_show_srpolicy_liveness_row(const pm_srpolicy_parcel &policy);
