// SPDX-License-Identifier: Apache-2.0
// Single pages of a store that are damaged: what a reader answers, and what an inspection says.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "platform/local/lmdb_store/inspect.h"
#include "platform/local/lmdb_store/lmdb_reader.h"
#include "platform/local/lmdb_store/lmdb_writer.h"
#include "platform/local/lmdb_store/page_layout.h"
#include "platform/local/lmdb_store/table_state.h"
#include "platform/local/store/local_store_records.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/support/child_process.h"
#include "tests/support/command.h"

namespace {

using namespace lmdb_store;

constexpr std::size_t PAGE = 4096;
constexpr store::branch MAIN_1{store::root::main, 1};
constexpr int SMALL_ITEMS = 100;
constexpr std::size_t LARGE_SIZE = 10'000;
constexpr char LARGE_PATH[] = "intf/detail/large";

struct findings final : store::inspector {
    std::map<store::key_space, int> records;
    int empty_items = 0;
    std::vector<std::string> losses;

    void record(store::key_space kind, std::string_view, std::string_view value) override {
        ++records[kind];
        empty_items += kind == store::key_space::item && value.empty() ? 1 : 0;
    }
    void loss(const std::string &what) override { losses.push_back(what); }
};

class Damage : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(in_child([&] {
            std::unique_ptr<store::writer> writer;
            bool good = !open_writer(folder_.path(), store::missing_store::make, &writer);
            for (int i = 0; good && i < SMALL_ITEMS; ++i) {
                good = put(writer.get(), "intf/detail/" + std::to_string(1000 + i), 100);
            }
            return good && put(writer.get(), LARGE_PATH, LARGE_SIZE) && !writer->commit();
        }));
        sound_ = read_file(file());
    }
    static bool put(store::writer *writer, const std::string &path, std::size_t size) {
        std::string text(size, 't');
        pm_intf_parcel record{};
        record.InterfaceName = text.data();
        return !writer->put_item(MAIN_1, path, &record, pm_intf_parcel_descriptor());
    }

    [[nodiscard]] std::string file() const { return folder_.path() + "/data.mdb"; }
    // The first page of a kind that is in use; a leaf is the one that has a text.
    [[nodiscard]] std::size_t page_with(std::uint16_t kind, const std::string &text) const {
        for (std::size_t at = 2 * PAGE; at + PAGE <= sound_.size(); at += PAGE) {
            const auto header = load<page_header>(sound_.data(), at);
            if (header.number == at / PAGE && (header.flags & PAGE_KINDS) == kind &&
                sound_.substr(at, PAGE).find(text) != std::string::npos) {
                return at;
            }
        }
        ADD_FAILURE() << "no page with " << text;
        return 2 * PAGE;
    }
    template <class Change>
    void damage(std::size_t at, Change change) const {
        std::string bytes = sound_;
        auto header = load<page_header>(bytes.data(), at);
        change(&header);
        std::memcpy(bytes.data() + at, &header, sizeof header);
        write_file(file(), bytes);
    }
    [[nodiscard]] findings look() const {
        findings found;
        EXPECT_EQ(inspect(folder_.path(), &found).code(), ERRCODE_SUCCESS);
        return found;
    }
    // The code of a single item that another process reads.
    [[nodiscard]] errcode get(const std::string &path, std::size_t size = 0) const {
        for (const errcode code : {ERRCODE_SUCCESS, OPSTORE_DAMAGED, ERRCODE_NOT_FOUND}) {
            if (in_child([&] {
                    std::unique_ptr<store::reader> reader;
                    std::string parcel;
                    const pm_error opened = open_reader(folder_.path(), &reader);
                    return opened ? opened.code() == code
                                  : reader->get(MAIN_1, path, {}, nullptr, &parcel).code() == code &&
                                        parcel.size() >= size;
                })) {
                return code;
            }
        }
        return static_cast<errcode>(-1);
    }

    const temporary_folder folder_;
    std::string sound_;
};

TEST_F(Damage, ASoundStoreHasNone) {
    const findings found = look();
    EXPECT_EQ(found.losses, std::vector<std::string>());
    EXPECT_EQ(found.records.at(store::key_space::item), SMALL_ITEMS + 1);
    EXPECT_EQ(found.records.at(store::key_space::publisher), 1);
    EXPECT_EQ(found.records.at(store::key_space::schema), 2);
    EXPECT_EQ(found.empty_items, 0);
    EXPECT_EQ(get(LARGE_PATH, LARGE_SIZE), ERRCODE_SUCCESS);
    EXPECT_EQ(get("intf/detail/1050", 100), ERRCODE_SUCCESS);
    EXPECT_EQ(get("intf/detail/2000"), ERRCODE_NOT_FOUND);
}

TEST_F(Damage, AStoreThatIsNotThere) {
    findings found;
    EXPECT_EQ(inspect(folder_.path() + "/none", &found).code(), OPSTORE_NO_CLIENT);
    write_file(file(), "no head");
    EXPECT_EQ(inspect(folder_.path(), &found).code(), OPSTORE_DAMAGED);
}

TEST_F(Damage, ALeafThatListsLessThanIsInIt) {
    const std::size_t leaf = page_with(LEAF, "intf/detail/1050");
    damage(leaf, [](page_header *header) { header->lower = static_cast<std::uint16_t>(header->lower - 2); });
    EXPECT_EQ(get("intf/detail/1050"), OPSTORE_DAMAGED);
    const findings found = look();
    EXPECT_EQ(found.records.at(store::key_space::item), SMALL_ITEMS);
    const std::string page = "page " + std::to_string(leaf / PAGE);
    ASSERT_EQ(found.losses.size(), 3U);
    EXPECT_EQ(found.losses[0], page + " does not list the records that are in it");
    EXPECT_TRUE(found.losses[1].starts_with("before main 0x1 intf/detail/10")) << found.losses[1];
    EXPECT_TRUE(found.losses[2].starts_with("there are ")) << found.losses[2];
}

TEST_F(Damage, TheLeafOfALargeValue) {
    const std::size_t leaf = page_with(LEAF, LARGE_PATH);
    damage(leaf, [](page_header *header) { header->upper = static_cast<std::uint16_t>(header->upper - 2); });
    EXPECT_EQ(get(LARGE_PATH), OPSTORE_DAMAGED);
}

TEST_F(Damage, TheFirstPageOfALargeValue) {
    const std::size_t first = page_with(LARGE, "ttt");
    damage(first, [](page_header *header) { header->number += 1; });
    EXPECT_EQ(get(LARGE_PATH), OPSTORE_DAMAGED);
    EXPECT_EQ(get("intf/detail/1050", 100), ERRCODE_SUCCESS);
    const findings found = look();
    EXPECT_EQ(found.losses.at(0), "page " + std::to_string(first / PAGE) + " is damaged");
    EXPECT_EQ(found.empty_items, 1);
    EXPECT_EQ(found.records.at(store::key_space::item), SMALL_ITEMS + 1);
}

TEST_F(Damage, APageThatIsMissing) {
    const std::size_t first = page_with(LARGE, "ttt");
    write_file(file(), sound_.substr(0, first + PAGE + 100));
    const findings found = look();
    EXPECT_EQ(found.losses.empty(), false);
    EXPECT_NE(get(LARGE_PATH, LARGE_SIZE), ERRCODE_SUCCESS);
}

// A page above others that refers to one of them twice, or to a page that the file does not have.
TEST_F(Damage, APageThatIsReferredToWhereItCannotBe) {
    const std::size_t branch = page_with(BRANCH, "");
    const char *const page = sound_.data() + branch;
    ASSERT_GE(load<page_header>(page, 0).nodes(), 2U);
    node_header first{};
    node_header second{};
    std::size_t key_at = 0;
    ASSERT_TRUE(load_node(page, PAGE, 0, &first, &key_at));
    ASSERT_TRUE(load_node(page, PAGE, 1, &second, &key_at));
    const std::size_t second_at = branch + key_at - sizeof second;
    for (const std::uint16_t wrong : {first.low, std::uint16_t{1}, std::uint16_t{60'000}}) {
        second.low = wrong;
        std::string bytes = sound_;
        std::memcpy(bytes.data() + second_at, &second, sizeof second);
        write_file(file(), bytes);
        const findings found = look();
        const std::string text = "page " + std::to_string(wrong) + " is referred to where it cannot be";
        EXPECT_EQ(std::count(found.losses.begin(), found.losses.end(), text), 1) << text;
        EXPECT_LT(found.records.at(store::key_space::item), SMALL_ITEMS + 1);
    }
}

TEST_F(Damage, ALargeValueThatIsCutShort) {
    const std::size_t first = page_with(LARGE, "ttt");
    write_file(file(), sound_.substr(0, first + 2 * PAGE + 100));  // within its third page
    const findings found = look();
    EXPECT_EQ(
        std::count(found.losses.begin(), found.losses.end(), "page " + std::to_string(first / PAGE) + " is cut short"),
        1);
    EXPECT_EQ(found.empty_items, 1);
}

// A writer looks at the record of the format before it changes anything.
TEST_F(Damage, ARecordOfTheFormatThatIsNotSoundIsNotWrittenTo) {
    std::string bytes = sound_;
    int changed = 0;
    for (std::size_t at = bytes.find(FORMAT); at != std::string::npos; at = bytes.find(FORMAT, at + 1)) {
        bytes[at - 1] ^= 1;  // of its link
        ++changed;
    }
    ASSERT_GT(changed, 0);
    write_file(file(), bytes);
    EXPECT_TRUE(in_child([&] {
        std::unique_ptr<store::writer> writer;
        return open_writer(folder_.path(), store::missing_store::refuse, &writer).code() == OPSTORE_DAMAGED;
    }));
    EXPECT_EQ(read_file(file()), bytes);
}

TEST_F(Damage, AHeadThatItsWriterDidNotNote) {
    std::string bytes = sound_;
    for (const std::size_t head : {0UL, PAGE}) {
        bytes[head + 256 + 16] ^= 1;  // the sum of the note
    }
    write_file(file(), bytes);
    EXPECT_EQ(look().losses, std::vector<std::string>{"the head is damaged, or not the one that its writer noted"});
    EXPECT_EQ(get("intf/detail/1050"), OPSTORE_DAMAGED);
}

TEST_F(Damage, InterfacesEndWithTheLastHandle) {
    EXPECT_TRUE(in_child([&] {
        std::unique_ptr<store::writer> writer;
        const local_interface record{};
        return !open_writer(folder_.path(), store::missing_store::refuse, &writer) &&
               !writer->put_interface(UINT32_MAX, &record) && !writer->commit();
    }));
    EXPECT_TRUE(in_child([&] {
        std::unique_ptr<store::reader> reader;
        std::vector<store::interface_entry> found;
        return !open_reader(folder_.path(), &reader) && !reader->interfaces(UINT32_MAX, &found) && found.size() == 1 &&
               found[0].handle == UINT32_MAX && !reader->interfaces(std::uint64_t{UINT32_MAX} + 1, &found) &&
               found.empty();
    }));
}

TEST_F(Damage, WhatTheStoreSaysThatItHolds) {
    store::census held;
    std::unique_ptr<store::reader> reader;
    ASSERT_EQ(open_reader(folder_.path(), &reader).code(), ERRCODE_SUCCESS);
    ASSERT_EQ(reader->count(&held).code(), ERRCODE_SUCCESS);
    EXPECT_EQ(held.records, static_cast<std::uint64_t>(SMALL_ITEMS + 2));  // the items and the publisher
}

TEST_F(Damage, WhatKilledWritersLeftGoesWithTheNext) {
    const std::string left = folder_.path() + "/new-store-abcdef";
    const std::string other = folder_.path() + "/new-store-abcdefg";
    for (const std::string &each : {left, other}) {
        std::filesystem::create_directory(each);
        write_file(each + "/data.mdb", "x");
    }
    EXPECT_TRUE(in_child([&] {
        std::unique_ptr<store::writer> writer;
        return !open_writer(folder_.path(), store::missing_store::refuse, &writer);
    }));
    EXPECT_FALSE(std::filesystem::exists(left));
    EXPECT_TRUE(std::filesystem::exists(other + "/data.mdb"));
    EXPECT_EQ(get(LARGE_PATH, LARGE_SIZE), ERRCODE_SUCCESS);
}

}  // namespace
