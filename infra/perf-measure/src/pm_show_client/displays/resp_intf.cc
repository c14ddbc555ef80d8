// See resp_intf.h.
#include "pm_show_client/displays/resp_intf.h"

#include "platform/address.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/resp_counters.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/value_text.h"

namespace {

constexpr std::uint32_t ATTRIBUTES = 7;  // command types
constexpr std::uint32_t COUNTERS = 8;

void print_text(const char *label, const char *text) { pm_print_indented<"%-26s: %s\n">(2, label, text); }

void print_rate(const char *label, std::uint32_t rate_pps) {
    pm_print_indented<"%-26s: %u pkts/sec\n">(2, label, rate_pps);
}

void print_attributes(const pm_resp_intf_parcel &intf) {
    pm_print_indented<"%-26s: 0x%x\n">(2, "Interface Handle", intf.InterfaceHandle);
    print_text("Configured IPv4 Address", inet_ntoa_r(intf.SourceAddress));
    print_text("Configured IPv6 Address", inet6_ntoa_r(intf.SourceV6Address.octets));
    print_text("Link Local IPv6 Address", inet6_ntoa_r(intf.LinkLocalIV6Address.octets));
    if (pm_show_options.internal) {
        print_text("Bundle member interface", pm_ifh_str(intf.BundleMemberInterfaceHandle));
        print_text("Parent interface", pm_ifh_str(intf.ParentInterfaceHandle));
    }
    print_rate("Current rate", intf.PacketRate);
    print_rate("Rate high water mark", intf.PacketRateHighWaterMark);
    pm_print_indented<"%-26s: %u sec\n">(2, "Cleanup time remaining", intf.CleanupTimeRemaining);
}

}  // namespace

int pm_show_resp_intf(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &intf = *static_cast<const pm_resp_intf_parcel *>(decoded_parcel);
    pm_print<"Interface Name: %s\n">(intf.InterfaceName);
    if (pm_show_options.command_type == COUNTERS) {
        pm_print_heading(2, "Delay-Measurement");
        pm_show_resp_counters(&intf.InterfaceCounters, 4);
    } else if (pm_show_options.command_type == ATTRIBUTES) {
        print_attributes(intf);
    }
    return PM_SHOW_PRINTED;
}
