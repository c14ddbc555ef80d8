// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/segments.h"

#include <algorithm>
#include <cstring>

#include "platform/address.h"
#include "platform/srv6_util.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"

namespace {

constexpr std::uint32_t HOPS_PER_LINE = 3;
constexpr std::uint32_t LABELS_PER_LINE = 4;

void print_sid(const pm_ipv6 *sid, int indent, const char *what) {
    if (sid != nullptr) {
        pm_print<"%*s%s (%s)\n">(indent, "", inet6_ntoa_r(sid->octets), what);
    }
}

void print_usid(const pm_usid_info &sid, int indent) {
    pm_print<"%*s%s/%u\n">(indent, "", inet6_ntoa_r(sid.SIDValue.octets), sid.USIDLength);
    pm_print<"%*sFormat: %s\n">(indent + 2, "", srv6_util_sid_fmt_str(static_cast<std::uint32_t>(sid.SIDFormat)));
    if (sid.SIDBehavior != nullptr) {
        pm_print<"%*sBehavior: %s (%u)\n">(indent + 2, "", srv6_util_end_func_str(*sid.SIDBehavior), *sid.SIDBehavior);
    }
}

// The first four bytes of an address, whatever its kind: an IPv6 hop shows as their dotted quad.
std::uint32_t first_four_bytes(const pm_record_address &address) {
    if (address.IPAddressType != PM_RECORD_ADDRESS_IPV6) {
        return address.IPv4;
    }
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, address.IPv6.octets, sizeof bytes);
    return bytes;
}

// Prints values a few to a line; only the first line carries the label. `write` writes one value to a
// pm_text_writer.
template <class Value, class Write>
void print_packed(const parcel_array<Value> &values, std::uint32_t per_line, pm_text label, const pm_lines &lines,
                  Write write) {
    char line[PM_LINE_SIZE];
    for (std::uint32_t begin = 0; begin < values.count; begin += per_line) {
        const std::uint32_t end = std::min(begin + per_line, values.count);
        pm_text_writer writer(line, line + sizeof line - 1);
        for (std::uint32_t i = begin; i < end; ++i) {
            pm_format<"%s">(writer, i == begin ? "" : ", ");
            write(writer, values.elements[i]);
        }
        *writer.cursor() = '\0';
        lines.text(begin == 0 ? label : "", line);
    }
}

}  // namespace

void pm_show_segments(const parcel_array<pm_segment_parcel> &segments, const pm_ipv6 *local_adjacency_sid,
                      const pm_ipv6 *endpoint_node_sid, int indent) {
    print_sid(local_adjacency_sid, indent, "Local Adjacency SID");
    for (const pm_segment_parcel &segment : segments) {
        if (segment.MPLSLabel != nullptr) {
            pm_print<"%*s%u\n">(indent, "", *segment.MPLSLabel);
        } else if (segment.USIDInfo != nullptr) {
            print_usid(*segment.USIDInfo, indent);
        }
    }
    print_sid(endpoint_node_sid, indent, "Suppressed endpoint node SID");
}

void pm_show_hops(const parcel_array<pm_record_address> &hops, int indent, int width) {
    print_packed(hops, HOPS_PER_LINE, "Hops", {indent, width},
                 [](pm_text_writer &writer, const pm_record_address &hop) {
                     pm_format<"%s">(writer, inet_ntoa_r(first_four_bytes(hop)));
                 });
}

void pm_show_labels(const parcel_array<std::uint32_t> &labels, int indent, int width) {
    print_packed(labels, LABELS_PER_LINE, "Labels", {indent, width},
                 [](pm_text_writer &writer, std::uint32_t label) { pm_format<"%u">(writer, label); });
}
