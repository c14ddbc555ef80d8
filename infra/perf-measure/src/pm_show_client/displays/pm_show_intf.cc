// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_intf.h"

#include "platform/address.h"
#include "pm_show_client/blocks/delay_session.h"
#include "pm_show_client/blocks/interface_name.h"
#include "pm_show_client/blocks/interface_table.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/loss_session.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/address_text.h"
#include "pm_utils/advert_reason.h"
#include "schema/pm_records.h"

using namespace pm_session_lines;

namespace {

constexpr int MAC_LENGTH = 6;

constexpr pm_lines LINES{2, 36};
constexpr pm_lines TRACING_LINES{4, 38};

void print_vlan_tag(pm_text label, std::uint16_t tag) {
    if (tag == 0) {
        LINES.text(label, "None");
    } else {
        LINES.number(label, tag);
    }
}

void print_attributes(const pm_intf_parcel &interface) {
    LINES.enabled("Delay-Measurement", interface.DelayMeasurementSessions.count != 0);
    LINES.enabled("Loss-Measurement", interface.LossMeasurementSession != nullptr);
    LINES.enabled("Path-Tracing", interface.PathTracing != nullptr);
    LINES.text("Configured IPv4 Address", inet_ntoa_r(interface.SourceAddress));
    LINES.text("Configured IPv6 Address", inet6_ntoa_r(interface.SourceV6Address.octets));
    LINES.text("Link Local IPv6 Address", inet6_ntoa_r(interface.LinkLocalIV6Address.octets));
    LINES.address("Configured Next-hop Address", interface.NextHop);
    LINES.text("Local MAC Address", pm_mac_to_dotted_str(interface.SourceMacAddress.octets, MAC_LENGTH));
    LINES.text("Next-hop MAC Address", pm_mac_to_dotted_str(interface.NextHopMacAddress.octets, MAC_LENGTH));
    LINES.address("In-use Source Address", interface.InUseSourceIPAddress);
    LINES.address("In-use Destination Address", interface.InUseDestinationIPAddress);
    print_vlan_tag("Primary VLAN Tag", interface.PrimaryVlanTag);
    print_vlan_tag("Secondary VLAN Tag", interface.SecondaryVlanTag);
    LINES.text("State", interface.InterfaceState != 0 ? "Up" : "Down");
}

void print_internal_attributes(const pm_intf_parcel &interface) {
    const auto created = [](std::uint32_t caps) { return caps != 0 ? "Created" : "Not created"; };
    // "UP" beside "Down", on purpose.
    const auto up_or_down = [](std::uint32_t state) { return state != 0 ? "UP" : "Down"; };
    const char *const registration = interface.IMAttributeRegistration != 0 ? "Registered" : "Not registered";
    LINES.text("PM Caps", created(interface.PMCapsAdd));
    LINES.text("IM Attributes", registration);
    LINES.text("MPLS Caps", created(interface.MPLSCaps));
    LINES.text("IPv4 Protocol State", up_or_down(interface.IPv4ProtocolState));
    LINES.address("AIB IPv4 Nexthop Address", interface.AIBNexthopIPv4Address);
    LINES.text("IPv6 Protocol State", up_or_down(interface.IPv6ProtocolState));
    LINES.address("AIB IPv6 Nexthop Address", interface.AIBNexthopIPv6Address);
    LINES.hex("VRF ID", interface.VRF_ID);
    LINES.text("IM Attributes", registration);  // a second time, on purpose
    LINES.text("KPKT attach", interface.KPKTAttach != 0 ? "Attached" : "Not attached");
    LINES.number("KPKT attach retry errors", interface.KPKTAttachErrorCount);
    LINES.number("Next-hop MAC address get errors", interface.NextHopMacAddressGetErrorCount);
    LINES.flag("Stale", interface.IsStale);
}

void print_path_tracing(const pm_intf_pt_parcel &tracing) {
    pm_print_empty_line();
    pm_print_heading(2, "Path-Tracing");
    TRACING_LINES.signed_number("Interface ID", tracing.InterfaceId);
    TRACING_LINES.signed_number("Timestamp Template", tracing.TimestampTemplate);
    TRACING_LINES.signed_number("Load IN", tracing.LoadIn);
    TRACING_LINES.signed_number("Load OUT", tracing.LoadOut);
    TRACING_LINES.signed_number("Load Interval", tracing.LoadInterval);
    pm_print_heading(4, "Last FIB Update");
    if (tracing.TimeOfAdvertisement == 0) {
        print_sentence(6, "No updates have occured");
        return;
    }
    print_since(6, "Updated", tracing.TimeOfAdvertisement);
    pm_plain_lines(6).text("Update reason", pm_advert_reason_str(tracing.AdvertisementReason));
    pm_plain_lines(6).text("Update status", tracing.MsgInFlight != 0 ? "In progress" : "Done");
}

void print_detail(const pm_intf_parcel &interface) {
    pm_show_interface_name(interface.InterfaceName, interface.InterfaceHandle, 0);
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
    if (pm_show_options.brief && !pm_show_options.loss_kind) {
        pm_show_interface_delay_row(interface);
    } else {
        print_detail(interface);
    }
    return PM_SHOW_PRINTED;
}
