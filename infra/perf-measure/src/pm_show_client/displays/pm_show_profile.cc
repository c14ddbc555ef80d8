// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_profile.h"

#include "pm_show_client/blocks/delay_profile.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/liveness_profile.h"
#include "pm_show_client/blocks/probe_profile.h"
#include "pm_show_client/blocks/profile_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "schema/pm_records.h"

namespace {

struct delay_section {
    pm_transport_type_e transport;
    pm_delay_transport_profile_parcel pm_delay_profile_parcel::*profile;
};

constexpr delay_section DELAY_SECTIONS[] = {
    {PM_TRANSPORT_INTERFACE, &pm_delay_profile_parcel::InterfaceDelayProfile},
    {PM_TRANSPORT_RSVP_TE, &pm_delay_profile_parcel::RSVP_TEDelayProfile},
    {PM_TRANSPORT_SR_POLICY, &pm_delay_profile_parcel::SRPolicyDelayProfile},
    {PM_TRANSPORT_ENDPOINT, &pm_delay_profile_parcel::Endpoint_DelayProfile},
};

struct liveness_section {
    pm_transport_type_e transport;
    pm_liveness_transport_profile_parcel pm_liveness_profile_parcel::*profile;
};

constexpr liveness_section LIVENESS_SECTIONS[] = {
    {PM_TRANSPORT_SR_POLICY, &pm_liveness_profile_parcel::SRPolicyLivenessProfile},
    {PM_TRANSPORT_ENDPOINT, &pm_liveness_profile_parcel::EndpointLivenessProfile},
};

bool is_selected(pm_transport_type_e transport) {
    return !pm_show_options.profile_type_set || pm_show_options.profile_type == static_cast<std::uint32_t>(transport);
}

void print_delay_sections(const pm_delay_profile_parcel &profiles) {
    for (const delay_section &section : DELAY_SECTIONS) {
        if (!is_selected(section.transport)) {
            continue;
        }
        // Every title but the interfaces' is after an empty line, also when it is the first.
        if (section.transport != PM_TRANSPORT_INTERFACE) {
            pm_print_empty_line();
        }
        pm_profile_default_title(section.transport, pm_measurement_type_str(PM_MEASUREMENT_DELAY));
        pm_show_delay_profile(profiles.*section.profile, section.transport);
    }
}

void print_liveness_sections(const pm_liveness_profile_parcel &profiles) {
    for (const liveness_section &section : LIVENESS_SECTIONS) {
        if (is_selected(section.transport)) {
            pm_print_empty_line();
            pm_profile_default_title(section.transport, pm_measurement_type_str(PM_MEASUREMENT_LIVENESS));
            pm_show_liveness_profile(profiles.*section.profile, section.transport);
        }
    }
}

void print_probe_section(const pm_probe_profile_parcel &profiles) {
    if (is_selected(PM_TRANSPORT_ENDPOINT)) {
        pm_print_empty_line();
        pm_profile_default_title(PM_TRANSPORT_ENDPOINT, "Probe Measurement");
        pm_show_probe_profile(profiles.EndpointProbeProfile);
    }
}

void print_sections(const pm_profile_parcel &profiles) {
    const pm_show_options_record &options = pm_show_options;
    if (options.loss_kind) {
        return;  // loss has no section
    }
    if (options.delay_kind) {
        print_delay_sections(profiles.DelayProfile);
    } else if (options.liveness_kind) {
        print_liveness_sections(profiles.LivenessProfile);
    } else if (options.probe_kind) {
        print_probe_section(profiles.ProbeProfile);
    } else {
        print_delay_sections(profiles.DelayProfile);
        print_liveness_sections(profiles.LivenessProfile);
        print_probe_section(profiles.ProbeProfile);
    }
}

}  // namespace

int pm_show_profile(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    print_sections(*static_cast<const pm_profile_parcel *>(decoded_parcel));
    return PM_SHOW_PRINTED;
}
