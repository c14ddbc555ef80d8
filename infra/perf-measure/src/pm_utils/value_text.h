// Texts of nodes, interfaces, ports, counts and cut names.
//
// Unless stated otherwise a result is borrowed from the rotating slots (text_ring.h): the tenth
// result after it, of whatever routine that uses the slots, overwrites it. A routine takes its slot
// even when it returns a constant.
#pragma once

#include <cstddef>
#include <cstdint>

// Display name of a node; "N/A" when the platform does not know it.
[[nodiscard]] const char *pm_nodeid_str(std::uint32_t nodeid);

// Display name of an interface; the platform's "Unknown" for a handle that no interface has.
[[nodiscard]] const char *pm_ifname_str(std::uint32_t ifhandle);

// Name and handle, "eth0/1/0/4 (ifh: 0x2a) " with a blank at the end. Borrowed from two buffers of
// its own, valid until the next call but one.
[[nodiscard]] const char *pm_ifh_str(std::uint32_t ifhandle);

// "configured port 862", or "random port" for zero. Only the low 16 bits count.
[[nodiscard]] const char *pm_udp_port_str(std::uint32_t port);

// The number, or "All" for zero.
[[nodiscard]] const char *pm_count_or_all_str(std::uint32_t count);

// "1,2,3," with a comma after every value, "" for a count of zero. A count that is negative or
// above 16 prints 16 values, so `values` has at least that many then.
[[nodiscard]] const char *pm_u32_list_str(const std::uint32_t *values, std::int32_t count);

// `name` if it has at most `trunc_len` characters, else its first `trunc_len` and "..". Null for
// null, which takes no slot. A `trunc_len` above 253 aborts.
[[nodiscard]] const char *pm_truncate_name(const char *name, std::size_t trunc_len);
