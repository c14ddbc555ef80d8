// SPDX-License-Identifier: Apache-2.0
// Records on their way into a store: encoded, sealed, and the schemas of their types noticed.
#pragma once

#include <cstdint>
#include <set>
#include <string_view>
#include <vector>

#include "base/pm_error.h"
#include "platform/parcel.h"

namespace store {

class record_encoder {
public:
    // Encodes a record as the value under a key, which value() then is. ERRCODE_RANGE for a record that is nested too
    // deeply, with the text TOO_DEEP of store/writer.h; other failures name the type.
    [[nodiscard]] pm_error encode(std::string_view key, const void *record, const parcel_descriptor *descriptor);
    // Valid until the next record.
    [[nodiscard]] std::string_view value() const {
        return {reinterpret_cast<const char *>(value_.data()), value_.size()};
    }

    // Whether a type's schema has not been kept in this transaction; true once for each type.
    [[nodiscard]] bool is_new_type(const parcel_descriptor *descriptor) {
        return known_types_.insert(descriptor).second;
    }
    // Forgets the types: the schemas that were kept are gone.
    void forget_types() { known_types_.clear(); }

private:
    std::vector<std::uint8_t> parcel_;
    std::vector<std::uint8_t> value_;
    std::set<const parcel_descriptor *> known_types_;
};

}  // namespace store
