// SPDX-License-Identifier: Apache-2.0
// Loads into a store that does not exist yet, beside one another, and loads onto a full disk.
#include <gtest/gtest.h>

#include "tests/stress/stress_support.h"
#include "tests/support/small_disk.h"

namespace {

constexpr double LONGEST_RUN_SECONDS = 10;
constexpr unsigned ROUNDS = 30 / STRESS_SCALE;

class FirstLoad : public testing::Test {
protected:
    [[nodiscard]] std::string store() const { return folder_.path() + "/a/store"; }
    [[nodiscard]] std::string path(const std::string &name) const { return folder_.path() + "/" + name; }
    [[nodiscard]] std::string dump() const { return run_command("perf-store dump", store()).out; }

    // A load that has begun and waits for the rest of its set.
    [[nodiscard]] running_process waiting_load(int *input) const {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            return {};
        }
        running_process program([&] {
            dup2(ends[0], STDIN_FILENO);
            return become({PERF_STORE, "load", "-"}, store());
        });
        close(ends[0]);
        *input = ends[1];
        const auto start = stress_clock::now();
        while (!std::filesystem::exists(store()) && seconds_since(start) < LONGEST_RUN_SECONDS) {
            usleep(1000);
        }
        return program;
    }

    temporary_folder folder_;
};

TEST_F(FirstLoad, IsSeenByNobodyUntilItIsDone) {
    int input = -1;
    running_process first = waiting_load(&input);
    const command_result dumped = run_command("perf-store dump", store());
    EXPECT_EQ(dumped.status, 1);
    EXPECT_EQ(dumped.err, "perf-store: lmdb:" + store() + ": Store client not available\n");
    const std::string line = interface_line("eth0", 1, 10);
    EXPECT_EQ(write(input, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    close(input);
    EXPECT_TRUE(first.wait(LONGEST_RUN_SECONDS));
    EXPECT_NE(dump().find("eth0"), std::string::npos);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(store()), {}), 2);
}

TEST_F(FirstLoad, ThatIsRefusedDoesNotTakeAnothersStoreWithIt) {
    write_file(path("set"), interface_line("eth1", 2, 10));
    int input = -1;
    running_process refused = waiting_load(&input);
    running_process good([&] { return become({PERF_STORE, "load", path("set")}, store()); });
    usleep(50'000);
    EXPECT_EQ(write(input, "{}", 2), 2);
    close(input);
    EXPECT_FALSE(refused.wait(LONGEST_RUN_SECONDS));
    EXPECT_TRUE(good.wait(LONGEST_RUN_SECONDS));
    EXPECT_NE(dump().find("eth1"), std::string::npos);
}

TEST_F(FirstLoad, TwoAtOnceLeaveOneAfterTheOther) {
    for (unsigned number = 0; number < 2; ++number) {
        std::string set;
        for (unsigned i = 0; i < 200; ++i) {
            set += interface_line(padded("only" + std::to_string(number), i), number, 50) +
                   interface_line(padded("both", i), number, 50);
        }
        write_file(path("set" + std::to_string(number)), set);
    }
    write_file(path("bad"), "{}");
    for (unsigned round = 0; round < ROUNDS; ++round) {
        running_process bad([&] { return become({PERF_STORE, "load", path("bad")}, store()); });
        running_process zero([&] { return become({PERF_STORE, "load", path("set0")}, store()); });
        running_process one([&] { return become({PERF_STORE, "load", path("set1")}, store()); });
        EXPECT_FALSE(bad.wait(LONGEST_RUN_SECONDS));
        ASSERT_TRUE(zero.wait(LONGEST_RUN_SECONDS)) << "in round " << round;
        ASSERT_TRUE(one.wait(LONGEST_RUN_SECONDS)) << "in round " << round;
        const std::string all = dump();
        for (const char *name : {"only000199", "only100199", "both00199"}) {
            ASSERT_NE(all.find(name), std::string::npos) << name << " in round " << round;
        }
        // What both hold is of one of them.
        const std::string mark = R"("InterfaceName":"both)";
        std::set<std::string> generations;
        for (std::size_t at = all.find(mark); at != std::string::npos; at = all.find(mark, at + 1)) {
            const std::size_t text = all.find(R"("ProfileName":")", at) + 15;
            generations.insert(all.substr(text, 1));
        }
        EXPECT_EQ(generations.size(), 1U) << "in round " << round;
        std::filesystem::remove_all(path("a"));
    }
}

// A file system of a few megabytes, of the test's own.
TEST_F(FirstLoad, OfMoreThanTheDiskHoldsIsRefusedAndLeavesTheStoreAsItWas) {
    std::filesystem::create_directory(path("disk"));
    const std::string disk_store = path("disk") + "/store";
    std::string set;
    for (unsigned i = 0; i < 3000; ++i) {
        set += interface_line(padded("eth", i), 1, 3000);
    }
    write_file(path("large"), set);
    write_file(path("small"), interface_line("eth1", 2, 10));
    if (const int reason = reason_against_a_small_disk(path("disk")); reason != 0) {
        GTEST_SKIP() << "no file system can be mounted: " << std::strerror(reason);
    }
    EXPECT_TRUE(in_child([&] {
        bool good = mount_small_disk(path("disk"), "size=3m");
        const std::string error = "perf-store: " + disk_store + ": No space left on device\n";
        const command_result first = run_command("perf-store load " + path("large"), disk_store);
        good = good && first.status == 1 && first.err == error && !std::filesystem::exists(disk_store);
        good = good && load(disk_store, path("small"));
        const command_result before = run_command("perf-store dump", disk_store);
        const command_result second = run_command("perf-store load --replace " + path("large"), disk_store);
        const command_result after = run_command("perf-store dump", disk_store);
        good = good && second.status == 1 && second.err == error && after.out == before.out && after.status == 0;
        good = good && load(disk_store, path("small"));
        if (!good) {
            std::fprintf(stderr, "%d %s%d %s%d %s", first.status, first.err.c_str(), second.status, second.err.c_str(),
                         after.status, after.err.c_str());
        }
        return good;
    }));
}

}  // namespace
