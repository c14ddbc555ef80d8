// SPDX-License-Identifier: Apache-2.0
// What perf-store does, one function a command. Each returns the exit status and reports on standard error
// what went wrong.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/pm_error.h"
#include "perf-store/datasets/store_contents.h"
#include "perf-store/generator/gen_options.h"

namespace perf_store {

inline constexpr int EXIT_DONE = 0;
inline constexpr int EXIT_REFUSED = 1;  // the input or the store refused it
inline constexpr int EXIT_USAGE = 2;

// Reports an error that is not in the input, as "perf-store: what". EXIT_REFUSED, or EXIT_DONE for none.
[[nodiscard]] int report(const pm_error &error);

// Puts data sets into the store, all of them or nothing.
struct load_options {
    std::vector<std::string> files;
    bool replace = false;  // empty the store first
    bool empty = false;    // replace it by sets without any item or node too
};
[[nodiscard]] int run_load(const load_options &options);
// Removes items, all or none: each path must be there when the command begins. `recursive` removes what is
// below them too.
[[nodiscard]] int run_rm(const store::root_name &root, std::uint32_t node, const std::vector<std::string> &paths,
                         bool recursive);

// Compares two states. Each is a data set ("-" is standard input) or a store, by its URL; no second one is the store of
// OPSTORE_URL. 0 when they are the same, 1 when not, 2 when that cannot be told.
struct diff_options {
    std::string from;
    std::string to;
    std::vector<std::string> ignored;  // members
    bool counters = false;
    double interval_seconds = 0;  // between the two; 0: as the records tell
};
[[nodiscard]] int run_diff(const diff_options &options);

[[nodiscard]] int run_dump(const item_selection &selection);
// Writes what is sound of a damaged store, and a line on standard error for each loss.
[[nodiscard]] int run_dump_damaged();
// Reads the whole store; a line on standard error for each thing that is wrong.
[[nodiscard]] int run_verify();
// Lists items: root, node, record type, path.
[[nodiscard]] int run_ls(const item_selection &selection);
[[nodiscard]] int run_get(const item_place &item);
[[nodiscard]] int run_stat();

[[nodiscard]] int run_types();
[[nodiscard]] int run_schema(const std::string &type);
// EXIT_USAGE for options beyond their limits.
[[nodiscard]] int run_gen(const gen_options &options);

}  // namespace perf_store
