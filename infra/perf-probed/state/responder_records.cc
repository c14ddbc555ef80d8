// SPDX-License-Identifier: Apache-2.0
// What answers probes: the responder's interfaces and counters, and the receive path.
#include <algorithm>

#include "perf-probed/state/node_records.h"
#include "perf-probed/state/session_records.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace probed {
namespace {

pm_counter_resp_parcel record_counters(const reflector_counters &counters) {
    pm_counter_resp_parcel record{};
    record.ReplyPacketSent = counters.answered;
    record.ReplyPacketSentError = counters.send_errors;
    record.QueryPacketReceived = counters.received;
    record.ReceivedPacketErrorInvalidSourcePortNumber = counters.refused_for(refusal::source_port);
    record.ReceivedPacketErrorNoSourceAddress =
        counters.refused_for(refusal::source_address) + counters.refused_for(refusal::not_allowed);
    record.ReceivedPacketErrorNoReturnPath = counters.no_route;
    record.ReceivedPacketErrorTimestampNotAvailable = counters.without_kernel_stamp;
    record.ReceivedPacketErrorUnsupportedMandatoryTLV = counters.malformed_tlv + counters.integrity_failed;
    record.ReceivedPacketErrorInvalidPacket = counters.refused_for(refusal::too_short) +
                                              counters.refused_for(refusal::too_long) +
                                              counters.refused_for(refusal::bad_hmac);
    return record;
}

std::string name_of(const reflector_interface &of, const host_state &host) {
    const host_interface *const link = host.find(of.index);
    return link != nullptr ? link->name : "if" + std::to_string(of.index);
}

void add_responder_interface(const reflector_interface &of, const host_state &host, const moment &now, snapshot *out) {
    const std::string name = name_of(of, host);
    auto *const record =
        out->add<pm_resp_intf_parcel>(store::root::responder, "intf/" + name, pm_resp_intf_parcel_descriptor());
    record->InterfaceName = out->arena.text(name);
    record->InterfaceHandle = of.index;
    if (const host_interface *const link = host.find(of.index)) {
        const ip_address ipv6 = link->first(ip_family::ipv6);
        record->SourceAddress = record_ipv4(link->first(ip_family::ipv4));
        record->SourceV6Address = record_ipv6(ipv6.is_link_local() ? ip_address{} : ipv6);
        record->LinkLocalIV6Address = record_ipv6(link->first(ip_family::ipv6, true));
    }
    record->PacketRate = of.rate;
    record->PacketRateHighWaterMark = of.rate_high;
    const mono_nsec left = of.last_packet + reflector::FORGET_AFTER - now.mono;
    record->CleanupTimeRemaining = static_cast<std::uint32_t>(std::max<mono_nsec>(left, 0) / NSEC_PER_SEC);
    record->InterfaceCounters = record_counters(of.counters);
}

void take_port(const open_listener &listener, pm_rx_udp_port_parcel *to) {
    to->ConfiguredPortNumber = listener.port;
    (listener.family == ip_family::ipv4 ? to->IPv4PortNumber : to->IPv6PortNumber) = listener.port;
}

pm_rx_udp_ports_parcel record_ports(const node_view &of) {
    pm_rx_udp_ports_parcel ports{};
    for (const sender_socket &each : of.sender.sockets()) {
        pm_rx_udp_port_parcel &port = ports.QueryUnAuthenticatedTwampDelayMeasurement;
        std::uint16_t &number = each.family == ip_family::ipv4 ? port.IPv4PortNumber : port.IPv6PortNumber;
        if (each.socket.is_open() && number == 0) {
            number = each.socket.port();
            port.ConfiguredPortNumber = each.wanted_port;
        }
    }
    for (const open_listener &each : of.listeners) {
        take_port(each, each.by_default ? &ports.ResponderUnAuthenticatedTwampDelayMeasurementDefault
                                        : &ports.ResponderUnAuthenticatedTwampDelayMeasurement);
    }
    return ports;
}

}  // namespace

void add_responder(const node_view &of, const moment &now, snapshot *out) {
    for (const reflector_interface &each : of.responder.interfaces()) {
        add_responder_interface(each, of.sender.host(), now, out);
    }
    auto *const record =
        out->add<pm_resp_summary_parcel>(store::root::responder, "summary", pm_resp_summary_parcel_descriptor());
    record->TotalInterfaces = static_cast<std::uint32_t>(of.responder.interfaces().size());
    record->ResponderCounters = record_counters(of.responder.totals());
    record->PacketRate = of.responder.rate();
    record->PacketRateHighWaterMark = of.responder.rate_high();
}

// The kernel's packets are those that it stamped.
void add_receive_path(const node_view &of, snapshot *out) {
    auto *const record =
        out->add<pm_rx_summary_parcel>(store::root::receive, "summary", pm_rx_summary_parcel_descriptor());
    const prober_counters &querier = of.sender.counters();
    const reflector_counters responder = of.responder.totals();
    pm_counter_rx_type_parcel &counters = record->RxCounters;
    counters.PacketKPKTRxCounter = querier.kernel_stamped + responder.received - responder.without_kernel_stamp;
    counters.PacketIPv4UDPRxCounter = querier.received[0] + of.responder.received(ip_family::ipv4);
    counters.PacketIPv6UDPRxCounter = querier.received[1] + of.responder.received(ip_family::ipv6);
    counters.PacketIPv4UDPRxErrorCounter = querier.errors[0];
    counters.PacketIPv6RxErrorCounter = querier.errors[1];
    counters.PacketIP_UDP_PuntSupportedMaxPPS = of.settings.packet_rate;
    counters.PacketIP_UDP_PuntCounter = of.responder.rate();
    counters.PacketIP_UDP_PuntPPS_Percentage = std::uint64_t{of.responder.rate()} * 100 / of.settings.packet_rate;
    record->RxQueue = {0, static_cast<std::uint32_t>(querier.received[0] + querier.received[1]), of.sender.queue_high(),
                       0};
    record->ResponderQueue = {0, static_cast<std::uint32_t>(responder.received), of.responder.queue_high(), 0};
    record->UDPPorts = record_ports(of);
}

}  // namespace probed
