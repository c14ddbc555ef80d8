// SPDX-License-Identifier: Apache-2.0
// Values of the store: a record is kept as the checksum of its key and its parcel, so that a record that has come to
// be under another key is noticed.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace store {

// Makes the value of a parcel under a key.
void seal(std::string_view key, std::string_view parcel, std::vector<std::uint8_t> *value);

// The parcel of a value, which is a part of it; empty when the value is not that key's.
[[nodiscard]] std::string_view unseal(std::string_view key, std::string_view value);

}  // namespace store
