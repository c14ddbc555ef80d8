// SPDX-License-Identifier: Apache-2.0
// The configuration of a profile of loss measurement.
#pragma once

#include "schema/pm_records.h"

void pm_show_loss_profile(const pm_loss_transport_profile_parcel &profile);
