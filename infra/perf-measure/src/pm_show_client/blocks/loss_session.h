// SPDX-License-Identifier: Apache-2.0
// The loss session of an interface and of its bundle members.
#pragma once

#include "schema/pm_records.h"

// The session after an empty line, its heading at indent 2.
void pm_show_intf_loss_session(const pm_intf_loss_session_parcel &session);

// Packets and loss of a window at `indent`. The counters of the last packet belong to the probe window of a
// bundle member only.
void pm_show_loss_window(const pm_loss_window_parcel *window, int indent, bool is_probe_window, bool is_member);
