// SPDX-License-Identifier: Apache-2.0
// A record type's description, as the reader and the writer of JSON walk it: with no code per type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/pm_error.h"
#include "perf-store/datasets/record_json.h"
#include "platform/local/codec/parcel_notation.h"

namespace perf_store {

using value_shape = parcel_notation::data_type;   // of a field or element
using record_shape = parcel_notation::data_type;  // a record or a union
using field_shape = parcel_notation::field;

inline constexpr std::size_t MAX_FIELDS = 256;  // of one record, in JSON

// The description of a type's record, made once per process.
class type_shape {
public:
    explicit type_shape(const parcel_descriptor *descriptor);

    [[nodiscard]] const record_shape &record() const { return *schema_.definitions.front(); }

private:
    parcel_notation::schema schema_;
};

[[nodiscard]] const type_shape &shape_of(const parcel_descriptor *descriptor);

[[nodiscard]] inline bool is_union(const record_shape &shape) {
    return shape.what == parcel_notation::kind::tagged_union;
}

// Whether a type is the union that every address of a record is: IPv4, IPv6 or none, selected by its kind. It is
// written as address text.
[[nodiscard]] inline bool is_address(const record_shape &shape) { return shape.discriminator == "IPAddressType"; }

// Appends one value of a record as JSON, as append_record does with all of them.
[[nodiscard]] pm_error append_value(const std::uint8_t *value, const value_shape &shape, json_fields fields,
                                    std::string *out);

}  // namespace perf_store
