// SPDX-License-Identifier: Apache-2.0
// Programs whose address space is limited (ulimit -v), as that of a service often is. The store's map is
// larger than that, what it holds is not.
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include "tests/support/child_process.h"
#include "tests/support/command.h"

namespace {

constexpr char FOUR_GIGABYTES[] = "ulimit -v 4000000; ";
constexpr char LESS_THAN_TWO_GIGABYTES[] = "ulimit -v 1800000; ";
constexpr char LESS_THAN_THE_FILE[] = "ulimit -v 60000; ";

// From now on this process and those that it starts get EINVAL for maps of 4 GiB and more, as under an emulator with
// fewer addresses. Whether the system can do that.
bool refuse_large_maps() {
    constexpr std::size_t UPPER_HALF = std::endian::native == std::endian::little ? sizeof(std::uint32_t) : 0;
    sock_filter instructions[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_mmap, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[1]) + UPPER_HALF),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 0),  // of the length
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{sizeof(instructions) / sizeof(instructions[0]), instructions};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

class AddressSpace : public testing::Test {
protected:
    void SetUp() override {
#ifdef PM_SANITIZE
        GTEST_SKIP() << "the sanitizer needs all of the address space";
#endif
        ASSERT_EQ(run("perf-store load \"$EXAMPLE\"").status, 0);
    }
    [[nodiscard]] command_result run(const std::string &command) const { return run_command(command, folder_.path()); }

    temporary_folder folder_;
};

TEST_F(AddressSpace, SmallerThanTheMapIsEnoughToRead) {
    for (const char *command : {"perf-show -c 9", "perf-store dump", "perf-store stat", "perf-store ls"}) {
        const command_result free = run(command);
        const command_result limited = run(std::string(FOUR_GIGABYTES) + command);
        EXPECT_EQ(limited.status, 0) << command;
        EXPECT_EQ(limited.signal, 0) << command;
        EXPECT_EQ(limited.err, "") << command;
        EXPECT_GT(limited.out.size(), 100U) << command;
        EXPECT_EQ(limited.out, free.out) << command;
        EXPECT_EQ(run(std::string(LESS_THAN_TWO_GIGABYTES) + command).out, free.out) << command;
    }
}

TEST_F(AddressSpace, SmallerThanTheMapIsEnoughToWrite) {
    const std::string before = run("perf-store dump").out;
    for (const char *limit : {FOUR_GIGABYTES, LESS_THAN_TWO_GIGABYTES}) {
        const command_result loaded = run(std::string(limit) + "perf-store load --replace \"$EXAMPLE\"");
        EXPECT_EQ(loaded.err, "") << limit;
        EXPECT_EQ(loaded.status, 0) << limit;
        EXPECT_EQ(run("perf-store dump").out, before) << limit;
    }
}

TEST_F(AddressSpace, AMachineWithFewerAddressesIsEnough) {
    if (!in_child(refuse_large_maps)) {
        GTEST_SKIP() << "system calls cannot be filtered here";
    }
    const std::string before = run("perf-store dump").out;
    EXPECT_TRUE(in_child([&] {
        const command_result loaded =
            refuse_large_maps() ? run("perf-store load --replace \"$EXAMPLE\"") : command_result{};
        const command_result dumped = run("perf-store dump");
        EXPECT_EQ(loaded.err + dumped.err, "");
        EXPECT_EQ(dumped.out, before);
        return loaded.status == 0 && dumped.status == 0 && dumped.out == before;
    }));
}

TEST_F(AddressSpace, TooSmallForTheFileIsAClearError) {
    std::string set;
    for (int i = 0; i < 800; ++i) {
        set += R"({"item":{"root":"chkpt","node":0,"path":"scb/)" + std::to_string(i) +
               R"(","type":"pm_chkpt_scb_parcel","record":{"buf":")" + std::string(200'000, 'a') + "\"}}}\n";
    }
    write_file(folder_.path() + "/set", set);
    ASSERT_EQ(run("perf-store load " + folder_.path() + "/set").err, "");
    for (const char *command : {" dump", " stat", " ls"}) {
        const command_result limited = run(LESS_THAN_THE_FILE + std::string("perf-store") + command);
        EXPECT_EQ(limited.signal, 0) << command;
        EXPECT_EQ(limited.status, 1) << command;
        EXPECT_EQ(limited.err, "perf-store: lmdb:" + folder_.path() + ": Not enough memory\n") << command;
    }
    const command_result show = run(LESS_THAN_THE_FILE + std::string("perf-show -c 9 -N 0x100"));
    EXPECT_EQ(show.signal, 0);
    EXPECT_NE(show.err.find("Not enough memory"), std::string::npos) << show.err;
    const command_result load = run(LESS_THAN_THE_FILE + std::string("perf-store load \"$EXAMPLE\""));
    EXPECT_EQ(load.signal, 0);
    EXPECT_EQ(load.status, 1);
    EXPECT_NE(load.err, "");
}

}  // namespace
