// SPDX-License-Identifier: Apache-2.0
// The table of interfaces: the delays that were measured.
#pragma once

#include "schema/pm_records.h"

// The row of an interface, after the header when that is still to come.
void pm_show_interface_delay_row(const pm_intf_parcel &interface);
