// See tables.h.
#include "pm_show_client/tables.h"

#include "pm_utils/not_running_reason.h"

namespace {

constexpr std::size_t CELL_SIZE = 64;
constexpr std::size_t DELAYS_SIZE = 32;  // cuts four delays of more than 31 characters

}  // namespace

void pm_print_no_session() { pm_print<"%-64s">("Not running: No session"); }

void pm_print_wide_cell(const char *text) { pm_print<"%-39.39s">(text); }

void pm_print_not_running_cell(pm_probe_running_error_reason reason) {
    char text[CELL_SIZE];
    pm_format_text<"Not running: %s">(text, sizeof text, pm_not_running_reason_short_str(reason));
    pm_print_wide_cell(text);
}

void pm_print_probe_will_start_cell(std::uint32_t remaining_msec) {
    const pm_duration wait = pm_duration_of(remaining_msec);
    char text[CELL_SIZE];
    pm_format_text<"Probe will start in %u.%u seconds">(text, sizeof text, wait.seconds, wait.msec);
    pm_print_wide_cell(text);
}

void pm_print_delay_cells(const pm_scb_probe_parcel &probe) {
    if (probe.ProbeNotRunningReason != 0) {
        pm_print_not_running_cell(probe.ProbeNotRunningReason);
        return;
    }
    if (probe.ProbeStartTimeStamp == 0) {
        pm_print_probe_will_start_cell(probe.NextProbeStartTimeRemainingInMillisec);
        return;
    }
    char packets[CELL_SIZE];
    char delays[DELAYS_SIZE];
    pm_format_text<"%u/%u">(packets, sizeof packets, probe.NumberOfPacketsSent, probe.NumberOfPacketsReceived);
    pm_format_text<"%u/%u/%u/%u">(delays, sizeof delays, probe.ProbeResults.Average, probe.ProbeResults.Minimum,
                                  probe.ProbeResults.Maximum, probe.ProbeResults.Variance);
    pm_print<"%-11.11s %-43.43s">(static_cast<const char *>(packets), static_cast<const char *>(delays));
}
