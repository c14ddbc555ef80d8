// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_resp_intf.h"

#include "platform/address.h"
#include "pm_show_client/blocks/interface_name.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/value_text.h"
#include "schema/pm_records.h"

namespace {

constexpr pm_lines LINES{2, 28};

void print_rate(pm_text label, std::uint32_t rate_pps) { LINES.unit(label, rate_pps, "pkts/sec"); }

void print_attributes(const pm_resp_intf_parcel &interface) {
    LINES.hex("Interface Handle", interface.InterfaceHandle);
    LINES.text("Configured IPv4 Address", inet_ntoa_r(interface.SourceAddress));
    LINES.text("Configured IPv6 Address", inet6_ntoa_r(interface.SourceV6Address.octets));
    LINES.text("Link Local IPv6 Address", inet6_ntoa_r(interface.LinkLocalIV6Address.octets));
    if (pm_show_options.internal) {
        LINES.text("Bundle member interface", pm_ifh_str(interface.BundleMemberInterfaceHandle));
        LINES.text("Parent interface", pm_ifh_str(interface.ParentInterfaceHandle));
    }
    print_rate("Current rate", interface.PacketRate);
    print_rate("Rate high water mark", interface.PacketRateHighWaterMark);
    LINES.unit("Cleanup time remaining", interface.CleanupTimeRemaining, "sec");
}

}  // namespace

int pm_show_resp_intf(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &interface = *static_cast<const pm_resp_intf_parcel *>(decoded_parcel);
    pm_show_interface_name(interface.InterfaceName);
    print_attributes(interface);
    return PM_SHOW_PRINTED;
}
