// SPDX-License-Identifier: Apache-2.0
// The head of the data file and its writer's note of it.
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <unistd.h>

#include "platform/local/lmdb_store/data_file.h"
#include "platform/local/lmdb_store/lmdb_writer.h"
#include "tests/support/child_process.h"
#include "tests/support/command.h"

namespace {

using namespace lmdb_store;

// Places in the file, as docs/store-format.md has them.
constexpr std::size_t PAGE = 4096;
constexpr std::size_t LAST_PAGE_AT = 136;
constexpr std::size_t TRANSACTION_AT = 144;
constexpr std::size_t NOTE_AT = 256;
constexpr std::size_t NOTE_SIZE = 24;

class DataFile : public testing::Test {
protected:
    // Three transactions, so that both heads and both notes have been written.
    void SetUp() override {
        for (int i = 0; i < 3; ++i) {
            ASSERT_TRUE(in_child([&] {
                std::unique_ptr<store::writer> writer;
                return !open_writer(folder_.path(), store::missing_store::make, &writer) &&
                       !writer->put_publisher({store::root::main, 1}, store::publisher_state::running) &&
                       !writer->commit();
            }));
        }
        sound_ = read_file(file());
        current_ = number(0) > number(1) ? 0 : 1;
    }

    [[nodiscard]] std::string file() const { return folder_.path() + "/" + DATA_FILE; }
    [[nodiscard]] std::uint64_t number(std::size_t head, std::size_t at = TRANSACTION_AT) const {
        std::uint64_t value = 0;
        std::memcpy(&value, sound_.data() + head * PAGE + at, sizeof value);
        return value;
    }
    // The code of a file in which one byte of a head's page differs.
    [[nodiscard]] errcode code_with(std::size_t head, std::size_t at, char difference = 1) const {
        std::string bytes = sound_;
        bytes[head * PAGE + at] = static_cast<char>(bytes[head * PAGE + at] ^ difference);
        return code_of_file(bytes);
    }
    [[nodiscard]] errcode code_of_file(const std::string &bytes) const {
        write_file(file(), bytes);
        extent found{1, 1};
        const errcode code = read_extent(folder_.path(), &found).code();
        if (code != ERRCODE_SUCCESS) {
            EXPECT_EQ(found.accounted, 0U);
            EXPECT_EQ(found.length, 0U);
        }
        return code;
    }

    const temporary_folder folder_;
    std::string sound_;
    std::size_t current_ = 0;
};

TEST_F(DataFile, ReachesAsFarAsItsHeadSays) {
    extent found;
    EXPECT_EQ(read_extent(folder_.path(), &found).code(), ERRCODE_SUCCESS);
    EXPECT_EQ(found.accounted, (number(current_, LAST_PAGE_AT) + 1) * PAGE);
    EXPECT_EQ(found.length, sound_.size());
    EXPECT_FALSE(found.ends_early());
    std::filesystem::resize_file(file(), sound_.size() - 1);
    EXPECT_EQ(read_extent(folder_.path(), &found).code(), ERRCODE_SUCCESS);
    EXPECT_TRUE(found.ends_early());
}

TEST_F(DataFile, ThatIsNotThereIsNoStore) {
    extent found;
    EXPECT_EQ(read_extent(folder_.path() + "/none", &found).code(), OPSTORE_NO_CLIENT);
    EXPECT_FALSE(has_note(folder_.path() + "/none"));
}

TEST_F(DataFile, EachByteOfTheCurrentHeadCounts) {
    for (std::size_t at = 16; at < 152; ++at) {
        EXPECT_EQ(code_with(current_, at), OPSTORE_DAMAGED) << at;
    }
}

TEST_F(DataFile, EachByteOfTheCurrentNoteCounts) {
    for (std::size_t at = NOTE_AT + 16; at < NOTE_AT + NOTE_SIZE; ++at) {
        EXPECT_EQ(code_with(current_, at), OPSTORE_DAMAGED) << at;
    }
    EXPECT_EQ(code_with(current_, NOTE_AT), OPSTORE_DAMAGED);
}

TEST_F(DataFile, ANoteThatIsNewerThanItsHeadIsDamage) {
    EXPECT_EQ(code_with(current_, NOTE_AT + 15), OPSTORE_DAMAGED);  // the highest byte of its transaction
    EXPECT_EQ(code_with(1 - current_, NOTE_AT + 15), OPSTORE_DAMAGED);
}

// The head that counts is the one that is there; the note of an earlier one says nothing about it.
TEST_F(DataFile, AnOlderNoteIsOfAWriterThatWasKilledBeforeItsOwn) {
    std::string bytes = sound_;
    const std::uint64_t earlier = number(current_) - 2;
    std::memcpy(bytes.data() + current_ * PAGE + NOTE_AT + 8, &earlier, sizeof earlier);
    EXPECT_EQ(code_of_file(bytes), ERRCODE_SUCCESS);
    bytes.replace(current_ * PAGE + NOTE_AT, NOTE_SIZE, NOTE_SIZE, '\0');
    EXPECT_EQ(code_of_file(bytes), ERRCODE_SUCCESS);
}

TEST_F(DataFile, HeadsOfTransactionsThatDoNotFollowEachOtherAreDamage) {
    std::string bytes = sound_;
    bytes.replace((1 - current_) * PAGE, PAGE, sound_, current_ * PAGE, PAGE);  // twice the same
    EXPECT_EQ(code_of_file(bytes), OPSTORE_DAMAGED);
    bytes = sound_;
    bytes.replace(0, PAGE, sound_, PAGE, PAGE);
    bytes.replace(PAGE, PAGE, sound_, 0, PAGE);  // each in the other's place
    EXPECT_EQ(code_of_file(bytes), OPSTORE_DAMAGED);
}

TEST_F(DataFile, HasANoteAsLongAsOneIsLeft) {
    EXPECT_TRUE(has_note(folder_.path()));
    std::string bytes = sound_;
    for (std::size_t head = 0; head < 2; ++head) {
        write_file(file(), bytes);
        EXPECT_TRUE(has_note(folder_.path())) << head;
        bytes[head * PAGE + NOTE_AT] = 'x';
    }
    write_file(file(), bytes);
    EXPECT_FALSE(has_note(folder_.path()));
}

TEST_F(DataFile, TheTableIsThatOfTheHeadThatItsNoteConfirms) {
    table_root root;
    const auto read_this = [&](const std::string &bytes) {
        write_file(file(), bytes);
        const int opened = ::open(file().c_str(), O_RDONLY | O_CLOEXEC);
        root = {};
        const bool read = read_root(opened, &root);
        ::close(opened);
        return read;
    };
    ASSERT_TRUE(read_this(sound_));
    EXPECT_TRUE(root.sound);
    EXPECT_EQ(root.transaction, number(current_));
    EXPECT_EQ(root.entries, 4U);  // the format, the schema, the publisher, the end
    EXPECT_EQ(root.page_size, PAGE);
    EXPECT_EQ(root.pages * PAGE, sound_.size());
    std::string bytes = sound_;
    bytes[current_ * PAGE + 130] ^= 1;  // in its root's number
    ASSERT_TRUE(read_this(bytes));
    EXPECT_FALSE(root.sound);
    EXPECT_EQ(root.transaction, number(1 - current_));
    EXPECT_FALSE(read_this("short"));
}

TEST_F(DataFile, TheNoteIsMadeForTheCurrentHead) {
    std::string bytes = sound_;
    for (std::size_t head = 0; head < 2; ++head) {
        bytes.replace(head * PAGE + NOTE_AT, NOTE_SIZE, NOTE_SIZE, '\0');
    }
    write_file(file(), bytes);
    const int opened = ::open(file().c_str(), O_RDWR | O_CLOEXEC);
    note_head(opened);
    ::close(opened);
    bytes.replace(current_ * PAGE + NOTE_AT, NOTE_SIZE, sound_, current_ * PAGE + NOTE_AT, NOTE_SIZE);
    EXPECT_TRUE(read_file(file()) == bytes);
}

}  // namespace
