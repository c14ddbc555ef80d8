// SPDX-License-Identifier: Apache-2.0
// Opens the store that a URL names for reading, whichever back end it takes.
#pragma once

#include <string>
#include <string_view>

#include "base/pm_error.h"
#include "platform/local/store/inspector.h"
#include "platform/local/store/reader.h"

namespace store {

// The store of that name, opened at the first call that succeeds. It lives until the process ends, and parcels written
// with schemas that are not the program's own are read with those that it keeps.
// OPSTORE_NO_CLIENT: there is no readable store under that name, or no back end for it; OPSTORE_DAMAGED.
[[nodiscard]] pm_error shared_reader(const std::string &url, reader **out);
// That of configured_url().
[[nodiscard]] pm_error shared_reader(reader **out);

// Whether a URL has the scheme of a store.
[[nodiscard]] bool is_store_url(std::string_view url);

// Whether the store at configured_url() can be read. A URL of no back end cannot.
[[nodiscard]] access_state check_access();

// Reads the whole store at configured_url(), as far as it can be read. Needs no shared reader: a store that is too
// damaged to be opened can be inspected. An error when nothing could be read.
[[nodiscard]] pm_error inspect(inspector *to);

}  // namespace store
