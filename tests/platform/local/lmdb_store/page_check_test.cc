// SPDX-License-Identifier: Apache-2.0
// Pages that list more or less than is in them, and pages in the place of others.
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "platform/local/lmdb_store/page_check.h"
#include "platform/local/lmdb_store/page_layout.h"

namespace {

using namespace lmdb_store;

constexpr std::size_t PAGE = 4096;
constexpr std::size_t PAGES = 4;

struct alignas(PAGE) page {
    char bytes[PAGE];

    template <class Value>
    void set(std::size_t at, Value value) {
        std::memcpy(bytes + at, &value, sizeof value);
    }
    void set_header(const page_header &header) { set(0, header); }
    [[nodiscard]] page_header header() const { return load<page_header>(bytes, 0); }

    void make_leaf(std::uint64_t number) {
        std::memset(bytes, 0, PAGE);
        set_header({number, 0, LEAF, sizeof(page_header), PAGE});
    }
    // Adds a node as LMDB does: its place to the list, itself below the others, at an even place. Returns its value.
    MDB_val add(std::string_view key, std::string_view value, std::uint16_t flags = 0, std::size_t value_size = 0) {
        page_header changed = header();
        const auto size = static_cast<std::uint16_t>(8 + key.size() + value.size());
        changed.upper = static_cast<std::uint16_t>(changed.upper - size - size % 2);
        set(changed.lower, changed.upper);
        changed.lower = static_cast<std::uint16_t>(changed.lower + 2);
        const std::size_t noted = flags != 0 ? value_size : value.size();
        set(changed.upper, node_header{static_cast<std::uint16_t>(noted), static_cast<std::uint16_t>(noted >> 16),
                                       flags, static_cast<std::uint16_t>(key.size())});
        set_header(changed);
        key.copy(bytes + changed.upper + 8, key.size());
        value.copy(bytes + changed.upper + 8 + key.size(), value.size());
        return {value.size(), bytes + changed.upper + 8 + key.size()};
    }
};

class PageCheck : public testing::Test {
protected:
    PageCheck() : file_(PAGES) {
        for (std::size_t i = 0; i < PAGES; ++i) {
            file_[i].make_leaf(i);
            found_.push_back(file_[i].add("a key", "a value"));
            found_.back() = file_[i].add("another", "and its value");
        }
        pages_.begin(file_[1].bytes + 100, PAGE);
    }

    // Whether the record that was put last into a page is found sound, by a reading that begins.
    [[nodiscard]] bool is_sound(std::size_t index) {
        pages_.forget_pages();
        return pages_.is_sound(found_[index], found_[index]);
    }
    void change(std::size_t index, void (*how)(page_header *)) {
        page_header header = file_[index].header();
        how(&header);
        file_[index].set_header(header);
    }

    std::vector<page> file_;
    std::vector<MDB_val> found_;  // in each page
    page_check pages_;
};

TEST_F(PageCheck, PagesAsTheyAreWrittenAreSound) {
    for (std::size_t i = 0; i < PAGES; ++i) {
        EXPECT_TRUE(is_sound(i)) << i;
    }
}

TEST_F(PageCheck, NothingIsSaidBeforeItHasBegun) {
    page_check other;
    EXPECT_FALSE(other.has_begun());
    EXPECT_TRUE(pages_.has_begun());
    change(2, [](page_header *header) { header->lower = 18; });
    EXPECT_TRUE(other.is_sound(found_[2], found_[2]));
}

TEST_F(PageCheck, APageThatListsLessThanIsInIt) {
    change(2, [](page_header *header) { header->lower = static_cast<std::uint16_t>(header->lower - 2); });
    EXPECT_FALSE(is_sound(2));
    EXPECT_TRUE(is_sound(3));
}

TEST_F(PageCheck, APageThatListsMoreThanIsInIt) {
    // What is after the list was its end once: the place of a node that is there.
    const page_header header = file_[2].header();
    file_[2].set(header.lower, header.upper);
    change(2, [](page_header *wrong) { wrong->lower = static_cast<std::uint16_t>(wrong->lower + 2); });
    EXPECT_FALSE(is_sound(2));
}

TEST_F(PageCheck, APageWhoseRecordsBeginElsewhere) {
    change(1, [](page_header *header) { header->upper = static_cast<std::uint16_t>(header->upper - 2); });
    EXPECT_FALSE(is_sound(1));
    change(1, [](page_header *header) { header->upper = static_cast<std::uint16_t>(header->upper + 4); });
    EXPECT_FALSE(is_sound(1));
}

TEST_F(PageCheck, AListThatIsLongerThanThePage) {
    for (const std::uint16_t lower : std::vector<std::uint16_t>{0, 15, 4096, 4097, 65535}) {
        page_header header = file_[1].header();
        header.lower = lower;
        file_[1].set_header(header);
        EXPECT_FALSE(is_sound(1)) << lower;
    }
}

TEST_F(PageCheck, ANodeOutsideThePage) {
    for (const std::uint16_t at : std::vector<std::uint16_t>{0, 15, 4089, 4096, 65535}) {
        file_[1].set(sizeof(page_header), at);
        EXPECT_FALSE(is_sound(1)) << at;
    }
}

TEST_F(PageCheck, APageOfAnotherKind) {
    for (const std::uint16_t flags : {std::uint16_t{0}, BRANCH, LARGE, std::uint16_t{BRANCH | LEAF}}) {
        page_header header = file_[1].header();
        header.flags = flags;
        file_[1].set_header(header);
        EXPECT_FALSE(is_sound(1)) << flags;
    }
}

TEST_F(PageCheck, APageInThePlaceOfAnother) {
    std::memcpy(file_[3].bytes, file_[2].bytes, PAGE);
    EXPECT_FALSE(is_sound(3));
    EXPECT_TRUE(is_sound(2));
}

TEST_F(PageCheck, APageThatWasFoundSoundIsLookedAtOnceInAState) {
    EXPECT_TRUE(is_sound(2));
    change(2, [](page_header *header) { header->number = 7; });
    EXPECT_TRUE(pages_.is_sound(found_[2], found_[2]));
    EXPECT_FALSE(is_sound(2));
}

TEST_F(PageCheck, ALargeValueIsInThePlaceThatItsPageNames) {
    file_[3].set_header({3, 0, LARGE, 1, 0});
    const MDB_val key = file_[2].add("large", std::string(8, '\3'), VALUE_IS_ELSEWHERE, 3000);
    const MDB_val value{3000, file_[3].bytes + sizeof(page_header)};
    EXPECT_TRUE(pages_.is_large(value));
    EXPECT_FALSE(pages_.is_large(key));
    EXPECT_TRUE(pages_.is_sound(key, value));
    change(3, [](page_header *header) { header->number = 2; });
    EXPECT_FALSE(pages_.is_sound(key, value));
}

TEST_F(PageCheck, AValueThatIsNowhereIsNotSound) {
    EXPECT_FALSE(pages_.is_sound(found_[1], {10, file_[2].bytes + 300}));
}

// Its pages cannot be told from an address: a map begins where a page of the system does.
TEST_F(PageCheck, AFileWithLargerPagesThanTheSystemIsNotLookedAt) {
    pages_.begin(file_[1].bytes, 1UL << 30);
    EXPECT_TRUE(pages_.has_begun());
    change(1, [](page_header *header) { header->number = 7; });
    EXPECT_TRUE(is_sound(1));
}

}  // namespace
