// SPDX-License-Identifier: Apache-2.0
// Reply counters of the responder, of one interface or of the whole node.
#pragma once

#include "schema/pm_records.h"

// Twelve lines at `indent`. `counters` is never null.
void pm_show_resp_counters(const pm_counter_resp_parcel *counters, int indent);
