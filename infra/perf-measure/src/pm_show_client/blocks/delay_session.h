// SPDX-License-Identifier: Apache-2.0
// The delay session of interfaces, endpoints and session items.
#pragma once

#include "schema/pm_records.h"

// The session at `indent`: identity and profile, advertisements, control codes, the running probe, and with
// `detail` its packets. A probe session, which has another record, is called invalid.
void pm_show_intf_dm_session(const pm_scb_parcel *session, int indent);
