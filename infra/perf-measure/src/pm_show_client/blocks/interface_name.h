// SPDX-License-Identifier: Apache-2.0
// The line that names an interface.
#pragma once

#include <cstdint>

// "Interface Name: eth0/1/0/4 (ifh: 0x2a)".
void pm_show_interface_name(const char *name, std::uint32_t handle, int indent);

// "Interface Name: eth0/1/0/4".
void pm_show_interface_name(const char *name);
