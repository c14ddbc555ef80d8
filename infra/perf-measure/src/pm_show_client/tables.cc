// See tables.h.
#include "pm_show_client/tables.h"

#include "pm_utils/not_running_reason.h"

namespace {

constexpr std::size_t CELL_SIZE = 64;

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

bool pm_print_idle_cell(const pm_scb_probe_parcel &probe) {
    if (probe.ProbeNotRunningReason != 0) {
        pm_print_not_running_cell(probe.ProbeNotRunningReason);
        return true;
    }
    if (probe.ProbeStartTimeStamp == 0) {
        pm_print_probe_will_start_cell(probe.NextProbeStartTimeRemainingInMillisec);
        return true;
    }
    return false;
}

pm_delay_texts::pm_delay_texts(const pm_scb_probe_parcel &probe) {
    const pm_values_parcel &values = probe.ProbeResults;
    pm_format_text<"%u/%u">(packets, sizeof packets, probe.NumberOfPacketsSent, probe.NumberOfPacketsReceived);
    pm_format_text<"%u/%u/%u/%u">(delays, sizeof delays, values.Average, values.Minimum, values.Maximum,
                                  values.Variance);
}

void pm_print_delay_cells(const pm_scb_probe_parcel &probe) {
    if (!pm_print_idle_cell(probe)) {
        const pm_delay_texts texts(probe);
        pm_print<"%-11.11s %-43.43s">(texts.packets, texts.delays);
    }
}
