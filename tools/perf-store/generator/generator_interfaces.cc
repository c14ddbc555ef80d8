// SPDX-License-Identifier: Apache-2.0
// Interfaces: a delay and a loss session each, on the node of their card.
#include "paths/item_paths.h"
#include "perf-store/generator/generator.h"
#include "perf-store/generator/generator_parts.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

using path_grammar::place;

namespace {

constexpr std::uint32_t LOSS_SAMPLES = 10;
constexpr std::uint32_t IPV4_BASE = 0x0A000000;  // 10.0.0.0, four addresses a link

struct interface_state {
    std::uint32_t index = 0;
    std::string name;
    gen_node *card = nullptr;
    pm_record_address source{};
    pm_record_address next_hop{};
    session_state delay;
    session_state loss;
    parcel_array<pm_lm_pkt_sample_parcel> packets{};  // of the loss session, oldest first
};

// Counters of a link with traffic; now and then a packet is lost.
parcel_array<pm_lm_pkt_sample_parcel> loss_samples(const session_state &session, item_memory *memory) {
    random_source random = session.random;
    auto samples = memory->array<pm_lm_pkt_sample_parcel>(session.running() ? LOSS_SAMPLES : 0);
    std::uint64_t sent = std::uint64_t{random.between(1, 4000)} * 1'000'000;
    std::uint64_t lost = random.below(1000);
    for (std::uint32_t i = 0; i < samples.count; ++i) {
        const std::uint32_t age = samples.count - 1 - i;
        sent += random.between(20'000, 30'000);
        lost += random.one_in(4) ? random.below(300) : 0;
        samples.elements[i] = {GEN_BASE_MSEC - std::uint64_t{age} * GEN_PROBE_INTERVAL_MSEC, sent, sent - lost};
    }
    return samples;
}

pm_loss_window_parcel loss_window(const parcel_array<pm_lm_pkt_sample_parcel> &samples, std::uint32_t length) {
    pm_loss_window_parcel window{};
    if (samples.count <= length) {
        return window;
    }
    const pm_lm_pkt_sample_parcel &newest = samples[samples.count - 1];
    const pm_lm_pkt_sample_parcel &before = samples[samples.count - 1 - length];
    window.LastTXPacketCounter = newest.TXCounter;
    window.LastRXPacketCounter = newest.RXCounter;
    window.CurrentPacketTXInWindow = newest.TXCounter - before.TXCounter;
    window.CurrentPacketRXInWindow = newest.RXCounter - before.RXCounter;
    const std::uint64_t lost = window.CurrentPacketTXInWindow - window.CurrentPacketRXInWindow;
    window.LossPercentage = static_cast<std::uint32_t>(lost * 100 / window.CurrentPacketTXInWindow);
    return window;
}

pm_intf_loss_session_parcel *loss_session(const interface_state &interface, item_memory *memory) {
    auto *session = memory->make<pm_intf_loss_session_parcel>();
    session->SessionId = interface.loss.id;
    session->ProbeWindow = loss_window(interface.packets, 1);
    session->PeriodicWindow = loss_window(interface.packets, 4);
    session->RollingAverage = session->PeriodicWindow.LossPercentage;
    session->Advertisement.LossPercentage = session->PeriodicWindow.LossPercentage;
    session->Advertisement.TimestampOfAdvertisement = interface.loss.advertised_msec;
    session->Advertisement.AdvertisementReason = interface.loss.advertisement_reason;
    session->ProbeNotRunningReason = interface.loss.reason;
    session->NextProbeStartTimeRemainingInMillisec = interface.loss.running() ? 18250 : 0;
    return session;
}

parcel_mac mac_of(std::uint8_t side, std::uint32_t index) {
    return {{0x02, side, static_cast<std::uint8_t>(index >> 24U), static_cast<std::uint8_t>(index >> 16U),
             static_cast<std::uint8_t>(index >> 8U), static_cast<std::uint8_t>(index)}};
}

// The state of the link shows why its sessions do not run.
void write_detail(generation *set, const interface_state &interface) {
    const pm_probe_running_error_reason reason = interface.delay.reason;
    const bool is_up = reason != PM_NOT_RUNNING_INTERFACE_DOWN;
    const std::uint64_t network = GEN_ROUTER_NETWORK + 0x10000 + interface.index;
    auto *record = set->memory.make<pm_intf_parcel>();
    record->InterfaceName = set->memory.text(interface.name);
    record->InterfaceHandle = gen_interface_handle(interface.index);
    record->InterfaceState = is_up ? 1 : 0;
    record->MPLSCaps = reason != PM_NOT_RUNNING_NO_MPLS_CAPS ? 1 : 0;
    record->IPv4ProtocolState = is_up && reason != PM_NOT_RUNNING_IPV4_DOWN ? 1 : 0;
    record->IPv6ProtocolState = is_up ? 1 : 0;
    record->SourceAddress = gen_ipv4(IPV4_BASE + interface.index * 4 + 1);
    record->SourceV6Address = gen_ipv6(network, 1);
    record->LinkLocalIV6Address = gen_ipv6(0xFE80000000000000, interface.index + 1ULL);
    record->SourceMacAddress = mac_of(1, interface.index);
    if (reason != PM_NOT_RUNNING_NO_NEXT_HOP_MAC) {
        record->NextHopMacAddress = mac_of(2, interface.index);
    }
    const bool is_ipv4 = interface.next_hop.IPAddressType == PM_RECORD_ADDRESS_IPV4;
    record->AIBNexthopIPv4Address = is_ipv4 ? interface.next_hop : gen_no_address();
    record->AIBNexthopIPv6Address = is_ipv4 ? gen_no_address() : interface.next_hop;
    record->InUseSourceIPAddress = interface.source;
    record->InUseDestinationIPAddress = interface.next_hop;
    record->NextHop = interface.next_hop;
    record->DelayMeasurementSessions = set->memory.array_of({gen_control_block(interface.delay, &set->memory)});
    record->LossMeasurementSession = loss_session(interface, &set->memory);
    record->PMCapsAdd = 1;
    record->IMAttributeRegistration = 1;
    record->KPKTAttach = 1;
    set->lines.item(interface.card->id, gen_text(path_of(place::intf_detail), interface.name),
                    pm_intf_parcel_descriptor(), record);
}

void write_history(generation *set, const interface_state &interface, std::string_view path,
                   const pm_history_info &history) {
    auto *record = set->memory.make<pm_intf_history_parcel>();
    record->InterfaceName = set->memory.text(interface.name);
    record->InterfaceHandle = gen_interface_handle(interface.index);
    record->HistoryInfo = history;
    set->lines.item(interface.card->id, gen_text(path, interface.name), pm_intf_history_parcel_descriptor(), record);
}

void write_histories(generation *set, const interface_state &interface) {
    const auto delay_history = [&](pm_history_type_e type) { return gen_history(type, interface.delay, &set->memory); };
    write_history(set, interface, path_of(place::intf_delay_probe_history), delay_history(PM_HISTORY_DM_PROBE));
    write_history(set, interface, path_of(place::intf_delay_aggr_history), delay_history(PM_HISTORY_DM_AGGREGATION));
    write_history(set, interface, path_of(place::intf_delay_adv_history), delay_history(PM_HISTORY_DM_ADVERTISEMENT));
    pm_history_info packets{};
    packets.HistoryType = PM_HISTORY_LM_PACKET;
    packets.LMPacketHistory = {interface.packets};
    write_history(set, interface, path_of(place::intf_loss_pkt_history), packets);
}

void write_session(generation *set, const interface_state &interface, const session_state &session) {
    auto *record = set->memory.make<pm_session_parcel>();
    record->MeasurementType = session.kind;
    record->Session.type = PM_TRANSPORT_INTERFACE;
    pm_session_intf_parcel &own = record->Session.InterfaceSession;
    own.InterfaceName = set->memory.text(interface.name);
    own.InterfaceHandle = gen_interface_handle(interface.index);
    own.NextHop = interface.next_hop;
    own.Session = gen_control_block(session, &set->memory);
    set->write_session(*interface.card, session, *record);
}

// Every fourth link measures over IPv6, unless it is IPv4 that fails.
void choose_addresses(interface_state *interface) {
    const bool is_ipv6 = interface->index % 4 == 3 && interface->delay.reason != PM_NOT_RUNNING_IPV4_DOWN;
    const session_family family = is_ipv6 ? session_family::ipv6 : session_family::ipv4;
    interface->delay.family = family;
    interface->loss.family = family;
    const std::uint32_t ipv4 = IPV4_BASE + interface->index * 4;
    const std::uint64_t network = GEN_ROUTER_NETWORK + 0x10000 + interface->index;
    interface->source = is_ipv6 ? gen_address(gen_ipv6(network, 1)) : gen_address(ipv4 + 1);
    interface->next_hop = is_ipv6 ? gen_address(gen_ipv6(network, 2)) : gen_address(ipv4 + 2);
}

interface_state make_interface(generation *set, std::uint32_t index) {
    random_source random(set->options.seed, random_subject::interface, index);
    interface_state interface;
    interface.index = index;
    interface.name = set->interface_name(index);
    interface.card = &set->card_of(index);
    interface.delay.reason = gen_reason(&random, PM_TRANSPORT_INTERFACE);
    interface.delay.typical_usec = random.between(60, 900);
    interface.delay.named_profile = index % 2 == 0;
    interface.loss.kind = PM_MEASUREMENT_LOSS;
    interface.loss.reason = interface.delay.reason;
    choose_addresses(&interface);
    set->run(interface.card, &random, &interface.delay);
    set->run(interface.card, &random, &interface.loss);
    interface.packets = loss_samples(interface.loss, &set->memory);
    ++interface.card->interfaces;
    return interface;
}

}  // namespace

void gen_interfaces(generation *set) {
    for (std::uint32_t index = 0; index < set->options.interfaces && set->lines.good(); ++index) {
        set->memory.reset();
        const interface_state interface = make_interface(set, index);
        write_detail(set, interface);
        write_histories(set, interface);
        write_session(set, interface, interface.delay);
        write_session(set, interface, interface.loss);
    }
}

}  // namespace perf_store
