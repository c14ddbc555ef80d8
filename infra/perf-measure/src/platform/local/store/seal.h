// SPDX-License-Identifier: Apache-2.0
// Values of the store: a record is kept as the checksum of its key and its parcel, so that a record that has come to
// be under another key is noticed.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace store {

// A key with its checksum, for whoever needs that more than once.
struct summed_key {
    summed_key() = default;
    explicit summed_key(std::string_view key);
    operator std::string_view() const { return text; }

    std::string_view text;
    std::uint64_t sum = 0;
};

// Makes the value of a parcel under a key.
void seal(std::string_view key, std::string_view parcel, std::vector<std::uint8_t> *value);

// The parcel of a value, which is a part of it; empty when the value is not that key's.
[[nodiscard]] std::string_view unseal(std::string_view key, std::string_view value);
[[nodiscard]] std::string_view unseal(const summed_key &key, std::string_view value);

}  // namespace store
