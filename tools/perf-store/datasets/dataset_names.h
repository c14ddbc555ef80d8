// SPDX-License-Identifier: Apache-2.0
// The words of data sets.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/local/store/branch.h"

namespace perf_store {

inline constexpr std::uint32_t DATASET_VERSION = 1;
inline constexpr char CENTRAL_SERVICES[] = "central-services";

struct state_name {
    store::publisher_state state;
    const char *word;
};
inline constexpr state_name PUBLISHER_STATES[] = {
    {store::publisher_state::running, "running"},
    {store::publisher_state::stopped, "stopped"},
    {store::publisher_state::unreachable, "unreachable"},
    {store::publisher_state::starting, "starting"},
};

// The entry of a table of words; null when the word is none of them.
template <class Entry, std::size_t Count>
[[nodiscard]] const Entry *find_word(const Entry (&table)[Count], std::string_view word) {
    for (const Entry &each : table) {
        if (word == each.word) {
            return &each;
        }
    }
    return nullptr;
}

}  // namespace perf_store
