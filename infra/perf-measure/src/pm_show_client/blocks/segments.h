// SPDX-License-Identifier: Apache-2.0
// Segments of a segment list, and the hops and labels of a path.
#pragma once

#include <cstdint>

#include "schema/pm_records.h"

// The internal label of a segment list that has none: outside of the 20-bit range of MPLS labels.
inline constexpr std::uint32_t PM_NO_INTERNAL_LABEL = 0x100001;

// A line for each segment: its MPLS label, or its SRv6 SID with format and behaviour. A segment that has
// only an address prints nothing. The SIDs come before and after the segments; null when there are none.
void pm_show_segments(const parcel_array<pm_segment_parcel> &segments, const pm_ipv6 *local_adjacency_sid,
                      const pm_ipv6 *endpoint_node_sid, int indent);

// Three hops or four labels to a line, the colons in column `width`. Nothing when there are none.
void pm_show_hops(const parcel_array<pm_record_address> &hops, int indent, int width);
void pm_show_labels(const parcel_array<std::uint32_t> &labels, int indent, int width);
