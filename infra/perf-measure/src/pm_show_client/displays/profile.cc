// See profile.h.
#include "pm_show_client/displays/profile.h"

#include "pm_show_client/blocks/profile_blocks.h"
#include "pm_show_client/blocks/profile_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"

namespace {

// "SR Policy Delay Measurement (default)".
void print_default_title(pm_transport_type_e transport, const char *kind) {
    pm_print_indented<"%s %s (default)\n">(0, pm_transport_type_str(transport), kind);
}

// Default profiles --------------------------------------------------------------------------------

struct delay_section {
    pm_transport_type_e transport;
    pm_delay_transport_profile_parcel pm_delay_profile_parcel::*profile;
};

constexpr delay_section delay_sections[] = {
    {PM_TRANSPORT_INTERFACE, &pm_delay_profile_parcel::InterfaceDelayProfile},
    {PM_TRANSPORT_RSVP_TE, &pm_delay_profile_parcel::RSVP_TEDelayProfile},
    {PM_TRANSPORT_SR_POLICY, &pm_delay_profile_parcel::SRPolicyDelayProfile},
    {PM_TRANSPORT_ENDPOINT, &pm_delay_profile_parcel::Endpoint_DelayProfile},
};

struct liveness_section {
    pm_transport_type_e transport;
    pm_liveness_transport_profile_parcel pm_liveness_profile_parcel::*profile;
};

constexpr liveness_section liveness_sections[] = {
    {PM_TRANSPORT_SR_POLICY, &pm_liveness_profile_parcel::SRPolicyLivenessProfile},
    {PM_TRANSPORT_ENDPOINT, &pm_liveness_profile_parcel::EndpointLivenessProfile},
};

bool is_selected(pm_transport_type_e transport) {
    return !pm_show_options.profile_type_set || pm_show_options.profile_type == static_cast<std::uint32_t>(transport);
}

void print_delay_sections(const pm_delay_profile_parcel &profiles) {
    for (const delay_section &section : delay_sections) {
        if (!is_selected(section.transport)) {
            continue;
        }
        // Every title but the interfaces' stands below an empty line, also when it is the first.
        if (section.transport != PM_TRANSPORT_INTERFACE) {
            pm_print_empty_line();
        }
        print_default_title(section.transport, pm_measurement_type_str(PM_MEASUREMENT_DELAY));
        pm_show_delay_profile(profiles.*section.profile, section.transport);
    }
}

void print_liveness_sections(const pm_liveness_profile_parcel &profiles) {
    for (const liveness_section &section : liveness_sections) {
        if (is_selected(section.transport)) {
            pm_print_empty_line();
            print_default_title(section.transport, pm_measurement_type_str(PM_MEASUREMENT_LIVENESS));
            pm_show_liveness_profile(profiles.*section.profile, section.transport);
        }
    }
}

void print_probe_section(const pm_probe_profile_parcel &profiles) {
    if (is_selected(PM_TRANSPORT_ENDPOINT)) {
        pm_print_empty_line();
        print_default_title(PM_TRANSPORT_ENDPOINT, "Probe Measurement");
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

// One profile -------------------------------------------------------------------------------------

void print_title(const pm_name_profile_parcel &profile) {
    const char *const kind = pm_measurement_type_str(profile.Profile.MeasurementType);
    if (profile.Name == nullptr || profile.Name[0] == '\0') {
        print_default_title(profile.TransportType, kind);
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

int pm_show_profile(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    print_sections(*static_cast<const pm_profile_parcel *>(decoded_parcel));
    return PM_SHOW_PRINTED;
}
