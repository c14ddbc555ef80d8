// SPDX-License-Identifier: Apache-2.0
// Links between neighbours: each record of the table carries a checksum of its key and the one before it, so that
// every reading sees whether a record that was written is missing.
//
// A value is kept as its link (8 bytes) and then the value itself. The first key of a store is its format's, which has
// no link; the last one is END_KEY, whose value is the number of the transaction that made the state. Between them
// every gap is proved by the record after it: a key that is not found is absent only when the record after its place
// is linked to the one before it. Whoever reads through a range compares each record with the one read before it.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"

namespace lmdb_store {

inline constexpr char FORMAT_KEY_BYTE = static_cast<char>(store::key_space::format);
inline constexpr std::string_view FORMAT_KEY(&FORMAT_KEY_BYTE, 1);  // before every other key
inline constexpr std::string_view END_KEY = "Z";                    // after every other key

using link = std::uint64_t;

// The link of a record to the one before it. It tells whether either key has changed.
[[nodiscard]] inline link link_between(const store::summed_key &key_before, const store::summed_key &key) {
    constexpr link ODD = 0x9e3779b97f4a7c15;  // so that two keys in the other order have another link
    return key_before.sum * ODD + key.sum;
}
[[nodiscard]] inline link link_between(std::string_view key_before, std::string_view key) {
    return link_between(store::summed_key(key_before), store::summed_key(key));
}

// Whether a value as it is kept under `key` belongs to a record that comes after `key_before`.
[[nodiscard]] inline bool is_linked(std::string_view kept, const store::summed_key &key_before,
                                    const store::summed_key &key) {
    const link wanted = link_between(key_before, key);
    return kept.size() >= sizeof wanted && std::memcmp(kept.data(), &wanted, sizeof wanted) == 0;
}
[[nodiscard]] inline bool is_linked(std::string_view kept, std::string_view key_before, std::string_view key) {
    return is_linked(kept, store::summed_key(key_before), store::summed_key(key));
}

// A kept value without its link.
[[nodiscard]] inline std::string_view without_link(std::string_view kept) {
    return kept.size() >= sizeof(link) ? kept.substr(sizeof(link)) : std::string_view();
}

}  // namespace lmdb_store
