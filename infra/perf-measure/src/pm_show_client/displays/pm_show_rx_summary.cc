// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_rx_summary.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/queue.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"

namespace {

constexpr std::uint32_t PUNT_RATE_REFRESH_SEC = 5;

// The ports that measure delay as a querier, on the route processor and on each NPU.
constexpr char TWAMP_QUERIER[] = "TWAMP-Light Unauthenticated delay querier source ports";

// Packets, errors and rates -----------------------------------------------------------------------

void print_packets(const pm_counter_rx_type_parcel &counters) {
    pm_lines_at(0).number("Total KPKT packets received", counters.PacketKPKTRxCounter);
    pm_lines_at(0).number("Total KPKT MPLS packets received", counters.PacketKPKTRxMPLSCounter);
    pm_lines_at(0).number("Total KPKT IPv4 packets received", counters.PacketKPKTRxIPv4Counter);
    pm_lines_at(0).number("Total KPKT IPv6 packets received", counters.PacketKPKTRxIPv6Counter);
    pm_lines_at(0).number("Total KPKT protection packets received", counters.PacketKPKTRxProtectionPacket);
    pm_lines_at(0).number("Total UDP IPv4 packets received", counters.PacketIPv4UDPRxCounter);
    pm_lines_at(0).number("Total UDP IPv6 packets received", counters.PacketIPv6UDPRxCounter);
    pm_lines_at(0).number("Total PD packets received", counters.PacketPD_RxCounter);
    pm_lines_at(0).number("Total KPKT packet errors received", counters.PacketKPKTRxErrorCounter);
    pm_lines_at(0).number("Total UDP IPv4 packet errors received", counters.PacketIPv4UDPRxErrorCounter);
    // The record counts the errors of IPv6 as a whole, none of UDP alone.
    pm_lines_at(0).number("Total UDP IPv6 packet errors received", counters.PacketIPv6RxErrorCounter);
    pm_lines_at(0).number("Total PD packet errors received", counters.PacketPD_RxErrorCounter);
}

void print_punt_rate(pm_text label, std::uint64_t rate_pps, std::uint64_t percent_of_max) {
    pm_print_indented<"%-46s: %lu pkts/sec (%lu%% of max allowed)\n">(2, label, rate_pps, percent_of_max);
}

void print_rates(const pm_counter_rx_type_parcel &counters) {
    pm_lines_at(0).unit("Maximum PPS supported for KPKT punt", counters.PacketKPKT_RxPuntSupportedMaxPPS, "pkts/sec");
    pm_lines_at(0).unit("Maximum PPS supported for UDP punt", counters.PacketIP_UDP_PuntSupportedMaxPPS, "pkts/sec");
    pm_lines_at(0).unit("Maximum PPS supported for PD DLL punt", counters.PacketPD_RxPuntSupportedMaxPPS, "pkts/sec");
    pm_print<"RX punt PPS (refresh every %u sec):\n">(PUNT_RATE_REFRESH_SEC);
    // The record's punt counters are rates.
    print_punt_rate("KPKT punt PPS", counters.PacketKPKT_RxPuntCounter, counters.PacketKPKT_RxPuntPPS_Percentage);
    print_punt_rate("UDP punt PPS", counters.PacketIP_UDP_PuntCounter, counters.PacketIP_UDP_PuntPPS_Percentage);
    print_punt_rate("PD DLL punt PPS", counters.PacketPD_RxPuntCounter, counters.PacketPD_RxPuntPPS_Percentage);
}

// Ports -------------------------------------------------------------------------------------------

void print_port(pm_text label, std::uint32_t port) {
    if (port == 0) {
        pm_lines_at(2).text(label, "N/A");
    } else {
        pm_lines_at(2).number(label, port);
    }
}

void print_opened_ports(const pm_rx_udp_port_parcel &ports) {
    print_port("Opened IPv4 port", ports.IPv4PortNumber);
    print_port("Opened IPv6 port", ports.IPv6PortNumber);
}

void print_ports(const pm_rx_udp_port_parcel &ports) {
    print_port("Configured port", ports.ConfiguredPortNumber);
    print_opened_ports(ports);
}

void print_ports(pm_text heading, const pm_rx_udp_port_parcel &ports) {
    pm_print_heading(0, heading);
    print_ports(ports);
}

// The default port is a number even when it is 0.
void print_default_ports(const pm_rx_udp_port_parcel &ports) {
    pm_print_heading(0, "TWAMP-Light Default Unauthenticated delay responder destination ports");
    pm_lines_at(2).number("Default port", ports.ConfiguredPortNumber);
    print_opened_ports(ports);
}

void print_all_ports(const pm_rx_udp_ports_parcel &ports) {
    print_ports(TWAMP_QUERIER, ports.QueryUnAuthenticatedTwampDelayMeasurement);
    print_ports("TWAMP-Light Unauthenticated delay responder destination ports",
                ports.ResponderUnAuthenticatedTwampDelayMeasurement);
    print_default_ports(ports.ResponderUnAuthenticatedTwampDelayMeasurementDefault);
    print_ports("PM-UDP Unauthenticated delay querier source ports", ports.QueryUnAuthenticatedPmUdpDelayMeasurement);
    print_ports("PM-UDP Unauthenticated delay responder destination ports",
                ports.ResponderUnAuthenticatedPmUdpDelayMeasurement);
    print_ports("PM-UDP Unauthenticated loss querier source ports", ports.QueryUnAuthenticatedPmUdpLossMeasurement);
    print_ports("PM-UDP Unauthenticated loss responder destination ports",
                ports.ResponderUnAuthenticatedPmUdpLossurement);
    print_ports("PM internal fixed ports", ports.PMFixedPort);
}

// The NPUs' responder ports are not shown.
void print_npu_ports(const pm_rx_udp_npu_ports_ptr &npus) {
    pm_print_heading(0, "NPU ports");
    for (const pm_rx_udp_npu_ports_parcel &npu : npus.NpuPortList) {
        pm_print_heading(0, TWAMP_QUERIER);
        pm_lines_at(2).number("NPU id", npu.NpuId);
        print_ports(npu.QueryUnAuthenticatedNpuTwampDelayMeasurement);
    }
}

}  // namespace

int pm_show_rx_summary(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &summary = *static_cast<const pm_rx_summary_parcel *>(decoded_parcel);
    print_packets(summary.RxCounters);
    print_rates(summary.RxCounters);
    pm_show_queue(PM_QUEUE_QUERIER_RX, summary.RxQueue, 0);
    pm_show_queue(PM_QUEUE_RESPONDER_RX, summary.ResponderQueue, 0);
    print_all_ports(summary.UDPPorts);
    if (summary.NpuUDPPorts != nullptr) {
        print_npu_ports(*summary.NpuUDPPorts);
    }
    return PM_SHOW_PRINTED;
}
