// SPDX-License-Identifier: Apache-2.0
// The links between neighbours, whatever order records come and go in.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>

#include "platform/local/lmdb_store/link_keeper.h"
#include "platform/local/lmdb_store/table_state.h"
#include "tests/platform/local/lmdb_store/own_table.h"

namespace {

using namespace lmdb_store;

// A table within one transaction, and beside it what should be in it.
class LinkKeeper : public own_table {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(own_table::SetUp());
        links_.attach(txn_, table_, &reserve_);
        ASSERT_EQ(links_.begin_table(FORMAT), 0);
    }

    void put(const std::string &key, const std::string &value) {
        ASSERT_EQ(links_.put(key, value), 0) << key;
        wanted_[key] = value;
    }
    void remove(const std::string &key) {
        std::uint64_t removed = 0;
        ASSERT_EQ(links_.remove(key, &removed), 0) << key;
        EXPECT_EQ(removed, wanted_.erase(key)) << key;
    }
    void remove_all(const std::string &prefix) {
        std::uint64_t removed = 10;  // what was removed before
        ASSERT_EQ(links_.remove_all(prefix, &removed), 0) << prefix;
        EXPECT_EQ(removed - 10,
                  std::erase_if(wanted_, [&](const auto &each) { return each.first.starts_with(prefix); }))
            << prefix;
    }

    // Every record is there and linked to the one before it, and absent ones are proved absent.
    void expect_sound() {
        ASSERT_EQ(links_.finish(), 0);
        const table_state state(txn_, table_);
        std::map<std::string, std::string> found;
        ASSERT_EQ(state.scan("K",
                             [&](std::string_view key, std::string_view value) {
                                 found.emplace(key, value);
                                 return true;
                             }),
                  ERRCODE_SUCCESS);
        EXPECT_EQ(found, wanted_);
        EXPECT_EQ(state.check_end(mdb_txn_id(txn_)), ERRCODE_SUCCESS);
        EXPECT_EQ(state.check_end(mdb_txn_id(txn_) + 1), OPSTORE_DAMAGED);
        EXPECT_EQ(state.entries(), wanted_.size() + 2);
        for (const auto &[key, value] : wanted_) {
            std::string_view kept;
            EXPECT_EQ(state.get(key, &kept), ERRCODE_SUCCESS) << key;
            EXPECT_EQ(kept, value);
            EXPECT_EQ(state.get(key + "!", &kept), wanted_.contains(key + "!") ? ERRCODE_SUCCESS : ERRCODE_NOT_FOUND);
        }
    }
    // The table without one of its records, as damage leaves it.
    void lose(std::string_view key) {
        MDB_val lost = to_value(key);
        ASSERT_EQ(mdb_del(txn_, table_, &lost, nullptr), 0);
    }

    page_reserve reserve_;
    link_keeper links_;
    std::map<std::string, std::string> wanted_;
};

TEST_F(LinkKeeper, ATableWithoutRecordsIsSound) { expect_sound(); }

TEST_F(LinkKeeper, RecordsInTheOrderOfTheirKeys) {
    for (int i = 100; i < 300; ++i) {
        put("K" + std::to_string(i), "value of " + std::to_string(i));
    }
    expect_sound();
}

TEST_F(LinkKeeper, RecordsInTheOtherOrder) {
    for (int i = 300; i > 100; --i) {
        put("K" + std::to_string(i), std::to_string(i));
    }
    expect_sound();
}

TEST_F(LinkKeeper, MoreSequencesSideBySideThanAreRemembered) {
    for (int i = 0; i < 20; ++i) {
        for (int sequence = 100; sequence < 200; ++sequence) {
            put("K" + std::to_string(sequence) + "/" + static_cast<char>('a' + i), "v");
        }
    }
    expect_sound();
}

TEST_F(LinkKeeper, ARecordBetweenARunAndItsNext) {
    put("K1", "");
    put("K5", "");
    put("K2", "");  // a run of its own, before the end of which another begins
    put("K4", "");
    put("K3", "");
    expect_sound();
}

TEST_F(LinkKeeper, AnotherValueOfEachSizeKeepsTheLink) {
    for (const char *key : {"K1", "K2", "K3"}) {
        put(key, "first");
    }
    put("K2", "other");
    put("K2", std::string(10'000, 'x'));
    put("K2", "");
    put("K3", "last");
    put("K1", "first, again");
    expect_sound();
}

TEST_F(LinkKeeper, RecordsThatAreRemoved) {
    for (const char *key : {"K1", "K2", "K3", "K4"}) {
        put(key, key);
    }
    remove("K2");
    remove("K1");
    remove("K4");
    remove("K4");  // nothing is there any more
    expect_sound();
}

TEST_F(LinkKeeper, RecordsThatAreRemovedTogether) {
    for (const char *key : {"K1", "Ka", "Ka/1", "Ka/2", "Ka/3", "Kb"}) {
        put(key, key);
    }
    remove_all("Ka/");
    remove_all("Ka/");
    remove_all("K1");
    remove_all("Kb");
    expect_sound();
    remove_all("K");
    expect_sound();
}

TEST_F(LinkKeeper, AnyOrderOfChanges) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 3000; ++i) {
        const std::string key = "K" + std::to_string(random() % 40) + "/" + std::to_string(random() % 20);
        switch (random() % 8) {
        case 0: remove(key); break;
        case 1: remove_all(key); break;
        default: put(key, std::string(random() % 60, 'v'));
        }
    }
    expect_sound();
}

TEST_F(LinkKeeper, APlaceThatLacksARecordIsNoPlaceForAnother) {
    for (const char *key : {"K1", "K2", "K3"}) {
        put(key, key);
    }
    ASSERT_EQ(links_.close_runs(), 0);
    lose("K2");
    EXPECT_EQ(links_.put("K20", "new"), MDB_CORRUPTED);
}

TEST_F(LinkKeeper, ARunWhoseNextRecordIsGoneCannotBeClosed) {
    put("K3", "next");
    ASSERT_EQ(links_.close_runs(), 0);
    put("K1", "run");
    lose("K3");
    EXPECT_EQ(links_.close_runs(), MDB_CORRUPTED);
}

TEST_F(LinkKeeper, ATableWithoutItsEndCannotBeFinished) {
    put("K1", "");
    ASSERT_EQ(links_.close_runs(), 0);
    lose(END_KEY);
    std::uint64_t removed = 0;
    EXPECT_EQ(links_.remove("K1", &removed), MDB_CORRUPTED);
    EXPECT_EQ(links_.remove_all("K", &removed), MDB_CORRUPTED);
    EXPECT_NE(links_.finish(), 0);
}

TEST_F(LinkKeeper, ATableThatIsBegunAgainForgetsItsRuns) {
    put("K1", "");
    ASSERT_EQ(mdb_drop(txn_, table_, 0), 0);
    ASSERT_EQ(links_.begin_table(FORMAT), 0);
    wanted_.clear();
    put("K2", "");
    expect_sound();
}

}  // namespace
