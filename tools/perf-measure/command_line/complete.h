// Completion for shells.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "perf-measure/phrases/phrase_table.h"

namespace perf_measure {

// Names in the store that begin with `beginning`, each once, in byte order: of items, or of nodes when `items` is
// null. None when the store cannot be read.
[[nodiscard]] std::vector<std::string> stored_names(const name_source *items, std::string_view beginning);

// Writes the candidates for the last of the words to standard output, one a line, with a tab and its help where
// there is one. EXIT_SHOWN.
[[nodiscard]] int print_candidates(const std::vector<std::string> &words);

}  // namespace perf_measure
