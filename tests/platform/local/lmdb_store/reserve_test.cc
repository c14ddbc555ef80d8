// SPDX-License-Identifier: Apache-2.0
// Blocks of the data file are there before pages are written to them: what the system says when it has none is an
// error with its name, and the store stays as it was.
#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/local/lmdb_store/lmdb_reader.h"
#include "platform/local/lmdb_store/lmdb_writer.h"
#include "platform/local/lmdb_store/reserve.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/platform/local/lmdb_store/own_table.h"
#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace {

// What the system answers to requests for blocks; those of this many bytes and fewer are granted.
struct {
    int error = 0;
    off_t granted = 0;
    int calls = 0;
    bool once = false;
    off_t from = -1;  // where the last request began
} disk;

}  // namespace

// In the place of the C library's.
int fallocate(int file, int mode, off_t offset, off_t size) {
    ++disk.calls;
    disk.from = offset;
    if (disk.error != 0 && size > disk.granted) {
        errno = disk.once ? std::exchange(disk.error, 0) : disk.error;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fallocate, file, mode, offset, size));
}

namespace {

using namespace lmdb_store;

constexpr store::branch MAIN_1{store::root::main, 1};

class Reserve : public testing::Test {
protected:
    void SetUp() override { EXPECT_EQ(write(10), ""); }
    void TearDown() override { disk = {}; }

    // Puts this many items of a kilobyte into the store; the error's text. The file's blocks are as `disk` says.
    [[nodiscard]] std::string write(int items) const {
        int channel[2];
        EXPECT_EQ(::pipe(channel), 0);
        EXPECT_TRUE(in_child([&] {
            const std::string text = write_here(items);
            return ::write(channel[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
        }));
        ::close(channel[1]);
        char said[1000];
        const ssize_t size = ::read(channel[0], said, sizeof said);
        ::close(channel[0]);
        return {said, static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
    }
    [[nodiscard]] std::string write_here(int items) const {
        std::unique_ptr<store::writer> writer;
        if (pm_error error = open_writer(folder_.path(), store::missing_store::make, &writer)) {
            return error.text();
        }
        const std::string text(1000, 't');
        pm_intf_parcel record{};
        record.InterfaceName = const_cast<char *>(text.c_str());
        for (int i = 0; i < items; ++i) {
            const std::string path = "intf/detail/" + std::to_string(i);
            if (pm_error error = writer->put_item(MAIN_1, path, &record, pm_intf_parcel_descriptor())) {
                return error.text();
            }
        }
        return writer->commit().text();
    }
    // The items that a reader finds; -1 when it cannot read.
    [[nodiscard]] int readable() const {
        std::unique_ptr<store::reader> reader;
        int found = 0;
        std::string last;
        for (bool more = !open_reader(folder_.path(), &reader); more || reader == nullptr;) {
            store::batch batch;
            if (reader == nullptr || reader->list(MAIN_1, {"", last, 200, {}}, nullptr, &batch)) {
                return -1;
            }
            found += static_cast<int>(batch.items().size());
            more = batch.more();
            last = batch.items().empty() ? "" : std::string(batch.items().back().path);
        }
        return found;
    }
    void expect_refused(int error, const char *name) {
        struct stat before {};
        struct stat after {};
        const std::string data = folder_.path() + "/data.mdb";
        ASSERT_EQ(::stat(data.c_str(), &before), 0);
        disk = {error, 0, 0, false};
        EXPECT_EQ(write(5000), folder_.path() + ": " + name);
        disk = {};
        ASSERT_EQ(::stat(data.c_str(), &after), 0);
        EXPECT_EQ(after.st_size, before.st_size);
        EXPECT_EQ(readable(), 10);
    }

    const temporary_folder folder_;
};

TEST_F(Reserve, AFullDiskIsNamedAndNothingIsLost) { expect_refused(ENOSPC, "No space left on device"); }

TEST_F(Reserve, AnExhaustedQuotaIsNamedAndNothingIsLost) { expect_refused(EDQUOT, "Disk quota exceeded"); }

TEST_F(Reserve, AfterAFailureTheNextWriterHasItsTurn) {
    disk.error = ENOSPC;
    EXPECT_NE(write(5000), "");
    disk = {};
    EXPECT_EQ(write(5000), "");
    EXPECT_EQ(readable(), 5000);
}

// Some pages more than are wanted are asked for, so that it is seldom done; where only those are left, they do.
TEST_F(Reserve, TheLastBlocksAreUsed) {
    constexpr off_t BELOW_ONE_STEP = 63 * 4096;
    disk = {ENOSPC, BELOW_ONE_STEP, 0, false};
    EXPECT_EQ(write(20), "");
    EXPECT_EQ(readable(), 20);
}

TEST_F(Reserve, AnInterruptedRequestIsMadeAgain) {
    disk = {EINTR, 0, 0, true};
    EXPECT_EQ(write(5000), "");
    EXPECT_EQ(readable(), 5000);
}

TEST_F(Reserve, AFileSystemThatCannotReserveIsWrittenWithout) {
    for (const int error : {EOPNOTSUPP, ENOSYS}) {
        disk = {};
        disk.error = error;
        EXPECT_EQ(write(2000), "") << error;
    }
    EXPECT_EQ(readable(), 2000);
}

// Asks for blocks of a table of its own.
class PageReserve : public own_table {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(own_table::SetUp());
        file_ = ::open((folder_.path() + "/file").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        ASSERT_GE(file_, 0);
        disk = {};
    }
    void TearDown() override {
        ::close(file_);
        own_table::TearDown();
        disk = {};
    }
    // Bytes that have been reserved from the beginning of the file.
    [[nodiscard]] off_t reserved() const {
        struct stat status {};
        EXPECT_EQ(::fstat(file_, &status), 0);
        return status.st_size;
    }

    int file_ = -1;
    page_reserve reserve_;
};

TEST_F(PageReserve, NothingIsReservedBeforeItBegins) {
    EXPECT_EQ(reserve_.grow(1'000'000), 0);
    EXPECT_EQ(disk.calls, 0);
}

TEST_F(PageReserve, ThereIsRoomForTheValueAndItsPages) {
    reserve_.begin(file_, env_, txn_, table_);
    ASSERT_EQ(reserve_.grow(10), 0);
    EXPECT_GE(reserved(), 8 * 4096);  // a page of each level of a tree
    ASSERT_EQ(reserve_.grow(3'000'000), 0);
    EXPECT_GE(reserved(), 3'000'000);
    EXPECT_LT(reserved(), 6'000'000);
}

TEST_F(PageReserve, FillsTheHolesOfAFileThatHasSome) {
    MDB_envinfo info{};
    ASSERT_EQ(mdb_env_info(env_, &info), 0);
    const std::string pages((info.me_last_pgno + 1) * 4096, 'p');
    ASSERT_EQ(::ftruncate(file_, static_cast<off_t>(pages.size())), 0);
    reserve_.begin(file_, env_, txn_, table_);
    ASSERT_EQ(reserve_.grow(10), 0);
    EXPECT_EQ(disk.from, 0);
    ASSERT_EQ(::pwrite(file_, pages.data(), pages.size(), 0), static_cast<ssize_t>(pages.size()));
    reserve_.begin(file_, env_, txn_, table_);
    ASSERT_EQ(reserve_.grow(10), 0);
    EXPECT_EQ(disk.from, static_cast<off_t>(pages.size()));
}

TEST_F(PageReserve, IsSeldomAskedFor) {
    reserve_.begin(file_, env_, txn_, table_);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(reserve_.grow(100), 0);
    }
    EXPECT_EQ(disk.calls, 1);  // a table without pages takes no more, however often it is changed
}

TEST_F(PageReserve, FollowsTheTable) {
    reserve_.begin(file_, env_, txn_, table_);
    const std::string value(2000, 'v');
    for (int i = 0; i < 2000; ++i) {
        std::string key = std::to_string(i);
        MDB_val to{key.size(), key.data()};
        MDB_val from{value.size(), const_cast<char *>(value.data())};
        ASSERT_EQ(reserve_.grow(value.size()), 0);
        ASSERT_EQ(mdb_put(txn_, table_, &to, &from, 0), 0);
    }
    MDB_stat stat{};
    ASSERT_EQ(mdb_stat(txn_, table_, &stat), 0);
    const auto pages = static_cast<off_t>(stat.ms_leaf_pages + stat.ms_branch_pages + stat.ms_overflow_pages);
    EXPECT_GE(reserved(), pages * 4096);
    EXPECT_LT(reserved(), 2 * pages * 4096);
}

TEST_F(PageReserve, TheErrorIsTheSystems) {
    reserve_.begin(file_, env_, txn_, table_);
    for (const int error : {ENOSPC, EDQUOT, EIO, EFBIG}) {
        disk.error = error;
        EXPECT_EQ(reserve_.grow(10), error);
    }
    disk.error = 0;
    EXPECT_EQ(reserve_.grow(10), 0);
}

}  // namespace
