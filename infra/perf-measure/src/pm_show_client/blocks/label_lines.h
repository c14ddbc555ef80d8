// SPDX-License-Identifier: Apache-2.0
// Lines of a label and a value, with the colons of a block in one column.
#pragma once

#include <concepts>
#include <cstdint>

#include "base/pm_text.h"
#include "schema/pm_records.h"

inline constexpr int PM_COLON = 48;  // column of the colons in most blocks

// The label lines of a block: where a label begins and where its colon is. Each member function prints one line.
//
// Lines of different indents have their colons in one column. A label that is too long pushes its colon to the right.
// The lines are cut like those of pm_print_indented (lines.h).
struct pm_lines {
    int indent;  // blanks before the label
    int colon;   // column of the colon, counted from the start of the line

    template <std::unsigned_integral Number>
    void number(pm_text label, Number value) const;
    void text(pm_text label, pm_text value) const;                      // "(null)" for null
    void signed_number(pm_text label, std::uint32_t value) const;       // 0xFFFFFFFF prints as -1
    void hex(pm_text label, std::uint32_t value) const;                 // "0x2a"
    void padded_hex(pm_text label, std::uint32_t value) const;          // "0x0000002a"
    void percent(pm_text label, std::uint32_t value) const;             // "5%"
    void unit(pm_text label, std::uint32_t value, pm_text name) const;  // "10 usec"
    void address(pm_text label, const pm_record_address &value) const;  // "Unknown" for no IP address
    void flag(pm_text label, std::uint32_t value) const;                // "True" or "False"
    void enabled(pm_text label, std::uint32_t value) const;             // "Enabled" or "Disabled"

private:
    void u32(pm_text label, std::uint32_t value) const;
    void u64(pm_text label, std::uint64_t value) const;
};

// The lines at `indent` of a block whose colons are in the usual column.
[[nodiscard]] constexpr pm_lines pm_lines_at(int indent) { return {indent, PM_COLON}; }

// Lines without a column: the colon is directly after each label.
[[nodiscard]] constexpr pm_lines pm_plain_lines(int indent) { return {indent, indent}; }

[[nodiscard]] inline pm_text pm_true_or_false(std::uint32_t flag) {
    return flag != 0 ? pm_text("True") : pm_text("False");
}

template <std::unsigned_integral Number>
void pm_lines::number(pm_text label, Number value) const {
    if constexpr (sizeof value <= sizeof(std::uint32_t)) {
        u32(label, value);
    } else {
        u64(label, value);
    }
}
