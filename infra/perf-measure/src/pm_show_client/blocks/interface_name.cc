// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/interface_name.h"

#include "base/pm_output.h"

void pm_show_interface_name(const char *name, std::uint32_t handle, int indent) {
    pm_print<"%*sInterface Name: %s (ifh: 0x%x)\n">(indent, "", name, handle);
}

void pm_show_interface_name(const char *name) { pm_print<"Interface Name: %s\n">(name); }
