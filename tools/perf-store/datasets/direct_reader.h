// SPDX-License-Identifier: Apache-2.0
// JSON text to records, without nodes in between: what record_reader.h reads too, several times as fast.
#pragma once

#include <cstdint>
#include <string_view>

#include "perf-store/datasets/json_cursor.h"
#include "perf-store/datasets/record_memory.h"
#include "perf-store/datasets/record_shape.h"

namespace perf_store {

// Reads records as programs write them: sound ones, with the discriminator of a union before its arm. Whatever is
// otherwise, a mistake or not, is left to the careful reader: the routines give false, and what is read is in any
// state.
class direct_reader {
public:
    direct_reader(json_cursor *from, record_memory *memory) : from_(*from), memory_(*memory) {}

    // The record that the object at the cursor describes. It lives until the memory is reset.
    [[nodiscard]] bool read(const parcel_descriptor *type, const void **record);
    // A terminated copy of the string at the cursor.
    [[nodiscard]] bool keep_text(const char **text);

private:
    [[nodiscard]] bool read_record(const record_shape &shape, std::uint8_t *to);
    [[nodiscard]] bool read_fields(const record_shape &shape, std::uint8_t *to);
    [[nodiscard]] const field_shape *take_field_name(const record_shape &shape, std::size_t expected);
    [[nodiscard]] bool read_union(const record_shape &shape, std::uint8_t *to);
    [[nodiscard]] bool read_address(const record_shape &shape, std::uint8_t *to);
    [[nodiscard]] bool read_value(const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] bool read_number(const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] bool read_enumeration(std::uint8_t *to);
    [[nodiscard]] bool read_boolean(std::uint8_t *to);
    [[nodiscard]] bool read_text(std::uint8_t *to);
    [[nodiscard]] bool read_octets(const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] bool read_optional(const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] bool read_array(const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] bool read_fixed_array(const value_shape &shape, std::uint8_t *to);
    [[nodiscard]] bool read_opaque(std::uint8_t *to);

    json_cursor &from_;
    record_memory &memory_;
    std::uint32_t depth_ = 0;  // of records within one another
};

}  // namespace perf_store
