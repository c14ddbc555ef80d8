// SPDX-License-Identifier: Apache-2.0
// A record of the store, decoded.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/local/codec/parcel_codec.h"

namespace perf_store {

// A decoded parcel, freed at its end.
class decoded_record {
public:
    decoded_record(std::string_view parcel, const parcel_descriptor *type)
        : type_(type),
          words_(type->layout[0].size / sizeof(std::uint64_t) + 1),
          code_(parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), words_.data(), type)) {}
    ~decoded_record() { parcel_free_indirections(words_.data(), type_); }
    decoded_record(const decoded_record &) = delete;
    decoded_record &operator=(const decoded_record &) = delete;

    [[nodiscard]] errcode code() const { return code_; }
    [[nodiscard]] const void *data() const { return words_.data(); }
    template <class Record>
    [[nodiscard]] const Record &as() const {
        return *static_cast<const Record *>(data());
    }

private:
    const parcel_descriptor *type_;
    std::vector<std::uint64_t> words_;
    errcode code_;
};

}  // namespace perf_store
