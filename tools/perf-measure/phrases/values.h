// SPDX-License-Identifier: Apache-2.0
// The values of options, checked: perf-show itself takes any text, junk as 0.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "perf-measure/phrases/phrase_table.h"
#include "perf-measure/phrases/word_match.h"

namespace perf_measure {

// Reads a decimal number, or a hexadecimal one after 0x, from `smallest` to `largest`.
[[nodiscard]] bool read_number(std::string_view text, std::uint32_t smallest, std::uint32_t largest,
                               std::uint32_t *value);

// Checks a value that is neither a choice nor a node, and writes it to `*argument` as perf-show reads it. The
// result is empty, or says what is wrong.
[[nodiscard]] std::string check_value(const option &wanted, std::string_view text, std::string *argument);

// What an option takes, for messages: "a number from 1 to 65534".
[[nodiscard]] std::string describe_value(const option &wanted);

// The words of a choice.
[[nodiscard]] std::vector<fitting_word> choice_words(const option &wanted);

}  // namespace perf_measure
