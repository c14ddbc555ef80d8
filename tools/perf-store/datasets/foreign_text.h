// SPDX-License-Identifier: Apache-2.0
// What is often given in place of JSON, by its name.
#pragma once

#include <string_view>

namespace perf_store {

// What a file that begins so is, when it is no UTF-8 text at all or begins with a byte order mark, and what to do; else
// null.
[[nodiscard]] const char *foreign_file(std::string_view beginning);

// What is at a place where JSON was expected: a comment; else null.
[[nodiscard]] const char *foreign_text(std::string_view text);

}  // namespace perf_store
