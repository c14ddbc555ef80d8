// SPDX-License-Identifier: Apache-2.0
// Errors on standard error.
#include <cstdio>

#include "perf-store/command_line/commands.h"

namespace perf_store {

int report(const pm_error &error) {
    if (!error) {
        return EXIT_DONE;
    }
    static_cast<void>(std::fprintf(stderr, "perf-store: %s\n", error.text().c_str()));
    return EXIT_REFUSED;
}

}  // namespace perf_store
