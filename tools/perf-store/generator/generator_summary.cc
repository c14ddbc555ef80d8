// SPDX-License-Identifier: Apache-2.0
// One summary a node: what the generated sessions add up to.
#include "paths/item_paths.h"
#include "perf-store/generator/generator.h"
#include "perf-store/generator/generator_parts.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

using path_grammar::place;

namespace {

constexpr std::uint64_t MSEC_PER_HOUR = 3600000;

// Sum of several transports' packets.
struct packets {
    std::uint64_t sent = 0;
    std::uint64_t received = 0;

    void add(const session_totals &totals) {
        sent += totals.sum.counters.QueryPacketsSent;
        received += totals.sum.counters.QueryPacketsReceived;
    }
};

// All sessions of a kind on a node.
packets packets_of(const gen_node &node, pm_measurement_type_e kind) {
    packets sum;
    for (const session_totals &totals : node.totals[kind]) {
        sum.add(totals);
    }
    return sum;
}

pm_delay_counters_info_parcel counters_of(const session_totals &totals, pm_transport_type_e transport) {
    session_state sum = totals.sum;
    sum.transport = transport;
    return gen_delay_counters(sum);
}

pm_delay_transport_summary_parcel delay_summary(const gen_node &node, pm_transport_type_e transport) {
    const session_totals &totals = node.of(PM_MEASUREMENT_DELAY, transport);
    pm_delay_transport_summary_parcel summary{};
    summary.DelaySessionCounters = {totals.sessions,     totals.not_running(), totals.running,     totals.running_ipv4,
                                    totals.running_ipv6, totals.running_mpls,  totals.running_srv6};
    summary.DelayTransportCounters = counters_of(totals, transport);
    return summary;
}

pm_liveness_summary_parcel liveness_summary(const gen_node &node) {
    const session_totals &endpoints = node.of(PM_MEASUREMENT_LIVENESS, PM_TRANSPORT_ENDPOINT);
    const session_totals &policies = node.of(PM_MEASUREMENT_LIVENESS, PM_TRANSPORT_SR_POLICY);
    pm_liveness_summary_parcel summary{};
    summary.EndpointLivenessSummary.EndpointLivenessSessionCounters = {endpoints.sessions,     endpoints.not_running(),
                                                                       endpoints.running,      endpoints.running_ipv4,
                                                                       endpoints.running_ipv6, endpoints.running_srv6};
    summary.EndpointLivenessSummary.EndpointLivenessTransportCounters = gen_endpoint_liveness_counters(endpoints.sum);
    summary.SRPolicyLivenessSummary.SRPolicyLivenessSessionCounters = {
        policies.sessions, policies.not_running(), policies.running, policies.running_ipv4, policies.running_ipv6};
    summary.SRPolicyLivenessSummary.SRPolicyLivenessTransportCounters = gen_srpolicy_liveness_counters(policies.sum);
    return summary;
}

// The route processor knows of the cards and keeps its sessions on disk; the cards do neither.
void fill_processor(const generation &set, pm_summary_parcel *record, item_memory *memory) {
    const gen_node &node = set.nodes.front();
    const auto cards = set.first_card == 0 ? 0 : static_cast<std::uint32_t>(set.nodes.size()) - set.first_card;
    record->CheckpointOperationQueue = {0, node.last_session, node.last_session / 16,
                                        GEN_BASE_MSEC - 24 * MSEC_PER_HOUR};
    record->LineCardDistributionInfo.ConnectedLineCards = cards;
    record->LineCardDistributionInfo.LineCardList = memory->array<std::uint32_t>(cards);
    for (std::uint32_t card = 0; card < cards; ++card) {
        record->LineCardDistributionInfo.LineCardList.elements[card] = set.nodes[set.first_card + card].id;
    }
}

void write_summary(generation *set, const gen_node &node) {
    auto *record = set->memory.make<pm_summary_parcel>();
    record->TotalEndpoints = node.endpoints;
    record->TotalInterfaces = node.interfaces;
    record->TotalSRPolicies = node.policies;
    record->TotalRSVP_TETunnels = node.tunnels;
    record->DelaySummary.EndpointDelaySummary = delay_summary(node, PM_TRANSPORT_ENDPOINT);
    record->DelaySummary.InterfaceDelaySummary = delay_summary(node, PM_TRANSPORT_INTERFACE);
    record->DelaySummary.SRPolicyDelaySummary = delay_summary(node, PM_TRANSPORT_SR_POLICY);
    record->DelaySummary.RSVP_TEDelaySummary = delay_summary(node, PM_TRANSPORT_RSVP_TE);
    const packets delay = packets_of(node, PM_MEASUREMENT_DELAY);
    record->DelaySummary.DelayGlobalCounters = {delay.sent, delay.received, 0, 0};
    record->LivenessSummary = liveness_summary(node);
    const packets liveness = packets_of(node, PM_MEASUREMENT_LIVENESS);
    const session_totals &losses = node.of(PM_MEASUREMENT_LOSS, PM_TRANSPORT_INTERFACE);
    record->LossSummary.InterfaceLossSummary.TotalLossSessions = losses.sessions;
    record->LossSummary.InterfaceLossSummary.LossTransportCounters = counters_of(losses, PM_TRANSPORT_INTERFACE);
    const packets loss = packets_of(node, PM_MEASUREMENT_LOSS);
    record->LossSummary.DelayGlobalCounters = {loss.sent, loss.received, 0, 0};
    record->GlobalCounters = {delay.sent + liveness.sent + loss.sent,
                              delay.received + liveness.received + loss.received, 0, 0};
    if (node.last_session != 0) {
        record->BurstTimerDrift = {GEN_BASE_MSEC - 2 * MSEC_PER_HOUR, 14, 3, 1};
        record->TXTimerDrift = {GEN_BASE_MSEC - MSEC_PER_HOUR, 11, 2, 1};
    }
    if (&node == set->nodes.data()) {
        fill_processor(*set, record, &set->memory);
    }
    set->lines.item(node.id, path_of(place::summary), pm_summary_parcel_descriptor(), record);
}

}  // namespace

void gen_summaries(generation *set) {
    for (const gen_node &node : set->nodes) {
        set->memory.reset();
        write_summary(set, node);
    }
}

}  // namespace perf_store
