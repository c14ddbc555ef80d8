// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/label_lines.h"

#include "platform/address.h"
#include "pm_show_client/blocks/lines.h"

void pm_lines::text(pm_text label, pm_text value) const {
    pm_print_indented<"%-*s: %s\n">(indent, colon - indent, label, value);
}

void pm_lines::u32(pm_text label, std::uint32_t value) const {
    pm_print_indented<"%-*s: %u\n">(indent, colon - indent, label, value);
}

void pm_lines::u64(pm_text label, std::uint64_t value) const {
    pm_print_indented<"%-*s: %lu\n">(indent, colon - indent, label, value);
}

void pm_lines::signed_number(pm_text label, std::uint32_t value) const {
    pm_print_indented<"%-*s: %d\n">(indent, colon - indent, label, value);
}

void pm_lines::hex(pm_text label, std::uint32_t value) const {
    pm_print_indented<"%-*s: 0x%x\n">(indent, colon - indent, label, value);
}

void pm_lines::padded_hex(pm_text label, std::uint32_t value) const {
    pm_print_indented<"%-*s: 0x%08x\n">(indent, colon - indent, label, value);
}

void pm_lines::percent(pm_text label, std::uint32_t value) const {
    pm_print_indented<"%-*s: %u%%\n">(indent, colon - indent, label, value);
}

void pm_lines::unit(pm_text label, std::uint32_t value, pm_text name) const {
    pm_print_indented<"%-*s: %u %s\n">(indent, colon - indent, label, value, name);
}

void pm_lines::address(pm_text label, const pm_record_address &value) const {
    const char *address = "Unknown";
    if (value.IPAddressType == PM_RECORD_ADDRESS_IPV4) {
        address = inet_ntoa_r(value.IPv4);
    } else if (value.IPAddressType == PM_RECORD_ADDRESS_IPV6) {
        address = inet6_ntoa_r(value.IPv6.octets);
    }
    text(label, address);
}

void pm_lines::flag(pm_text label, std::uint32_t value) const { text(label, pm_true_or_false(value)); }

void pm_lines::enabled(pm_text label, std::uint32_t value) const {
    text(label, value != 0 ? pm_text("Enabled") : pm_text("Disabled"));
}
