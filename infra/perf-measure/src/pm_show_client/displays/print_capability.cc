// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/print_capability.h"

#include <limits>

#include "base/pm_assert.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

namespace {

constexpr std::uint32_t UNLIMITED = std::numeric_limits<std::uint32_t>::max();

void print_support(pm_text label, bool supported) {
    pm_lines_at(2).text(label, supported ? "Supported" : "Not Supported");
}

void print_detail(pm_text label, std::uint32_t value) { pm_lines_at(4).number(label, value); }

void print_interval(pm_text label, std::uint32_t interval, pm_text unit) { pm_lines_at(4).unit(label, interval, unit); }

void print_inject(std::uint32_t max_rate_pps, std::uint32_t min_interval, pm_text unit) {
    print_detail("Max inject PPS", max_rate_pps);
    print_interval("Min inject interval", min_interval, unit);
}

void print_cpu_paths(const pm_capability_info &info) {
    print_support("SWFWD Inject", info.SWFWDSupported);
    if (const pm_cap_swfwd_info *const path = info.SWFWDCapabilityInfo) {
        print_inject(path->SWFWDMaxSupportedInjectPPSLimit, path->SWFWDMinSupportedInjectInterval, "usec");
    }
    print_support("KPKT Inject", info.KPKTSupported);
    print_support("KPKT TWAMP Inject", info.KPKTTwampSupported);
    if (const pm_cap_kpkt_info *const path = info.KPKTCapabilityInfo) {
        print_inject(path->KPKTMaxSupportedInjectPPSLimit, path->KPKTMinSupportedInjectInterval, "usec");
    }
    print_support("PD-DLL Inject/Punt", info.PD_DLLSupported);
    if (const pm_cap_pddll_info *const path = info.PD_DLLCapabilityInfo) {
        print_inject(path->PD_DLLMaxSupportedInjectPPSLimit, path->PD_DLLMinSupportedInjectInterval, "msec");
    }
}

void print_npu_offload(const pm_cap_hw_offload_info &offload) {
    pm_lines_at(4).text("NPU Offload Engine state", offload.NPUOffloadEngineReady ? "Initialized" : "Not initialized");
    print_detail("Number of NPUs", offload.NPUOffloadNPUCount);
    print_detail("Max inject PPS per NPU", offload.NPUOffloadMaxSupportedInjectPPSLimitPerNPU);
    print_interval("Min inject interval per NPU", offload.NPUOffloadMinSupportedInjectIntervalPerNPU, "usec");
    print_detail("Max number of sessions per NPU", offload.NPUOffloadMaxupportedSessionNumberPerNPU);
    if (offload.NPUOffloadPortInfoPerNPU.count == 0) {
        return;
    }
    pm_print<"\n  Source port per NPU information\n">();
    for (const pm_cap_npu_port_info &npu : offload.NPUOffloadPortInfoPerNPU) {
        print_detail("NPU Id", npu.NPUIdentifier);
        print_detail("Source port", npu.SourcePort);
    }
}

void print_timestamps(const pm_capability_info &info) {
    static constexpr char OFFSET[] = "Max Timestamp Offset";
    if (info.MaxTimestampOffset == UNLIMITED) {
        pm_lines_at(2).text(OFFSET, "Unlimited");
    } else {
        pm_lines_at(2).number(OFFSET, info.MaxTimestampOffset);
    }
    if (info.HardwareTimestampSupported != nullptr) {
        print_support("Hardware Timestamp", *info.HardwareTimestampSupported);
    }
}

void print_hardware(const pm_capability_info &info) {
    pm_print<"\n  Local hardware capability:\n">();
    print_cpu_paths(info);
    print_support("Platform NPU Offload", info.PlatformNPUOffloadSupported);
    print_support("Local Node NPU Offload", info.LocalNodeNPUOffloadSupported);
    if (info.NPUOffloadCapabilityInfo != nullptr) {
        print_npu_offload(*info.NPUOffloadCapabilityInfo);
    }
    print_support("Remote Punt", info.RemotePuntSupportec);
    print_support("Linecard Distribution", info.LinecardDistributionSupported);
    print_timestamps(info);
}

}  // namespace

int print_capability(const void *decoded_parcel) {
    PM_ASSERT(decoded_parcel != nullptr, "NULL != decoded_parcel", "pm_show_client",
              "errcode print_capability(const void *)");
    const auto &capability = *static_cast<const pm_capability_parcel *>(decoded_parcel);
    pm_print_heading(0, "Performance-measurement capability");
    print_support("Performance-Measurement", capability.PerformanceMeasurementSupported);
    if (capability.PerformanceMeasurementCapabilityInfo != nullptr) {
        print_hardware(*capability.PerformanceMeasurementCapabilityInfo);
    }
    return PM_SHOW_PRINTED;
}
