// A record type's schema and layout, prepared for walking its structure: what the reader and the writer
// of JSON need to know of each field, with no code per type.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/local/codec/parcel_notation.h"
#include "platform/parcel.h"

namespace perf_store {

struct record_shape;

// The type of a field or element.
struct value_shape {
    parcel_notation::kind what{};
    char format = 0;                       // of raw bytes: 's' IPv6, 'm' MAC
    std::uint32_t count = 0;               // of raw bytes and fixed arrays
    std::uint32_t size = 0;                // bytes in the structure
    std::string notation;                  // for messages
    const value_shape *element = nullptr;  // of optionals and arrays
    const record_shape *record = nullptr;  // of references
};

struct field_shape {
    std::string name;                   // empty for an arm without content
    std::uint32_t value = 0;            // of an arm: its discriminator
    std::uint32_t offset = 0;           // in the structure
    const value_shape *type = nullptr;  // null for an arm without content
};

// A record or a union.
struct record_shape {
    bool is_union = false;
    bool is_address = false;  // a union that is written as address text
    std::uint32_t size = 0;
    std::string discriminator;  // of a union; stands at the start of the structure
    std::vector<field_shape> fields;
    std::unordered_map<std::string_view, std::size_t> by_name;

    [[nodiscard]] const field_shape *arm_of(std::uint32_t value) const;
};

// The shapes of one type. Shapes of recursive types refer to each other, so they stay where they are.
class type_shape {
public:
    explicit type_shape(const parcel_descriptor *descriptor);
    type_shape(const type_shape &) = delete;
    type_shape &operator=(const type_shape &) = delete;

    [[nodiscard]] const record_shape &record() const { return records_.front(); }
    [[nodiscard]] const parcel_descriptor *descriptor() const { return descriptor_; }

private:
    void fill(parcel_notation::definition_index index);
    [[nodiscard]] const value_shape *value(parcel_notation::type_index index);
    [[nodiscard]] const parcel_layout &layout_of(parcel_notation::definition_index index) const;

    const parcel_descriptor *descriptor_;
    parcel_notation::schema schema_;
    std::deque<record_shape> records_;  // as the schema's definitions
    std::deque<value_shape> values_;
};

// The shapes of a type, made once per process.
[[nodiscard]] const type_shape &shape_of(const parcel_descriptor *descriptor);

}  // namespace perf_store
