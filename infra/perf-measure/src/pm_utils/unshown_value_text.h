// SPDX-License-Identifier: Apache-2.0
// Called by no show: texts of nodes, interfaces, ports and lists of numbers.
//
// A result is borrowed from the rotating slots (text_ring.h): the tenth result after it, of whatever
// routine that uses the slots, overwrites it. A routine takes its slot even when it returns a constant.
#pragma once

#include <cstdint>

// Display name of a node; "N/A" when the platform does not know it.
[[nodiscard]] const char *pm_nodeid_str(std::uint32_t nodeid);

// Display name of an interface; the platform's "Unknown" for a handle that no interface has.
[[nodiscard]] const char *pm_ifname_str(std::uint32_t ifhandle);

// "configured port 862", or "random port" for zero. Only the low 16 bits count.
[[nodiscard]] const char *pm_udp_port_str(std::uint32_t port);

// "1,2,3," with a comma after every value, "" for a count of zero. A count that is negative or
// above 16 prints 16 values, so `values` has at least that many then.
[[nodiscard]] const char *pm_u32_list_str(const std::uint32_t *values, std::int32_t count);
