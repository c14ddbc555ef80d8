// SPDX-License-Identifier: Apache-2.0
// Help texts from the phrase table: for a place in a command, for a whole command, and for documents.
#pragma once

#include <string>
#include <string_view>

#include "perf-measure/phrases/parser.h"

namespace perf_measure {

// What may follow at the parser's place, one line each: the words that begin with `beginning`, or what value
// is wanted. Ends with a newline.
[[nodiscard]] std::string help_here(const word_parser &parser, std::string_view beginning = "");

// As help_here(), below a line that says what the command so far does.
[[nodiscard]] std::string help_for(const word_parser &parser);

// Every phrase with its line of help.
[[nodiscard]] std::string help_overview();

// The commands and their options in the notation of manual pages.
[[nodiscard]] std::string manual_commands();

}  // namespace perf_measure
