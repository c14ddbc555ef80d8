// SPDX-License-Identifier: Apache-2.0
// A file that its readers see whole, the old one or the new one, at any moment.
#pragma once

#include <functional>
#include <string>

#include "base/pm_error.h"

namespace perf_measure {

// Writes a file by `write`, which gets a descriptor, and puts it in the place of `path` when all is on the disk. Anyone
// may read it. When something fails, or the program is killed, `path` is as it was and nothing is left beside it; only
// a kill between two system calls can leave a file of the same name with ".new" after it, which the next call removes.
pm_error replace_file(const std::string &path, const std::function<pm_error(int descriptor)> &write);

}  // namespace perf_measure
