// What perf-store does, one function a command. Each returns the exit status.
#pragma once

#include <string>
#include <vector>

#include "dataset_dumper.h"

namespace perf_store {

inline constexpr int EXIT_DONE = 0;
inline constexpr int EXIT_REFUSED = 1;  // the input or the store refused it
inline constexpr int EXIT_USAGE = 2;

// Reports a problem that is not in the input; returns EXIT_REFUSED.
int report(const std::string &problem);

int run_load(const std::vector<std::string> &files, bool replace);
int run_dump(const dump_filter &filter);
int run_stat();
int run_types();
int run_schema(const std::string &type);

}  // namespace perf_store
