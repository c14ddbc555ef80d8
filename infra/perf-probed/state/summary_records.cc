// SPDX-License-Identifier: Apache-2.0
// Totals over all sessions, rates, capabilities and the process.
#include <algorithm>
#include <cmath>
#include <set>

#include "perf-probed/state/node_records.h"
#include "perf-probed/state/session_records.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace probed {
namespace {

constexpr std::uint32_t UNLIMITED_OFFSET = 0xFFFFFFFF;
constexpr std::uint32_t LEAST_INTERVAL_USEC = 1000;
constexpr std::uint8_t PRIMARY_ACTIVE = 1;

bool is_ipv6(const session_entry &entry) { return entry.plan.address().family == ip_family::ipv6; }

void count_delay_session(const session_entry &entry, pm_delay_transport_summary_parcel *to) {
    pm_delay_session_counter_parcel &sessions = to->DelaySessionCounters;
    ++sessions.TotalDelaySessions;
    if (entry.shown_reason() != PM_NOT_RUNNING_NONE) {
        ++sessions.TotalProbeRunningWithErrorDelaySessions;
    } else {
        ++sessions.TotalProbeRunningDelaySessions;
        ++(is_ipv6(entry) ? sessions.TotalProbeRunningIPv6DelaySessions : sessions.TotalProbeRunningIPv4DelaySessions);
    }
    add_counters(record_delay_counters(entry), &to->DelayTransportCounters);
}

void count_liveness_session(const session_entry &entry, pm_endpoint_liveness_summary_parcel *to) {
    pm_endpoint_liveness_session_counters_parcel &sessions = to->EndpointLivenessSessionCounters;
    ++sessions.TotalSessions;
    if (entry.shown_reason() != PM_NOT_RUNNING_NONE) {
        ++sessions.TotalProbeRunningWithErrorSessions;
    } else {
        ++sessions.TotalProbeRunningSessions;
        ++(is_ipv6(entry) ? sessions.TotalProbeRunningIPv6Sessions : sessions.TotalProbeRunningIPv4Sessions);
    }
    add_counters(record_liveness_counters(entry), &to->EndpointLivenessTransportCounters);
}

void count_probe_session(const session_entry &entry, pm_probe_summary_parcel *to) {
    ++to->PT_PA_Sessions_counter.TotalSessions;
    ++(entry.shown_reason() != PM_NOT_RUNNING_NONE ? to->PT_PA_Sessions_counter.TotalProbeRunningWithErrorPASessions
                                                   : to->PT_PA_Sessions_counter.TotalProbeRunningPASessions);
    to->PT_PA_pkt_counters.PA_QueryPacketsSent += entry.run->counters().sent;
    for (const std::uint64_t errors : entry.run->counters().send_errors) {
        to->PT_PA_pkt_counters.PA_QueryPacketSentErrors += errors;
    }
}

pm_summary_timer_drift_parcel record_drift(const timer_drift &drift) {
    pm_summary_timer_drift_parcel record{};
    if (drift.packets > 0) {
        record.MaximumTimerDriftTimestamp = drift.maximum_msec;
        record.MaximumTimerDrift = static_cast<std::uint32_t>(drift.maximum / NSEC_PER_MSEC);
        const auto packets = static_cast<mono_nsec>(drift.packets);
        record.AverageTimerDrift = static_cast<std::uint32_t>(drift.sum / packets / NSEC_PER_MSEC);
        record.DriftAboveThresholdPercentage = drift.above_10_msec * 100 / drift.packets;
    }
    return record;
}

void count_session(const session_entry &entry, pm_summary_parcel *to) {
    switch (entry.plan.kind) {
    case session_kind::delay:
        count_delay_session(entry, entry.plan.of_interface() ? &to->DelaySummary.InterfaceDelaySummary
                                                             : &to->DelaySummary.EndpointDelaySummary);
        break;
    case session_kind::loss: {
        pm_loss_transport_summary_parcel &loss = to->LossSummary.InterfaceLossSummary;
        ++loss.TotalLossSessions;
        add_counters(record_delay_counters(entry), &loss.LossTransportCounters);
        break;
    }
    case session_kind::liveness: count_liveness_session(entry, &to->LivenessSummary.EndpointLivenessSummary); break;
    case session_kind::probe: count_probe_session(entry, &to->ProbeSummary); break;
    }
}

std::uint32_t whole_pps(double rate) { return static_cast<std::uint32_t>(std::ceil(rate)); }

pm_pps_transport_info record_rates(const packet_rates &rates, const rate_budget &budget) {
    pm_pps_transport_info record{};
    const double requested = std::max(budget.requested(), 1e-9);
    record.PPSBudget = whole_pps(budget.limit * rates.requested / requested);
    record.RequestedPPS = whole_pps(rates.requested);
    record.EffectivePPS = whole_pps(rates.effective);
    record.CurrentMultiHopTXIntervalStretchFactor = static_cast<std::uint32_t>(rates.effective * 100 / budget.limit);
    record.DampenedMultiHopTXIntervalStretchFactor = record.CurrentMultiHopTXIntervalStretchFactor;
    record.InuseMultiHopTXIntervalStretchFactor = budget.stretch_percent;
    return record;
}

// Whole seconds since then, one at least: the shows have another meaning for 0.
std::uint32_t age(mono_nsec then, mono_nsec now) {
    return static_cast<std::uint32_t>(std::max<mono_nsec>((now - then) / NSEC_PER_SEC, 1));
}

}  // namespace

void add_summary(const node_view &of, snapshot *out) {
    auto *const record = out->add_main<pm_summary_parcel>("summary", pm_summary_parcel_descriptor());
    record->DelaySummary.EndpointDelaySummary.DelayTransportCounters.ExclusiveCounters.TransportType =
        PM_TRANSPORT_ENDPOINT;
    record->DelaySummary.SRPolicyDelaySummary.DelayTransportCounters.ExclusiveCounters.TransportType =
        PM_TRANSPORT_SR_POLICY;
    record->DelaySummary.RSVP_TEDelaySummary.DelayTransportCounters.ExclusiveCounters.TransportType =
        PM_TRANSPORT_RSVP_TE;
    std::set<std::string_view> interfaces;
    std::set<std::string_view> endpoints;
    for (const auto &entry : of.sender.entries()) {
        if (entry == nullptr || entry->removed_at) {
            continue;
        }
        if (entry->plan.of_interface()) {
            interfaces.insert(entry->plan.name());
        } else {
            endpoints.insert(entry->plan.name());
        }
        count_session(*entry, record);
    }
    record->TotalInterfaces = static_cast<std::uint32_t>(interfaces.size());
    record->TotalEndpoints = static_cast<std::uint32_t>(endpoints.size());
    const prober_counters &counters = of.sender.counters();
    record->GlobalCounters = {counters.sent, counters.received[0] + counters.received[1], counters.invalid_session,
                              counters.no_session};
    record->TXTimerDrift = record_drift(of.sender.drift());
}

void add_packet_rates(const node_view &of, snapshot *out) {
    auto *const record = out->add_main<pm_pps_summary_parcel>("pps_summary", pm_pps_summary_parcel_descriptor());
    const rate_budget &budget = of.sender.budget();
    pm_pps_summary_info &cpu = record->CPUInfo;
    cpu.PPSPool.PPSPoolType = PM_PPS_POOL_SINGLE;
    cpu.PPSPool.SinglePPSPool.MaximumPPSForAllSession = budget.limit;
    cpu.PPSPool.SinglePPSPool.TotalPPSRequested = whole_pps(budget.requested());
    cpu.InterfaceSessionInfo = record_rates(budget.interface, budget);
    cpu.EndpointSessionInfo = record_rates(budget.endpoint, budget);
    cpu.SRPolicySessionInfo = record_rates({}, budget);
    cpu.RSVP_TESessionInfo = record_rates({}, budget);
}

// Packets that the kernel stamps count as injected by it, others as injected by software alone.
void add_capability(const node_view &of, snapshot *out) {
    auto *const record = out->add_main<pm_capability_parcel>("capability", pm_capability_parcel_descriptor());
    record->PerformanceMeasurementSupported = true;
    auto *const info = out->arena.make<pm_capability_info>();
    record->PerformanceMeasurementCapabilityInfo = info;
    const bool kernel_stamps = std::ranges::any_of(of.sender.sockets(), [](const sender_socket &each) {
        return each.socket.is_open() && each.socket.kernel_stamps();
    });
    info->SWFWDSupported = true;
    info->SWFWDCapabilityInfo = out->arena.make<pm_cap_swfwd_info>();
    *info->SWFWDCapabilityInfo = {of.settings.packet_rate, LEAST_INTERVAL_USEC};
    info->KPKTSupported = kernel_stamps;
    info->KPKTTwampSupported = kernel_stamps;
    if (kernel_stamps) {
        info->KPKTCapabilityInfo = out->arena.make<pm_cap_kpkt_info>();
        *info->KPKTCapabilityInfo = {of.settings.packet_rate, LEAST_INTERVAL_USEC};
    }
    info->MaxTimestampOffset = UNLIMITED_OFFSET;
    info->HardwareTimestampSupported =
        out->arena.make<std::remove_pointer_t<decltype(info->HardwareTimestampSupported)>>();
    *info->HardwareTimestampSupported = of.sender.counters().hardware_stamped > 0;
}

void add_process(const node_view &of, const moment &now, snapshot *out) {
    auto *const record = out->add_main<pm_mgmt_proc_fsm>("proc_fsm", pm_mgmt_proc_fsm_descriptor());
    const process_history &process = of.process;
    record->ProcessRole = PRIMARY_ACTIVE;
    record->ProcessState = static_cast<std::uint8_t>(process.state);
    record->StateTransitionTime = out->arena.array<std::uint32_t>(PROCESS_STATES);
    for (std::size_t state = 0; state < PROCESS_STATES; ++state) {
        const mono_nsec entered = process.entered[state];
        record->StateTransitionTime.elements[state] = entered == 0 ? 0 : age(entered, now.mono);
    }
    record->ReportCard = out->arena.array<pm_mgmt_proc_fsm_report_card>(process.collaborators.size());
    for (std::size_t index = 0; index < process.collaborators.size(); ++index) {
        const collaborator &each = process.collaborators[index];
        record->ReportCard.elements[index] = {out->arena.text(each.name), each.connected,
                                              each.changed == 0 ? 0 : age(each.changed, now.mono), false, 0};
    }
    record->EventHistory = out->arena.array<pm_mgmt_proc_fsm_event_history>(process.events.size());
    for (std::size_t index = 0; index < process.events.size(); ++index) {
        const process_event &each = process.events[index];
        record->EventHistory.elements[index] = {each.from, each.to, each.what, each.collaborator,
                                                age(each.time, now.mono)};
    }
}

}  // namespace probed
