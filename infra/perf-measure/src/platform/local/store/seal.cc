// SPDX-License-Identifier: Apache-2.0
// Checksums of keys before the parcels.
#include "platform/local/store/seal.h"

#include <cstring>

#include "platform/local/codec/checksum.h"

namespace store {

summed_key::summed_key(std::string_view key) : text(key), sum(checksum(key.data(), key.size())) {}

void seal(std::string_view key, std::string_view parcel, std::vector<std::uint8_t> *value) {
    const std::uint64_t sum = checksum(key.data(), key.size());
    value->resize(sizeof sum + parcel.size());
    std::memcpy(value->data(), &sum, sizeof sum);
    std::memcpy(value->data() + sizeof sum, parcel.data(), parcel.size());
}

std::string_view unseal(std::string_view key, std::string_view value) { return unseal(summed_key(key), value); }

std::string_view unseal(const summed_key &key, std::string_view value) {
    if (value.size() < sizeof key.sum || std::memcmp(value.data(), &key.sum, sizeof key.sum) != 0) {
        return {};
    }
    return value.substr(sizeof key.sum);
}

}  // namespace store
