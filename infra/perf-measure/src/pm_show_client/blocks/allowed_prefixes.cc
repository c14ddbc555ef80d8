// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/allowed_prefixes.h"

#include <cstdint>
#include <cstring>

#include "base/pm_assert.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/address_text.h"

namespace {

// Assertions report these lines, wherever the checks are.
constexpr char NO_PARCEL[] = "NULL != parcel";
constexpr char SOURCE[] = "pm_show_client";
constexpr int REPORTED_COUNTER_LINE = 9859;
constexpr int REPORTED_ENTRY_LINE = 9882;

[[nodiscard]] constexpr pm_lines lines_at(int indent) { return {indent, 60}; }

// Prefixes ----------------------------------------------------------------------------------------

// The prefix of an entry, its address whole, not masked; false for an address of neither family.
bool prefix_of(const pm_prefix_entry_parcel &entry, pm_prefix_t &prefix) {
    const pm_record_address &address = entry.PrefixAddress;
    prefix = {};
    prefix.length = entry.PrefixLength;
    switch (address.IPAddressType) {
    case PM_RECORD_ADDRESS_IPV4:
        prefix.family = IP_FAMILY_IPV4;
        std::memcpy(prefix.octets, &address.IPv4, sizeof address.IPv4);
        return true;
    case PM_RECORD_ADDRESS_IPV6:
        prefix.family = IP_FAMILY_IPV6;
        std::memcpy(prefix.octets, address.IPv6.octets, sizeof address.IPv6.octets);
        return true;
    default: return false;
    }
}

// What holds for a prefix that is not plainly configured. Going hides how the prefix came.
void print_flags(const pm_prefix_entry_parcel &entry) {
    if (entry.PendingDelete) {
        pm_print<" [Pending Delete]">();
    } else if (!entry.Configured) {
        pm_print<" [Auto]">();
    }
    if (entry.PendingAdd) {
        pm_print<" [Pending Add]">();
    }
}

void print_prefix(const pm_prefix_entry_parcel &entry, int indent) {
    pm_prefix_t prefix;
    const bool known = prefix_of(entry, prefix);
    pm_print<"%*s%s">(indent, "", known ? pm_prefix_str(&prefix) : "Unknown network family type");
    if (!known) {
        return;  // without an end of line: the next prefix continues this one
    }
    print_flags(entry);
    pm_print_empty_line();
    if (pm_show_options.internal) {
        print_prefix_counter_generic(&entry.ReferenceCounters, indent + 2);
    }
}

// Ports -------------------------------------------------------------------------------------------

void print_port(const pm_lines &lines, pm_text label, std::uint16_t port) {
    if (port == 0) {
        lines.text(label, "N/A");
    } else {
        lines.number(label, port);
    }
}

}  // namespace

void pm_print_no_applicable_port() { pm_print<"No applicable port opened\n">(); }

void print_prefix_counter_generic(const pm_prefix_reference_counters *parcel, int indent) {
    if (parcel == nullptr) {
        pm_assertion_failed(NO_PARCEL, SOURCE, REPORTED_COUNTER_LINE,
                            "void print_prefix_counter_generic(const pm_prefix_reference_counters *, uint32_t, "
                            "uint32_t)");
    }
    const pm_lines lines = lines_at(indent);
    lines.number("Configured counter", parcel->ConfiguredCounter);
    lines.number("SRPolicy reference counter", parcel->SRPolicyCount);
    lines.number("Endpoint reference counter", parcel->EndpointCount);
}

void pm_print_allowed_prefixes(pm_text label, const pm_prefixes_info &prefixes) {
    const bool internal = pm_show_options.internal;
    lines_at(0).number(label, prefixes.PrefixList.count);
    if (internal) {
        pm_print_heading(2, "Reference counter summary");
        print_prefix_counter_generic(&prefixes.ReferenceCounters, 4);
    }
    if (prefixes.PrefixList.count == 0) {
        return;
    }
    if (internal) {
        pm_print_heading(2, "Prefix list");
    }
    if (prefixes.PrefixList.elements == nullptr) {
        pm_assertion_failed(NO_PARCEL, SOURCE, REPORTED_ENTRY_LINE,
                            "void print_prefix_entry_parcel(pm_prefix_entry_parcel *, uint32_t, uint32_t)");
    }
    for (const pm_prefix_entry_parcel &entry : prefixes.PrefixList) {
        print_prefix(entry, internal ? 4 : 2);
    }
}

void pm_print_ports_heading(pm_text heading) {
    pm_print_empty_line();
    pm_print_heading(0, heading);
}

void pm_print_port_status(pm_text label, const pm_udp_port_rxpol_prefix_status *status) {
    if (status == nullptr) {
        return;
    }
    print_port(lines_at(2), label, status->PortNumber);
    pm_print_port_detail(*status, 4);
}

void pm_print_port_detail(const pm_udp_port_rxpol_prefix_status &status, int indent) {
    if (status.NpuId != nullptr) {
        lines_at(indent).number("NPU ID", *status.NpuId);
        indent += 2;
    }
    const pm_lines lines = lines_at(indent);
    print_port(lines, "Opened IPv4 port", status.IPv4Status.PortNumber);
    lines.text("IPv4 Port Update Time", pm_time_str(status.IPv4Status.InstallTime));
    print_port(lines, "Opened IPv6 port", status.IPv6Status.PortNumber);
    lines.text("IPv6 Port Update Time", pm_time_str(status.IPv6Status.InstallTime));
}
