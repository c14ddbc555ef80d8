// The configuration of a measurement profile, one block for each kind of measurement.
//
// `transport` says whose values a block prints. A profile for PM_TRANSPORT_GENERIC serves several
// transports: its block prints what takes effect for each of them.
#pragma once

#include "schema/pm_records.h"

void pm_show_delay_profile(const pm_delay_transport_profile_parcel &profile, pm_transport_type_e transport);
void pm_show_loss_profile(const pm_loss_transport_profile_parcel &profile);
void pm_show_liveness_profile(const pm_liveness_transport_profile_parcel &profile, pm_transport_type_e transport);
void pm_show_probe_profile(const pm_probe_transport_profile_parcel &profile);
