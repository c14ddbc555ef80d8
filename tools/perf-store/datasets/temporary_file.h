// SPDX-License-Identifier: Apache-2.0
// Files for what does not fit in memory.
#pragma once

#include <string>

#include "base/pm_error.h"

namespace perf_store {

// TMPDIR, else /tmp.
[[nodiscard]] std::string temporary_folder_name();

// Opens a file for reading and writing there. It has no name, so that nothing is left of it however
// the program ends; the descriptor is the caller's.
[[nodiscard]] pm_error open_temporary_file(int *file);

// What a system call on such a file failed with, by the folder's name.
[[nodiscard]] pm_error temporary_file_error(int error_number);

}  // namespace perf_store
