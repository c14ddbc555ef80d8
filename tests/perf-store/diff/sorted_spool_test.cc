// SPDX-License-Identifier: Apache-2.0
// The records of a spool in the order of their keys, in memory and out of a file.
#include "perf-store/diff/sorted_spool.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>

#include "tests/support/temporary_folder.h"

namespace {

using perf_store::sorted_spool;

using records = std::vector<std::pair<std::string, std::string>>;

records taken(sorted_spool *spool) {
    records result;
    const pm_error unfinished = spool->finish();
    EXPECT_FALSE(unfinished) << unfinished.text();
    bool found = true;
    while (found) {
        const pm_error error = spool->next(&found);
        EXPECT_FALSE(error) << error.text();
        if (found) {
            result.emplace_back(spool->key(), spool->value());
        }
    }
    return result;
}

void put(sorted_spool *spool, const records &what) {
    for (const auto &[key, value] : what) {
        const pm_error error = spool->put(key, value);
        ASSERT_FALSE(error) << error.text();
    }
}

// Keys with four digits, so that they are in the order of their numbers.
records numbered(int count) {
    records result;
    for (int i = 0; i < count; ++i) {
        result.emplace_back(std::to_string(1000 + i), std::string(static_cast<std::size_t>(i % 7), 'v'));
    }
    return result;
}

constexpr std::size_t SMALL = 300;  // bytes: some ten records

class Spool : public testing::TestWithParam<std::size_t> {};

TEST_P(Spool, GivesNothingWhenNothingWasPut) {
    sorted_spool spool(GetParam());
    EXPECT_EQ(taken(&spool), records());
}

TEST_P(Spool, SortsByTheBytesOfTheKeys) {
    sorted_spool spool(GetParam());
    put(&spool, {{"b", "2"}, {"\xFF", "5"}, {"", "0"}, {"a", "1"}, {"b/c", "4"}, {std::string("b\0", 2), "3"}});
    EXPECT_EQ(taken(&spool),
              (records{{"", "0"}, {"a", "1"}, {"b", "2"}, {std::string("b\0", 2), "3"}, {"b/c", "4"}, {"\xFF", "5"}}));
}

TEST_P(Spool, KeepsTheLastOfTheSameKey) {
    sorted_spool spool(GetParam());
    for (const char *value : {"first", "second", "last"}) {
        put(&spool, {{"twice", value}});
        put(&spool, numbered(40));
    }
    records wanted = numbered(40);
    wanted.emplace_back("twice", "last");
    EXPECT_EQ(taken(&spool), wanted);
}

TEST_P(Spool, SortsWhatComesInAnyOrder) {
    records shuffled = numbered(3000);
    std::mt19937 random(1);
    std::shuffle(shuffled.begin(), shuffled.end(), random);
    sorted_spool spool(GetParam());
    put(&spool, shuffled);
    EXPECT_EQ(taken(&spool), numbered(3000));
}

TEST_P(Spool, TakesWhatComesInOrder) {
    sorted_spool spool(GetParam());
    put(&spool, numbered(3000));
    EXPECT_EQ(taken(&spool), numbered(3000));
}

TEST_P(Spool, TakesARecordLargerThanItsMemory) {
    const records large = {{"a", "1"}, {"b", std::string(3000, 'x')}, {"c", std::string(70'000, 'y')}, {"d", "2"}};
    sorted_spool spool(GetParam());
    put(&spool, large);
    EXPECT_EQ(taken(&spool), large);
}

INSTANTIATE_TEST_SUITE_P(InMemoryAndOnDisk, Spool, testing::Values(SMALL, sorted_spool::MEMORY));

TEST(SpoolFile, HasNoNameInTheTemporaryFolder) {
    const temporary_folder folder;
    setenv("TMPDIR", folder.path().c_str(), 1);
    sorted_spool spool(SMALL);
    put(&spool, numbered(3000));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    EXPECT_EQ(taken(&spool).size(), 3000U);
    unsetenv("TMPDIR");
}

TEST(SpoolFile, ThatCannotBeMadeIsAnErrorWithItsFolder) {
    setenv("TMPDIR", "/nowhere/at all", 1);
    sorted_spool spool(SMALL);
    pm_error error;
    for (int i = 0; i < 100 && !error; ++i) {
        error = spool.put(std::to_string(i), "value");
    }
    unsetenv("TMPDIR");
    EXPECT_EQ(error.text(), "/nowhere/at all: No such file or directory");
}

}  // namespace
