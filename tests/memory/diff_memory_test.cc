// SPDX-License-Identifier: Apache-2.0
// The memory that comparing two sets takes does not depend on how large they are, and nothing of it is left on disk.
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/memory/own_memory.h"

namespace {

constexpr char FEW[] = " --interfaces 3000 --policies 1000 --endpoints 1000 --tunnels 1000";
constexpr char MANY[] = " --interfaces 9000 --policies 3000 --endpoints 3000 --tunnels 3000";
constexpr long OWN_MEMORY_KB = 32 * 1024;  // 16 MB for the set that is read, and the program's own
constexpr long DIFFERENCE_KB = 8 * 1024;

class DiffMemory : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directory(temporary());
        setenv("TMPDIR", temporary().c_str(), 1);
    }
    void TearDown() override { unsetenv("TMPDIR"); }

    [[nodiscard]] std::string temporary() const { return folder_.path() + "/temporary"; }

    // A generated set, and its lines in another order.
    [[nodiscard]] std::vector<std::string> make_sets(const std::string &name, const std::string &options) const {
        const std::string set = folder_.path() + "/" + name;
        EXPECT_EQ(
            run_command("perf-store gen" + options + " >" + set + "; tac " + set + " >" + set + ".other", set).status,
            0);
        return {PERF_STORE, "diff", "--ignore", "order", set, set + ".other"};
    }

    temporary_folder folder_;
};

TEST_F(DiffMemory, IsTheSameForThreeTimesTheItems) {
#ifdef PM_SANITIZE
    GTEST_SKIP() << "the sanitizer's own memory hides the program's";
#endif
    const long few = largest_memory_kb(make_sets("few", FEW), folder_.path() + "/store");
    const long many = largest_memory_kb(make_sets("many", MANY), folder_.path() + "/store");
    EXPECT_GT(few, 0);
    EXPECT_LT(many, OWN_MEMORY_KB);
    EXPECT_LT(many, few + DIFFERENCE_KB);
    EXPECT_TRUE(std::filesystem::is_empty(temporary()));
}

TEST_F(DiffMemory, LeavesNoFileWhenItIsKilled) {
    const std::vector<std::string> words = make_sets("killed", FEW);
    for (const int signal : {SIGTERM, SIGINT, SIGKILL}) {
        // The second set never ends: the first one is in its temporary file by then.
        const std::string fifo = folder_.path() + "/fifo" + std::to_string(signal);
        ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
        running_process program([&] {
            return become({words[0], words[1], words[4], fifo}, folder_.path() + "/store");
        });
        int writer = -1;
        for (int tries = 0; writer < 0 && tries < 1000; ++tries) {  // until the program reads it
            writer = open(fifo.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            usleep(10'000);
        }
        ASSERT_GE(writer, 0) << "the program does not read its input";
        std::size_t deleted = 0;
        const std::string files = "/proc/" + std::to_string(program.id()) + "/fd";
        for (const auto &each : std::filesystem::directory_iterator(files)) {
            deleted += std::filesystem::read_symlink(each).string().starts_with(temporary()) ? 1 : 0;
        }
        EXPECT_EQ(deleted, 1U) << "there is no temporary file to be left";
        program.kill(signal);
        EXPECT_FALSE(program.wait(10));
        close(writer);
        EXPECT_TRUE(std::filesystem::is_empty(temporary())) << "after signal " << signal;
    }
}

}  // namespace
