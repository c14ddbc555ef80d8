// SPDX-License-Identifier: Apache-2.0
// The URL that names the store: a back end's scheme, ':' and what that back end makes of the rest.
#pragma once

#include <string>
#include <string_view>

#include "base/pm_error.h"

namespace store {

inline constexpr char DEFAULT_URL[] = "lmdb:/var/lib/perf-show/opstore";

// Whether OPSTORE_URL names a store.
[[nodiscard]] bool is_url_given();
// OPSTORE_URL, or the default.
[[nodiscard]] const char *configured_url();

// The scheme of a URL, without its ':'; empty when it has none or nothing follows it.
[[nodiscard]] std::string_view scheme_of(std::string_view url);
// What follows the scheme and its ':'.
[[nodiscard]] std::string_view place_of(std::string_view url);

// What is wrong with the configured store, for a person: the error's own text, or the URL and the text of its code.
// Whoever has not chosen the store is told how to.
[[nodiscard]] std::string describe(const pm_error &error);
// What is wrong with the store of that name.
[[nodiscard]] std::string describe(const pm_error &error, std::string_view url);

}  // namespace store
