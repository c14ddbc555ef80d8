// SPDX-License-Identifier: Apache-2.0
// What may be typed next: words of the phrase table, names that are in the store, and plain options.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "perf-measure/phrases/phrase_table.h"

namespace perf_measure {

struct candidate {
    std::string word;
    std::string help;      // "" for a name
    bool is_whole = true;  // false: the beginning of several names
};

// Where names come from: those of items, or of nodes when `items` is null, that begin with a text.
using name_lister = std::function<std::vector<candidate>(const name_source *items, std::string_view beginning)>;

// The words that may follow `words` and begin with `beginning`. None after words that are no command.
[[nodiscard]] std::vector<candidate> candidates(const std::vector<std::string> &words, std::string_view beginning,
                                                const name_lister &names);

// The longest text that all candidates begin with.
[[nodiscard]] std::string common_beginning(const std::vector<candidate> &all);

}  // namespace perf_measure
