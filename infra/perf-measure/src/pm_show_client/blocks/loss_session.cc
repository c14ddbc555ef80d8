// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/loss_session.h"

#include "pm_show_client/blocks/interface_name.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_utils/advert_reason.h"

using namespace pm_session_lines;

namespace {

[[nodiscard]] constexpr pm_lines lines_at(int indent) { return {indent, 36}; }

// Both windows and the average over them; a session or a member at `indent`.
void print_windows(const pm_loss_window_parcel &probe, const pm_loss_window_parcel &periodic,
                   std::uint32_t rolling_average, int indent, bool is_member) {
    pm_print<"%*sProbe window\n">(indent, "");
    pm_show_loss_window(&probe, indent + 2, true, is_member);
    pm_print<"%*sPeriodic window\n">(indent, "");
    pm_show_loss_window(&periodic, indent + 2, false, is_member);
    lines_at(indent).number("Rolling average", rolling_average);
}

void print_advertisement(const pm_loss_advertisement_parcel &advertisement) {
    pm_print_heading(4, "Last advertisement");
    if (advertisement.TimestampOfAdvertisement == 0) {
        print_sentence(6, "No advertisements have occured");
        return;
    }
    print_since(6, "Advertised", advertisement.TimestampOfAdvertisement);
    pm_plain_lines(6).text("Advertised reason", pm_advert_reason_str(advertisement.AdvertisementReason));
    if (!pm_advert_reason_withdraws_values(advertisement.AdvertisementReason)) {
        pm_plain_lines(6).percent("Advertised loss", advertisement.LossPercentage);
    }
}

void print_member(const pm_intf_loss_sub_session_parcel &member) {
    pm_print_empty_line();
    pm_show_interface_name(member.InterfaceName, member.InterfaceHandle, 4);
    lines_at(6).text("State", member.InterfaceStateIsUp != 0 ? "Up" : "Down");
    lines_at(6).number("Session ID", member.SessionId);
    print_windows(member.ProbeWindow, member.PeriodicWindow, member.RollingAverage, 6, true);
}

}  // namespace

void pm_show_intf_loss_session(const pm_intf_loss_session_parcel &session) {
    pm_print_empty_line();
    pm_print_heading(2, "Loss Measurement session");
    if (session.SessionId != 0) {
        lines_at(4).number("Session ID", session.SessionId);
    }
    print_advertisement(session.Advertisement);
    print_windows(session.ProbeWindow, session.PeriodicWindow, session.RollingAverage, 4, false);
    print_next_probe(4, session.NextProbeStartTimeRemainingInMillisec);
    for (const pm_intf_loss_sub_session_parcel &member : session.InterfaceLossSubSessions) {
        print_member(member);
    }
}

void pm_show_loss_window(const pm_loss_window_parcel *window, int indent, bool is_probe_window, bool is_member) {
    const pm_lines lines = lines_at(indent);
    if (is_probe_window && is_member) {
        lines.number("TX counter", window->LastTXPacketCounter);
        lines.number("RX counter", window->LastRXPacketCounter);
    }
    lines.number("Pkts sent", window->CurrentPacketTXInWindow);
    lines.number("Pkts received", window->CurrentPacketRXInWindow);
    lines.number("Loss", window->LossPercentage);
}
