// SPDX-License-Identifier: Apache-2.0
// A lock file that a killed process has left half made: it names no transaction, and the processes that waited for it
// keep it as it is.
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/local/lmdb_store/lmdb_reader.h"
#include "platform/local/lmdb_store/lmdb_writer.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/support/child_process.h"
#include "tests/support/command.h"

namespace {

using namespace lmdb_store;

constexpr store::branch MAIN_1{store::root::main, 1};
constexpr off_t TRANSACTION_AT = 48;  // of the number of the last transaction, in the lock file

class HalfMadeLock : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(writing_gives(ERRCODE_SUCCESS, "first"));
        ASSERT_TRUE(writing_gives(ERRCODE_SUCCESS, "second"));
        ASSERT_TRUE(writing_gives(ERRCODE_SUCCESS, "third"));
    }

    // Whether another process that adds an item is answered with a code.
    [[nodiscard]] bool writing_gives(errcode code, const std::string &path) const {
        return in_child([&] {
            std::unique_ptr<store::writer> writer;
            pm_values_parcel record{};
            record.Average = 7;
            pm_error error = open_writer(folder_.path(), store::missing_store::make, &writer);
            error = error ? error : writer->put_item(MAIN_1, path, &record, pm_values_parcel_descriptor());
            error = error ? error : writer->commit();
            return error.code() == code;
        });
    }
    [[nodiscard]] bool has(const std::string &path) const {
        return in_child([&] {
            std::unique_ptr<store::reader> reader;
            std::string parcel;
            return !open_reader(folder_.path(), &reader) && !reader->get(MAIN_1, path, {}, nullptr, &parcel) &&
                   !parcel.empty();
        });
    }
    // A process that has the store open for some time.
    [[nodiscard]] pid_t holder(useconds_t time) const {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        if (child == 0) {
            std::unique_ptr<store::reader> reader;
            std::string parcel;
            const bool good =
                !open_reader(folder_.path(), &reader) && !reader->get(MAIN_1, "first", {}, nullptr, &parcel);
            static_cast<void>(!::write(ready[1], good ? "+" : "-", 1));
            usleep(time);
            std::_Exit(0);
        }
        close(ready[1]);
        char answer = 0;
        EXPECT_EQ(::read(ready[0], &answer, 1), 1);
        EXPECT_EQ(answer, '+');
        close(ready[0]);
        return child;
    }
    // Leaves the lock file as a process does that was killed before it wrote the number.
    void forget_the_transaction() const {
        const int file = open((folder_.path() + "/lock.mdb").c_str(), O_RDWR | O_CLOEXEC);
        std::uint64_t number = 0;
        ASSERT_EQ(pread(file, &number, sizeof number, TRANSACTION_AT), static_cast<ssize_t>(sizeof number));
        ASSERT_EQ(number, 3U) << "the number of the last transaction is elsewhere";
        number = 0;
        ASSERT_EQ(pwrite(file, &number, sizeof number, TRANSACTION_AT), static_cast<ssize_t>(sizeof number));
        close(file);
    }

    const temporary_folder folder_;
};

TEST_F(HalfMadeLock, IsMadeAgainByAWriterOnceNobodyUsesIt) {
    const pid_t child = holder(300'000);
    forget_the_transaction();
    EXPECT_TRUE(writing_gives(ERRCODE_SUCCESS, "fourth"));
    EXPECT_EQ(waitpid(child, nullptr, WNOHANG), child) << "the writer has not waited";
    EXPECT_TRUE(has("first") && has("second") && has("third") && has("fourth"));
}

TEST_F(HalfMadeLock, DoesNotHideWhatIsThereFromAReader) {
    const pid_t child = holder(10'000'000);
    forget_the_transaction();
    EXPECT_TRUE(has("first"));
    EXPECT_TRUE(has("second"));
    EXPECT_TRUE(has("third"));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

TEST_F(HalfMadeLock, ThatIsInUseForLongIsNoDamage) {
    const pid_t child = holder(30'000'000);
    forget_the_transaction();
    const auto size = std::filesystem::file_size(folder_.path() + "/data.mdb");
    EXPECT_TRUE(writing_gives(OPSTORE_BUSY, "fourth"));
    EXPECT_EQ(std::filesystem::file_size(folder_.path() + "/data.mdb"), size);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(has("third"));
    EXPECT_TRUE(writing_gives(ERRCODE_SUCCESS, "fourth"));
}

}  // namespace
