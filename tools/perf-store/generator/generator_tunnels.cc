// SPDX-License-Identifier: Apache-2.0
// RSVP-TE tunnels: a delay session for the LSP of each.
#include "paths/item_paths.h"
#include "perf-store/generator/generator.h"
#include "perf-store/generator/generator_parts.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

using path_grammar::place;

namespace {

constexpr std::uint32_t DESTINATION_IPV4 = 0xC6120000;  // 198.18.0.0
constexpr std::uint32_t LOCAL_LABEL = 24000;
constexpr std::uint32_t LABELS = 8000;

struct tunnel_state {
    std::uint32_t index = 0;
    const char *name = nullptr;
    std::uint32_t lsp = 0;
    session_state session;
};

pm_rsvpte_lsp_delay_parcel lsp_session(const tunnel_state &tunnel, item_memory *memory) {
    const session_state &session = tunnel.session;
    pm_rsvpte_lsp_delay_parcel lsp{};
    lsp.SessionId = session.id;
    lsp.TraceId = gen_trace_id(session);
    lsp.LSP_ID = tunnel.lsp;
    lsp.LSPSourceIPv4Address = gen_ipv4(GEN_ROUTER_IPV4);
    lsp.LocalLabel = LOCAL_LABEL + tunnel.index % LABELS;
    lsp.LastProbeResults = gen_last_results(session);
    lsp.CurrentProbe = gen_current_probe(session);
    lsp.ProbeHistory = gen_samples(session, memory);
    lsp.PeriodicAdvertisementIntervalInSec = gen_advertisement_interval(session);
    lsp.LastAdvertisementInformation = gen_last_advertisement(session);
    lsp.NextAdvertisementInformation = gen_next_advertisement(session);
    return lsp;
}

void write_item(generation *set, const tunnel_state &tunnel, std::string_view path, const parcel_descriptor *type,
                const void *record) {
    set->lines.item(set->route_processor().id, gen_text(path, tunnel.name), type, record);
}

void write_detail(generation *set, const tunnel_state &tunnel) {
    auto *record = set->memory.make<pm_rsvpte_parcel>();
    record->TunnelName = tunnel.name;
    record->InterfaceHandle = gen_tunnel_handle(tunnel.index);
    record->TunnelDestinationIPv4Address = gen_ipv4(DESTINATION_IPV4 + tunnel.index + 1);
    record->RSVPTELSPDelaySessions = set->memory.array_of({lsp_session(tunnel, &set->memory)});
    write_item(set, tunnel, path_of(place::rsvpte_detail), pm_rsvpte_parcel_descriptor(), record);
}

void write_counters(generation *set, const tunnel_state &tunnel) {
    auto *record = set->memory.make<pm_rsvpte_counters_parcel>();
    record->TunnelName = tunnel.name;
    record->RSVPTELSPDelayCounters =
        set->memory.array_of({pm_rsvpte_lsp_delay_counters_parcel{tunnel.lsp, gen_delay_counters(tunnel.session)}});
    write_item(set, tunnel, path_of(place::rsvpte_counters), pm_rsvpte_counters_parcel_descriptor(), record);
}

void write_history(generation *set, const tunnel_state &tunnel, std::string_view path, pm_history_type_e type) {
    auto *record = set->memory.make<pm_rsvpte_history_parcel>();
    record->TunnelName = tunnel.name;
    record->LSPList = set->memory.array_of(
        {pm_rsvpte_lsp_history_parcel{tunnel.lsp, gen_history(type, tunnel.session, &set->memory)}});
    write_item(set, tunnel, path, pm_rsvpte_history_parcel_descriptor(), record);
}

void write_session(generation *set, const tunnel_state &tunnel) {
    auto *record = set->memory.make<pm_session_parcel>();
    record->MeasurementType = tunnel.session.kind;
    record->Session.type = PM_TRANSPORT_RSVP_TE;
    record->Session.RSVPTETunnelSession = {tunnel.name, gen_tunnel_handle(tunnel.index),
                                           lsp_session(tunnel, &set->memory)};
    set->write_session(set->route_processor(), tunnel.session, *record);
}

tunnel_state make_tunnel(generation *set, std::uint32_t index) {
    random_source random(set->options.seed, random_subject::tunnel, index);
    tunnel_state tunnel;
    tunnel.index = index;
    tunnel.name = set->memory.text(gen_tunnel_name(index));
    tunnel.lsp = random.between(2, 9);
    session_state &session = tunnel.session;
    session.transport = PM_TRANSPORT_RSVP_TE;
    session.family = session_family::mpls;
    session.named_profile = index % 2 == 0;
    session.reason = gen_reason(&random, PM_TRANSPORT_RSVP_TE);
    session.typical_usec = random.between(400, 15000);
    set->run(&set->route_processor(), &random, &session);
    ++set->route_processor().tunnels;
    return tunnel;
}

}  // namespace

void gen_tunnels(generation *set) {
    for (std::uint32_t index = 0; index < set->options.tunnels && set->lines.good(); ++index) {
        set->memory.reset();
        const tunnel_state tunnel = make_tunnel(set, index);
        write_detail(set, tunnel);
        write_counters(set, tunnel);
        write_history(set, tunnel, path_of(place::rsvpte_probe_history), PM_HISTORY_DM_PROBE);
        write_history(set, tunnel, path_of(place::rsvpte_aggr_history), PM_HISTORY_DM_AGGREGATION);
        write_history(set, tunnel, path_of(place::rsvpte_adv_history), PM_HISTORY_DM_ADVERTISEMENT);
        write_session(set, tunnel);
    }
}

}  // namespace perf_store
