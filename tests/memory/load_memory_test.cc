// SPDX-License-Identifier: Apache-2.0
// The memory that loading and dumping take does not depend on how much there is.
#include <gtest/gtest.h>
#include <string>

#include "tests/memory/own_memory.h"

namespace {

constexpr char FEW[] = " --interfaces 300 --policies 100 --endpoints 100 --tunnels 100";
constexpr char MANY[] = " --interfaces 6000 --policies 2000 --endpoints 2000 --tunnels 2000";
constexpr long OWN_MEMORY_KB = 8192;
constexpr long DIFFERENCE_KB = 1024;

class LoadMemory : public testing::Test {
protected:
    struct peaks {
        long load = 0;
        long load_again = 0;
        long dump = 0;
    };

    peaks measure(const std::string &name, const std::string &options) const {
        const std::string store = folder_.path() + "/" + name;
        const std::string set = store + ".ndjson";
        EXPECT_EQ(run_command("perf-store gen" + options + " >" + set, store).status, 0);
        peaks result;
        result.load = largest_memory_kb({PERF_STORE, "load", set}, store);
        result.load_again = largest_memory_kb({PERF_STORE, "load", set}, store);
        result.dump = largest_memory_kb({PERF_STORE, "dump"}, store);
        return result;
    }

    temporary_folder folder_;
};

TEST_F(LoadMemory, IsSmallAndTheSameForTwentyTimesTheItems) {
#ifdef PM_SANITIZE
    GTEST_SKIP() << "the sanitizer's own memory hides the program's";
#endif
    const peaks few = measure("few", FEW);
    const peaks many = measure("many", MANY);
    for (const auto &[what, less, more] : {std::tuple{"load", few.load, many.load},
                                           {"load again", few.load_again, many.load_again},
                                           {"dump", few.dump, many.dump}}) {
        EXPECT_GT(less, 0) << what;
        EXPECT_LT(more, OWN_MEMORY_KB) << what;
        EXPECT_LT(more, less + DIFFERENCE_KB) << what;
    }
}

}  // namespace
