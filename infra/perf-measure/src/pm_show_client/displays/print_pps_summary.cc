// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/print_pps_summary.h"

#include "base/pm_assert.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/measurement_names.h"
#include "schema/pm_records.h"

namespace {

// The record's burst interval factors are not shown.
void print_sessions(const pm_pps_transport_info &sessions) {
    pm_lines_at(6).number("Total PPS Budget", sessions.PPSBudget);
    pm_lines_at(6).number("Total PPS Requested", sessions.RequestedPPS);
    pm_lines_at(6).number("Total PPS Effectively In-use", sessions.EffectivePPS);
    pm_lines_at(6).percent("PPS Budget Usage", sessions.CurrentMultiHopTXIntervalStretchFactor);
    if (pm_show_options.detail) {
        pm_lines_at(8).percent("Dampened PPS Budget Usage", sessions.DampenedMultiHopTXIntervalStretchFactor);
    }
    pm_lines_at(6).percent("In-use TX Interval Stretched Factor", sessions.InuseMultiHopTXIntervalStretchFactor);
}

void print_sessions(pm_text heading, const pm_pps_transport_info &sessions) {
    pm_print_empty_line();
    pm_print_heading(4, heading);
    print_sessions(sessions);
}

// Both pools end with these.
template <class Pool>
void print_budget_detail(const Pool &pool) {
    if (pm_show_options.detail) {
        pm_lines_at(2).number("Guaranteed Minimum PPS Budget", pool.MinimumPPSBudget);
        pm_lines_at(2).number("Budget Rebalance PPS Threshold", pool.PPSBudgetRebalanceThreshold);
    }
}

void print_interface_sessions(const pm_pps_summary_info &cpu) {
    print_sessions("Interface Sessions", cpu.InterfaceSessionInfo);
}

void print_single_pool(const pm_pps_summary_info &cpu) {
    const pm_single_pps_pool_parcel &pool = cpu.PPSPool.SinglePPSPool;
    pm_lines_at(2).number("Total PPS Limit", pool.MaximumPPSForAllSession);
    pm_lines_at(2).number("Total PPS Requested", pool.TotalPPSRequested);
    print_budget_detail(pool);
    print_interface_sessions(cpu);
}

void print_multiple_pools(const pm_pps_summary_info &cpu) {
    const pm_multi_pps_pool_parcel &pool = cpu.PPSPool.MultiplePPSPool;
    pm_lines_at(2).number("Interface session PPS limit", pool.MaximumPPSForInterfaceSession);
    pm_lines_at(2).number("Interface session PPS Requested", pool.TotalPPSRequestedForInterfaceSession);
    print_interface_sessions(cpu);
    pm_print_empty_line();
    pm_lines_at(2).number("Multi-hop session PPS limit", pool.MaximumPPSForMutihopSession);
    pm_lines_at(2).number("Multi-hop session PPS Requested", pool.TotalPPSRequestedForMHSession);
    print_budget_detail(pool);
}

void print_multihop_sessions(const pm_pps_summary_info &cpu) {
    print_sessions("SR Policy Sessions", cpu.SRPolicySessionInfo);
    print_sessions("RSVP-TE Tunnel Sessions", cpu.RSVP_TESessionInfo);
    print_sessions("Endpoint Sessions", cpu.EndpointSessionInfo);
}

void print_cpu(const pm_pps_summary_info &cpu) {
    const pm_rl_pps_pool_type_e type = cpu.PPSPool.PPSPoolType;
    pm_print_indented<"%-46s: %s\n\n">(2, "PPS Pool type", pm_pps_pool_type_str(type));
    if (type == PM_PPS_POOL_SINGLE) {
        print_single_pool(cpu);
    } else if (type == PM_PPS_POOL_MULTIPLE) {
        print_multiple_pools(cpu);
    } else {
        return;  // a pool of no known type has no numbers, and its sessions are not shown either
    }
    print_multihop_sessions(cpu);
}

// The first number of the pool, whatever its type; 0 for a pool that holds none.
std::uint32_t npu_limit(const pm_pps_pool &pool) {
    switch (pool.PPSPoolType) {
    case PM_PPS_POOL_SINGLE: return pool.SinglePPSPool.MaximumPPSForAllSession;
    case PM_PPS_POOL_MULTIPLE: return pool.MultiplePPSPool.MaximumPPSForInterfaceSession;
    default: return 0;
    }
}

void print_npus(const parcel_array<pm_pps_npu_summary_info> &npus) {
    pm_print<"\n%*sNPU Offloaded Sessions:">(2, "");  // the first NPU ends the line
    for (std::uint32_t i = 0; i < npus.count; ++i) {
        const pm_pps_npu_summary_info &npu = npus[i];
        // NPUs are named by their place in the list, not by NPU_ID.
        pm_print<"\n%*sNPU%u:\n">(4, "", i);
        pm_print_heading(4, "SR Policy");
        pm_lines_at(6).number("Total PPS Limit", npu_limit(npu.PPSPool));
        print_sessions(npu.SRPolicySessionInfo);
    }
}

}  // namespace

int print_pps_summary(const void *decoded_parcel) {
    PM_ASSERT(decoded_parcel != nullptr, "NULL != decoded_parcel", "pm_show_client",
              "errcode print_pps_summary(const void *)");
    const auto &summary = *static_cast<const pm_pps_summary_parcel *>(decoded_parcel);
    print_cpu(summary.CPUInfo);
    if (summary.NPUPtr.NPUinfoList.count != 0) {
        print_npus(summary.NPUPtr.NPUinfoList);
    }
    return PM_SHOW_PRINTED;
}
