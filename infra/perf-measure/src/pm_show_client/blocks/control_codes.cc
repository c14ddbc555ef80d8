// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/control_codes.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_utils/control_code.h"

namespace {

void print_control_code(const pm_scb_control_code &code, int indent, pm_text heading, pm_text label) {
    pm_print_heading(indent, heading);
    pm_print_indented<"%s: %s (0x%x)\n">(indent + 2, label, pm_control_code_str(code.ControlCode), code.ControlCode);
    pm_plain_lines(indent + 2).text("Timestamp", pm_time_str(code.Timestamp));
}

}  // namespace

void pm_show_last_error_cc(const pm_scb_control_code *code, int indent) {
    print_control_code(*code, indent, "Last error control code", "Error");
}

void pm_show_last_notification_cc(const pm_scb_control_code *code, int indent) {
    print_control_code(*code, indent, "Last notification control code", "Notification");
}

void pm_show_control_codes(const pm_scb_control_code *notification, const pm_scb_control_code *error, int indent) {
    if (notification->Timestamp != 0) {
        pm_show_last_notification_cc(notification, indent);
    }
    if (error->Timestamp != 0) {
        pm_show_last_error_cc(error, indent);
    }
}
