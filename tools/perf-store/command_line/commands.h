// What perf-store does, one function a command. Each returns the exit status.
#pragma once

#include <string>
#include <vector>

#include "perf-store/datasets/dataset_dumper.h"

namespace perf_store {

inline constexpr int EXIT_DONE = 0;
inline constexpr int EXIT_REFUSED = 1;  // the input or the store refused it
inline constexpr int EXIT_USAGE = 2;

// Reports a problem that is not in the input; returns EXIT_REFUSED.
int report(const std::string &problem);

// Tells what was done: "loaded 2 items". What is done stays so when standard output cannot be written;
// then standard error tells it. Returns EXIT_DONE.
int report_done(const std::string &what);

int run_load(const std::vector<std::string> &files, bool replace);
int run_dump(const dump_filter &filter);
// Lists the items that the filter selects: root, node, record type, path.
int run_ls(const dump_filter &filter);
int run_get(const store::root_name &root, std::uint32_t node, const std::string &path);
// Removes items, all or none: each path must be there when the command begins. `recursive` removes what is below them
// too.
int run_rm(const store::root_name &root, std::uint32_t node, const std::vector<std::string> &paths, bool recursive);
int run_stat();
int run_types();
int run_schema(const std::string &type);

}  // namespace perf_store
