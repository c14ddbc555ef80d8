// SPDX-License-Identifier: Apache-2.0
// Control codes that a responder sent.
#pragma once

#include "schema/pm_records.h"

// Each block is a heading at `indent` and lines indented by two more. The records are never null.
void pm_show_last_error_cc(const pm_scb_control_code *code, int indent);
void pm_show_last_notification_cc(const pm_scb_control_code *code, int indent);

// Both, the notification first, each only when one was received.
void pm_show_control_codes(const pm_scb_control_code *notification, const pm_scb_control_code *error, int indent);
