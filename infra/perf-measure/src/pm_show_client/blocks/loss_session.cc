// See loss_session.h.
#include "pm_show_client/blocks/loss_session.h"

#include "pm_show_client/blocks/session_lines.h"
#include "pm_utils/advert_reason.h"

using namespace pm_session_lines;

namespace {

constexpr int WIDTH = 36;

void print_u32(int indent, const char *label, std::uint32_t value) {
    pm_print_label_u32(WIDTH, indent, label, value, "%");
}

void print_packets(int indent, const char *label, std::uint64_t packets) {
    pm_print_label_u64(WIDTH, indent, label, packets, "pkts");
}

// Both windows and the average over them; a session or a member at `indent`.
void print_windows(const pm_loss_window_parcel &probe, const pm_loss_window_parcel &periodic,
                   std::uint32_t rolling_average, int indent, bool is_member) {
    pm_print<"%*sProbe window\n">(indent, "");
    pm_show_loss_window(&probe, indent + 2, true, is_member);
    pm_print<"%*sPeriodic window\n">(indent, "");
    pm_show_loss_window(&periodic, indent + 2, false, is_member);
    print_u32(indent, "Rolling average", rolling_average);
}

void print_advertisement(const pm_loss_advertisement_parcel &advertisement) {
    pm_print_heading(4, "Last advertisement");
    if (advertisement.TimestampOfAdvertisement == 0) {
        print_text(6, "No advertisements have occured");
        return;
    }
    print_since(6, "Advertised", advertisement.TimestampOfAdvertisement);
    print_labelled(6, "Advertised reason", pm_advert_reason_str(advertisement.AdvertisementReason));
    if (!pm_advert_reason_withdraws_values(advertisement.AdvertisementReason)) {
        pm_print_indented<"Advertised loss: %u%%\n">(6, advertisement.LossPercentage);
    }
}

void print_member(const pm_intf_loss_sub_session_parcel &member) {
    pm_print_empty_line();
    pm_print<"%*sInterface Name: %s (ifh: 0x%x)\n">(4, "", member.InterfaceName, member.InterfaceHandle);
    pm_print_label_str(WIDTH, 6, "State", member.InterfaceStateIsUp != 0 ? "Up" : "Down");
    print_u32(6, "Session ID", member.SessionId);
    print_windows(member.ProbeWindow, member.PeriodicWindow, member.RollingAverage, 6, true);
}

}  // namespace

void pm_show_intf_loss_session(const pm_intf_loss_session_parcel &session) {
    pm_print_empty_line();
    pm_print_heading(2, "Loss Measurement session");
    if (session.SessionId != 0) {
        print_u32(4, "Session ID", session.SessionId);
    }
    print_advertisement(session.Advertisement);
    print_windows(session.ProbeWindow, session.PeriodicWindow, session.RollingAverage, 4, false);
    print_next_probe(4, session.NextProbeStartTimeRemainingInMillisec);
    for (const pm_intf_loss_sub_session_parcel &member : session.InterfaceLossSubSessions) {
        print_member(member);
    }
}

void pm_show_loss_window(const pm_loss_window_parcel *window, int indent, bool is_probe_window, bool is_member) {
    if (is_probe_window && is_member) {
        print_packets(indent, "TX counter", window->LastTXPacketCounter);
        print_packets(indent, "RX counter", window->LastRXPacketCounter);
    }
    print_packets(indent, "Pkts sent", window->CurrentPacketTXInWindow);
    print_packets(indent, "Pkts received", window->CurrentPacketRXInWindow);
    print_u32(indent, "Loss", window->LossPercentage);
}
