// SPDX-License-Identifier: Apache-2.0
#include "perf-measure/metrics/replaced_file.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/command.h"

namespace {

using namespace perf_measure;

class ReplacedFile : public testing::Test {
protected:
    pm_error replace(const std::string &text) const {
        return replace_file(file_, [&](int descriptor) {
            return write(descriptor, text.data(), text.size()) < 0 ? pm_error("not written") : pm_error();
        });
    }
    [[nodiscard]] std::size_t files() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_.path()), {}));
    }

    temporary_folder folder_;
    std::string file_ = folder_.path() + "/perf.prom";
};

TEST_F(ReplacedFile, IsThereWholeAndForEveryone) {
    const mode_t before = umask(0077);
    EXPECT_FALSE(replace("one\n"));
    EXPECT_FALSE(replace("two\n"));
    umask(before);
    EXPECT_EQ(read_file(file_), "two\n");
    struct stat state {};
    ASSERT_EQ(stat(file_.c_str(), &state), 0);
    EXPECT_EQ(state.st_mode & 07777U, 0644U);
    EXPECT_EQ(files(), 1U);
}

TEST_F(ReplacedFile, StaysAsItIsWhenWritingFails) {
    EXPECT_FALSE(replace("one\n"));
    EXPECT_EQ(replace_file(file_,
                           [](int descriptor) {
                               EXPECT_EQ(write(descriptor, "half", 4), 4);
                               return pm_error("half only");
                           })
                  .text(),
              "half only");
    EXPECT_EQ(read_file(file_), "one\n");
    EXPECT_EQ(files(), 1U);
}

// A reader that opened the old file still has it, whole.
TEST_F(ReplacedFile, IsAnotherFileThanBefore) {
    EXPECT_FALSE(replace("one\n"));
    std::ifstream old(file_);
    EXPECT_FALSE(replace("two\n"));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(old), {}), "one\n");
}

TEST_F(ReplacedFile, LeavesNothingWhenTheProgramIsKilledWhileItWrites) {
    EXPECT_FALSE(replace("one\n"));
    const pid_t child = fork();
    if (child == 0) {
        static_cast<void>(replace_file(file_, [](int descriptor) {
            static_cast<void>(!write(descriptor, "half", 4));
            kill(getpid(), SIGKILL);
            return pm_error();
        }));
        std::_Exit(0);
    }
    waitpid(child, nullptr, 0);
    EXPECT_EQ(read_file(file_), "one\n");
    EXPECT_EQ(files(), 1U);
}

TEST_F(ReplacedFile, TakesTheNameThatAKilledRunLeft) {
    write_file(file_ + ".new", "left behind");
    EXPECT_FALSE(replace("one\n"));
    EXPECT_EQ(read_file(file_), "one\n");
    EXPECT_EQ(files(), 1U);
}

TEST_F(ReplacedFile, SaysWhyItCannotBeWritten) {
    EXPECT_EQ(replace_file("/no/such/folder/file", [](int) { return pm_error(); }).text(),
              "cannot write /no/such/folder/file: No such file or directory");
    std::filesystem::create_directory(file_);
    EXPECT_EQ(replace("one\n").text(), "cannot write " + file_ + ": Is a directory");
    EXPECT_EQ(files(), 1U);
}

}  // namespace
