// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/tables.h"

#include "base/pm_output.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_utils/not_running_reason.h"

namespace {

void describe_not_running(pm_probe_running_error_reason reason, pm_idle_text *idle) {
    pm_format_text<"Not running: %s">(idle->text, sizeof idle->text, pm_not_running_reason_short_str(reason));
}

}  // namespace

void pm_print_no_session() { pm_print<"%-64s">("Not running: No session"); }

bool pm_describe_idle(const pm_scb_probe_parcel &probe, pm_idle_text *idle) {
    if (probe.ProbeNotRunningReason != 0) {
        describe_not_running(probe.ProbeNotRunningReason, idle);
        return true;
    }
    if (probe.ProbeStartTimeStamp == 0) {
        const pm_duration wait = pm_duration_of(probe.NextProbeStartTimeRemainingInMillisec);
        pm_format_text<"%s %u.%u seconds">(idle->text, sizeof idle->text, pm_session_lines::PROBE_WILL_START,
                                           wait.seconds, wait.msec);
        return true;
    }
    return false;
}

pm_delay_texts pm_describe_delays(const pm_scb_probe_parcel &probe) {
    const pm_values_parcel &values = probe.ProbeResults;
    pm_delay_texts texts;
    pm_format_text<"%u/%u">(texts.packets, sizeof texts.packets, probe.NumberOfPacketsSent,
                            probe.NumberOfPacketsReceived);
    pm_format_text<"%u/%u/%u/%u">(texts.delays, sizeof texts.delays, values.Average, values.Minimum, values.Maximum,
                                  values.Variance);
    return texts;
}

void pm_print_wide_cell(const char *text) { pm_print<"%-39.39s">(text); }

void pm_print_not_running_cell(pm_probe_running_error_reason reason) {
    pm_idle_text idle;
    describe_not_running(reason, &idle);
    pm_print_wide_cell(idle.text);
}

bool pm_print_idle_cell(const pm_scb_probe_parcel &probe) {
    pm_idle_text idle;
    if (!pm_describe_idle(probe, &idle)) {
        return false;
    }
    pm_print_wide_cell(idle.text);
    return true;
}

void pm_print_delay_cells(const pm_scb_probe_parcel &probe) {
    if (!pm_print_idle_cell(probe)) {
        const pm_delay_texts texts = pm_describe_delays(probe);
        pm_print<"%-11.11s %-43.43s">(texts.packets, texts.delays);
    }
}
