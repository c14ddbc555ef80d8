// SPDX-License-Identifier: Apache-2.0
// Changes of a schema text that leave it a schema: what another version of a program could have written. A search that
// changes single bytes seldom comes to one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

enum class schema_edit : std::uint8_t {
    rename_field,
    rename_record,  // every field of it
    rename_and_widen,
    add_field,
    remove_field,
    remove_after,  // the rest of a record
    count,
};

// Makes the changes that an input begins with: their number, and for each one a byte that says what it is and two that
// say at which field. Returns how many bytes of the input those were.
std::size_t edit_schema(std::span<const std::uint8_t> input, std::string *text);
