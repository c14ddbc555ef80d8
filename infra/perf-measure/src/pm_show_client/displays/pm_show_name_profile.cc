// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_name_profile.h"

#include "pm_show_client/blocks/delay_profile.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/liveness_profile.h"
#include "pm_show_client/blocks/loss_profile.h"
#include "pm_show_client/blocks/probe_profile.h"
#include "pm_show_client/blocks/profile_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_utils/measurement_names.h"
#include "schema/pm_records.h"

namespace {

void print_title(const pm_name_profile_parcel &profile) {
    const char *const kind = pm_measurement_type_str(profile.Profile.MeasurementType);
    if (profile.Name == nullptr || profile.Name[0] == '\0') {
        pm_profile_default_title(profile.TransportType, kind);
    } else {
        pm_print_indented<"%s %s Profile Name: %s\n">(0, pm_transport_type_str(profile.TransportType), kind,
                                                      profile.Name);
    }
}

// Nothing for a kind that is none of the four.
void print_block(const pm_named_profile &profile, pm_transport_type_e transport) {
    switch (profile.MeasurementType) {
    case PM_MEASUREMENT_DELAY: return pm_show_delay_profile(profile.Delay, transport);
    case PM_MEASUREMENT_LOSS: return pm_show_loss_profile(profile.Loss);
    case PM_MEASUREMENT_LIVENESS: return pm_show_liveness_profile(profile.Liveness, transport);
    case PM_MEASUREMENT_PROBE: return pm_show_probe_profile(profile.Probe);
    }
}

}  // namespace

int pm_show_name_profile(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &profile = *static_cast<const pm_name_profile_parcel *>(decoded_parcel);
    print_title(profile);
    print_block(profile.Profile, profile.TransportType);
    return PM_SHOW_PRINTED;
}
