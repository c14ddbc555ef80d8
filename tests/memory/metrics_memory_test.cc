// SPDX-License-Identifier: Apache-2.0
// The memory that metrics take does not depend on how much there is.
#include <gtest/gtest.h>
#include <string>

#include "tests/memory/own_memory.h"

namespace {

constexpr long OWN_MEMORY_KB = 8192;
constexpr long DIFFERENCE_KB = 1024;

TEST(MetricsMemory, IsSmallAndTheSameForThirtyTimesTheSessions) {
#ifdef PM_SANITIZE
    GTEST_SKIP() << "the sanitizer's own memory hides the program's";
#endif
    const temporary_folder folder;
    const auto peak = [&](const std::string &name, const std::string &options) {
        const std::string store = folder.path() + "/" + name;
        EXPECT_EQ(run_command("perf-store gen" + options + " | perf-store load -", store).status, 0);
        return largest_memory_kb({PERF_MEASURE, "metrics"}, store);
    };
    // The few are more than what is kept in memory before it goes to a file.
    const long few = peak("few", " --interfaces 300 --policies 100 --endpoints 300 --tunnels 300");
    const long many = peak("many", " --interfaces 9000 --policies 3000 --endpoints 9000 --tunnels 9000");
    EXPECT_GT(few, 0);
    EXPECT_LT(many, OWN_MEMORY_KB);
    EXPECT_LT(many, few + DIFFERENCE_KB);
}

}  // namespace
