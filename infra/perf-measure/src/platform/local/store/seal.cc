// SPDX-License-Identifier: Apache-2.0
// Checksums of keys before the parcels.
#include "platform/local/store/seal.h"

#include <cstring>

#include "platform/local/codec/checksum.h"

namespace store {

void seal(std::string_view key, std::string_view parcel, std::vector<std::uint8_t> *value) {
    const std::uint64_t sum = checksum(key.data(), key.size());
    value->resize(sizeof sum + parcel.size());
    std::memcpy(value->data(), &sum, sizeof sum);
    std::memcpy(value->data() + sizeof sum, parcel.data(), parcel.size());
}

std::string_view unseal(std::string_view key, std::string_view value) {
    const std::uint64_t sum = checksum(key.data(), key.size());
    if (value.size() < sizeof sum || std::memcmp(value.data(), &sum, sizeof sum) != 0) {
        return {};
    }
    return value.substr(sizeof sum);
}

}  // namespace store
