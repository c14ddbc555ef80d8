// SPDX-License-Identifier: Apache-2.0
// Reads the whole store and tells what is wrong with it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/pm_error.h"
#include "perf-store/datasets/output_file.h"

namespace perf_store {

// Takes each thing that is wrong or lost, one line of text without its end.
using loss_report = std::function<void(const std::string &what)>;

// What was read.
struct check_result {
    std::uint64_t records = 0;
    std::uint64_t losses = 0;
};

// Reads every record: pages, links, seals, checksums and schemas, and whether each item has the type of its path.
// An error when nothing could be read, and what is wrong with the store is no such error.
[[nodiscard]] pm_error verify_store(const loss_report &report, check_result *result);

// Writes all records that are sound as a data set. An error also when it cannot be written.
[[nodiscard]] pm_error dump_sound_records(const loss_report &report, output_file *out, check_result *result);

}  // namespace perf_store
