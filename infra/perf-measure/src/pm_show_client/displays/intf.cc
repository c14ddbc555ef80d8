// See intf.h.
#include "pm_show_client/displays/intf.h"

#include "platform/address.h"
#include "pm_show_client/blocks/counters.h"
#include "pm_show_client/blocks/delay_session.h"
#include "pm_show_client/blocks/loss_session.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/blocks/tables.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/address_text.h"
#include "pm_utils/advert_reason.h"

using namespace pm_session_lines;

namespace {

constexpr int ADDRESS_WIDTH = 36;  // of pm_print_label_address; the colons of the other lines stand there too
constexpr int MAC_LENGTH = 6;

void print_line(const char *label, const char *text) { pm_print_indented<"%-34s: %s\n">(2, label, text); }

void print_enabled(const char *label, bool enabled) { print_line(label, enabled ? "Enabled" : "Disabled"); }

void print_address(const char *label, const pm_record_address &address) {
    pm_print_label_address(label, address, 2, ADDRESS_WIDTH);
}

void print_vlan_tag(const char *label, std::uint16_t tag) {
    if (tag == 0) {
        print_line(label, "None");
    } else {
        pm_print_indented<"%-34s: %u\n">(2, label, tag);
    }
}

void print_count(const char *label, std::uint64_t count) { pm_print_indented<"%-34s: %lu\n">(2, label, count); }

void print_name(const pm_intf_parcel &interface) {
    pm_print<"Interface Name: %s (ifh: 0x%x)\n">(interface.InterfaceName, interface.InterfaceHandle);
}

// The counters ------------------------------------------------------------------------------------

void print_counters(const pm_intf_parcel &interface) {
    print_name(interface);
    pm_print_heading(2, "Delay-Measurement");
    if (interface.DelayMeasurementSessions.count == 0) {
        pm_print<"%*sNo session\n">(4, "");
        return;
    }
    for (const pm_scb_parcel &session : interface.DelayMeasurementSessions) {
        pm_show_session_counters(&session.SessionCounters, 4);
    }
}

// The table ---------------------------------------------------------------------------------------

void print_header() { pm_print<" %-30s%-16s %-32s\n">("Interface Name", "Tx/Rx", "Avg/Min/Max/Variance (uSec)"); }

void print_cells(const pm_scb_probe_parcel &probe) {
    pm_idle_text idle;
    if (pm_describe_idle(probe, &idle)) {
        pm_print<"%-47s">(idle.text);
    } else {
        const pm_delay_texts texts = pm_describe_delays(probe);
        pm_print<"%-16s %-31s">(texts.packets, texts.delays);
    }
}

// A row has no line end of its own: the one before the next item ends it, and the sessions of an interface
// follow each other on one line.
void print_row(const pm_intf_parcel &interface) {
    pm_print_table_header(print_header);
    const char *name = interface.InterfaceName;
    if (interface.DelayMeasurementSessions.count == 0) {
        pm_print<" %-30s">(name);
        pm_print_no_session();
        return;
    }
    for (const pm_scb_parcel &session : interface.DelayMeasurementSessions) {
        pm_print<" %-30s">(name);
        print_cells(session.CurrentProbe);
        name = "";
    }
}

// The detail --------------------------------------------------------------------------------------

void print_attributes(const pm_intf_parcel &interface) {
    print_enabled("Delay-Measurement", interface.DelayMeasurementSessions.count != 0);
    print_enabled("Loss-Measurement", interface.LossMeasurementSession != nullptr);
    print_enabled("Path-Tracing", interface.PathTracing != nullptr);
    print_line("Configured IPv4 Address", inet_ntoa_r(interface.SourceAddress));
    print_line("Configured IPv6 Address", inet6_ntoa_r(interface.SourceV6Address.octets));
    print_line("Link Local IPv6 Address", inet6_ntoa_r(interface.LinkLocalIV6Address.octets));
    print_address("Configured Next-hop Address", interface.NextHop);
    print_line("Local MAC Address", pm_mac_to_dotted_str(interface.SourceMacAddress.octets, MAC_LENGTH));
    print_line("Next-hop MAC Address", pm_mac_to_dotted_str(interface.NextHopMacAddress.octets, MAC_LENGTH));
    print_address("In-use Source Address", interface.InUseSourceIPAddress);
    print_address("In-use Destination Address", interface.InUseDestinationIPAddress);
    print_vlan_tag("Primary VLAN Tag", interface.PrimaryVlanTag);
    print_vlan_tag("Secondary VLAN Tag", interface.SecondaryVlanTag);
    print_line("State", interface.InterfaceState != 0 ? "Up" : "Down");
}

void print_internal_attributes(const pm_intf_parcel &interface) {
    const auto created = [](std::uint32_t caps) { return caps != 0 ? "Created" : "Not created"; };
    // "UP" beside "Down", as it stands.
    const auto up_or_down = [](std::uint32_t state) { return state != 0 ? "UP" : "Down"; };
    const char *const registration = interface.IMAttributeRegistration != 0 ? "Registered" : "Not registered";
    print_line("PM Caps", created(interface.PMCapsAdd));
    print_line("IM Attributes", registration);
    print_line("MPLS Caps", created(interface.MPLSCaps));
    print_line("IPv4 Protocol State", up_or_down(interface.IPv4ProtocolState));
    print_address("AIB IPv4 Nexthop Address", interface.AIBNexthopIPv4Address);
    print_line("IPv6 Protocol State", up_or_down(interface.IPv6ProtocolState));
    print_address("AIB IPv6 Nexthop Address", interface.AIBNexthopIPv6Address);
    pm_print_indented<"%-34s: 0x%x\n">(2, "VRF ID", interface.VRF_ID);
    print_line("IM Attributes", registration);  // a second time, on purpose
    print_line("KPKT attach", interface.KPKTAttach != 0 ? "Attached" : "Not attached");
    print_count("KPKT attach retry errors", interface.KPKTAttachErrorCount);
    print_count("Next-hop MAC address get errors", interface.NextHopMacAddressGetErrorCount);
    print_line("Stale", pm_true_or_false(interface.IsStale));
}

// A number that the report shows with a sign.
void print_signed(const char *label, std::uint32_t value) { pm_print_indented<"%-34s: %d\n">(4, label, value); }

void print_path_tracing(const pm_intf_pt_parcel &tracing) {
    pm_print_empty_line();
    pm_print_heading(2, "Path-Tracing");
    print_signed("Interface ID", tracing.InterfaceId);
    print_signed("Timestamp Template", tracing.TimestampTemplate);
    print_signed("Load IN", tracing.LoadIn);
    print_signed("Load OUT", tracing.LoadOut);
    print_signed("Load Interval", tracing.LoadInterval);
    pm_print_heading(4, "Last FIB Update");
    if (tracing.TimeOfAdvertisement == 0) {
        print_text(6, "No updates have occured");
        return;
    }
    print_since(6, "Updated", tracing.TimeOfAdvertisement);
    print_labelled(6, "Update reason", pm_advert_reason_str(tracing.AdvertisementReason));
    print_labelled(6, "Update status", tracing.MsgInFlight != 0 ? "In progress" : "Done");
}

void print_detail(const pm_intf_parcel &interface) {
    print_name(interface);
    print_attributes(interface);
    if (pm_show_options.internal) {
        print_internal_attributes(interface);
    }
    if (!pm_show_options.loss_kind) {
        for (const pm_scb_parcel &session : interface.DelayMeasurementSessions) {
            pm_print_empty_line();
            pm_show_intf_dm_session(&session, 2);
        }
    } else if (interface.LossMeasurementSession != nullptr) {
        pm_show_intf_loss_session(*interface.LossMeasurementSession);
    }
    if (interface.PathTracing != nullptr) {
        print_path_tracing(*interface.PathTracing);
    }
}

}  // namespace

int pm_show_intf(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &interface = *static_cast<const pm_intf_parcel *>(decoded_parcel);
    if (pm_show_options.command_type == 2) {
        print_counters(interface);
    } else if (pm_show_options.command_type == 1 && pm_show_options.brief && !pm_show_options.loss_kind) {
        print_row(interface);
    } else if (pm_show_options.command_type == 1) {
        print_detail(interface);
    }
    return PM_SHOW_PRINTED;
}
