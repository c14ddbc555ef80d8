// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/liveness_profile.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/profile_lines.h"
#include "pm_utils/measurement_names.h"

namespace {

// Intervals ---------------------------------------------------------------------------------------

std::uint32_t value_or_zero(const std::uint32_t *value) { return value != nullptr ? *value : 0; }

// What an interval comes to on each NPU.
void print_npu_effective(const parcel_array<std::uint32_t> &effective, pm_text unit) {
    for (std::uint32_t npu = 0; npu < effective.count; ++npu) {
        pm_print<"%*sEffective for NPU%u:\n">(6, "", npu);
        pm_lines_at(8).unit("SR Policy", effective[npu], unit);
    }
}

// The intervals of a profile that runs on NPUs; nothing for transports without SR policies.
void print_npu_intervals(const pm_liveness_transport_profile_parcel &profile, pm_transport_type_e transport) {
    if (transport != PM_TRANSPORT_SR_POLICY && transport != PM_TRANSPORT_GENERIC) {
        return;
    }
    if (profile.TXIntervalEffectiveNPUSRPolicy.count != 0 && profile.TXInterval != nullptr) {
        pm_lines_at(4).unit("Tx interval", *profile.TXInterval, "uSec");
        if (transport == PM_TRANSPORT_GENERIC) {
            pm_lines_at(6).unit("Effective for Endpoint", profile.TXIntervalEffectiveEndpoint, "uSec");
        }
        print_npu_effective(profile.TXIntervalEffectiveNPUSRPolicy, "uSec");
    } else if (profile.BurstIntervalNPUEffective.count != 0 && profile.BurstInterval != nullptr) {
        pm_lines_at(4).unit("Burst interval", *profile.BurstInterval, "mSec");
        print_npu_effective(profile.BurstIntervalNPUEffective, "mSec");
    }
}

// 0 for a transport without a value of its own.
std::uint32_t effective_tx_interval(const pm_liveness_transport_profile_parcel &profile,
                                    pm_transport_type_e transport) {
    switch (transport) {
    case PM_TRANSPORT_SR_POLICY: return value_or_zero(profile.TXIntervalEffectiveSRPolicy);
    case PM_TRANSPORT_ENDPOINT: return profile.TXIntervalEffectiveEndpoint;
    default: return 0;
    }
}

void print_generic_intervals(const pm_liveness_transport_profile_parcel &profile) {
    if (profile.TXInterval != nullptr) {
        pm_lines_at(4).unit("Tx interval", *profile.TXInterval, "uSec");
        pm_lines_at(6).unit("Effective for SR Policy", value_or_zero(profile.TXIntervalEffectiveSRPolicy), "uSec");
        pm_lines_at(6).unit("Effective for Endpoint", profile.TXIntervalEffectiveEndpoint, "uSec");
    }
}

void print_intervals(const pm_liveness_transport_profile_parcel &profile, pm_transport_type_e transport) {
    if (profile.TXIntervalEffectiveNPUSRPolicy.count != 0 || profile.BurstIntervalNPUEffective.count != 0) {
        print_npu_intervals(profile, transport);
    } else if (transport == PM_TRANSPORT_GENERIC) {
        print_generic_intervals(profile);
    } else {
        pm_profile_tx_intervals(profile, effective_tx_interval(profile, transport));
    }
}

// Sessions ----------------------------------------------------------------------------------------

void print_npu_sessions(const parcel_array<std::uint32_t> &sessions, pm_transport_type_e transport) {
    pm_lines_at(4).enabled("NPU offload", true);
    if (sessions.count == 0) {
        return;
    }
    pm_print_heading(4, "NPU session count");
    for (std::uint32_t i = 0; i < sessions.count; ++i) {
        char npu[16];
        pm_format_text<"NPU%u">(npu, sizeof npu, i);
        if (transport == PM_TRANSPORT_GENERIC) {
            pm_print_heading(6, npu);
            pm_lines_at(8).number("SR Policy", sessions[i]);
        } else {
            pm_lines_at(6).number(npu, sessions[i]);
        }
    }
}

}  // namespace

void pm_show_liveness_profile(const pm_liveness_transport_profile_parcel &profile, pm_transport_type_e transport) {
    pm_profile_heading();
    pm_lines_at(4).text("Measurement mode", pm_delay_mode_str(profile.DelayMeasurementMode));
    pm_lines_at(4).text("Protocol type", pm_protocol_name_str(profile.PayloadType, profile.EncapMode));
    pm_print_heading(4, "Type of service");
    pm_lines_at(6).number("TWAMP-light DSCP", profile.TOS_DSCPValue);
    print_intervals(profile, transport);
    pm_profile_sweeping(profile.DestinationSweepingModeEnabled, profile.DestinationSweepingAddress,
                        profile.DestinationSweepingRange);
    pm_profile_flow_labels(profile.FlowLabel);
    pm_print_heading(4, "Liveness detection parameters");
    pm_lines_at(6).number("Multiplier", profile.LivenessDetection.Multiplier);
    pm_lines_at(6).enabled("Logging state change", profile.LivenessDetection.LoggingStateChangeEnabled);
    if (profile.NPUOffloadConfig.NPUOffloadEnabled) {
        print_npu_sessions(profile.NPUOffloadConfig.NpuSessionCount, transport);
    } else {
        pm_profile_cpu_sessions(profile, transport);
    }
}
