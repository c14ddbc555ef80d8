// SPDX-License-Identifier: Apache-2.0
// Names that are in the store, for completion.
#pragma once

#include <string_view>
#include <vector>

#include "perf-measure/completion/candidates.h"
#include "perf-measure/phrases/phrase_table.h"

namespace perf_measure {

inline constexpr std::size_t MOST_NAMES = 4000;  // of a branch that are listed whole

// Names in the store that begin with `beginning`, each once, in byte order: of items, or of nodes when `items` is
// null. Where there are more than MOST_NAMES, what they begin with, one character more than what they have in
// common: as much as anyone can read, and as fast as few names. None when the store cannot be read.
[[nodiscard]] std::vector<candidate> stored_names(const name_source *items, std::string_view beginning);

}  // namespace perf_measure
