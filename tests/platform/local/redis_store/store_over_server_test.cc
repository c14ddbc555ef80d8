// SPDX-License-Identifier: Apache-2.0
// A store in a server: what is written is read, in one step and in order.
#include <algorithm>
#include <gtest/gtest.h>

#include "platform/local/redis_store/redis_writer.h"
#include "tests/support/redis_server.h"

namespace {

TEST(RedisStore, GivesBackWhatWasCommitted) {
    const redis_server server;
    const auto writer = write_store(server.url());
    ASSERT_FALSE(put_named(writer.get(), "b", "two"));
    ASSERT_FALSE(put_named(writer.get(), "a", "one"));
    ASSERT_FALSE(writer->commit());
    const auto reader = read_store(server.url());
    EXPECT_EQ(name_at(reader.get(), "a"), "one");
    EXPECT_EQ(name_at(reader.get(), "b"), "two");
    EXPECT_EQ(name_at(reader.get(), "c"), "Item not found");
}

TEST(RedisStore, ChangesNothingWithoutACommit) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "old"));
    const std::string before = server.run({"DBSIZE"});
    {
        const auto writer = write_store(server.url());
        ASSERT_FALSE(writer->clear());
        for (int i = 0; i < 2500; ++i) {  // enough to be staged
            ASSERT_FALSE(put_named(writer.get(), "new/" + std::to_string(i), "new"));
        }
    }
    EXPECT_EQ(server.run({"DBSIZE"}), before);
    EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000002"), "old");
}

// 5000 items are staged, 100 are not.
TEST(RedisStore, ReplacesAndMergesItemsBySetsOfAnySize) {
    for (const int count : {100, 5000}) {
        const redis_server server;
        ASSERT_FALSE(load_items(server.url(), 150, "old"));
        ASSERT_FALSE(load_items(server.url(), count, "new"));
        const auto reader = read_store(server.url());
        EXPECT_EQ(name_at(reader.get(), "item/000099"), "new");
        EXPECT_EQ(name_at(reader.get(), "item/000149"), count == 100 ? "old" : "new");
        store::census census;
        ASSERT_FALSE(reader->count(&census));
        EXPECT_EQ(census.records, static_cast<std::uint64_t>(std::max(count, 150)) + 1);  // and a publisher
        EXPECT_EQ(server.run({"KEYS", "*:s:*"}), "");
        EXPECT_EQ(server.run({"EXISTS", "ps1:{state}:lock"}), "0");
    }
}

TEST(RedisStore, BeginsEmptyWhenItIsReplaced) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 10, "old"));
    std::unique_ptr<store::writer> writer;
    ASSERT_FALSE(redis_store::open_writer(server.url(), store::missing_store::replace, &writer));
    ASSERT_FALSE(put_named(writer.get(), "item/000003", "new"));
    ASSERT_FALSE(writer->commit());
    const auto reader = read_store(server.url());
    EXPECT_EQ(name_at(reader.get(), "item/000003"), "new");
    EXPECT_EQ(name_at(reader.get(), "item/000004"), "Item not found");
}

TEST(RedisStore, TakesTheLastOfItemsThatArePutTwice) {
    const redis_server server;
    const auto writer = write_store(server.url());
    for (int i = 0; i < 4500; ++i) {
        ASSERT_FALSE(put_named(writer.get(), "item/" + std::to_string(i % 3000), i < 3000 ? "first" : "second"));
    }
    ASSERT_FALSE(writer->commit());
    const auto reader = read_store(server.url());
    EXPECT_EQ(name_at(reader.get(), "item/7"), "second");
    EXPECT_EQ(name_at(reader.get(), "item/2999"), "first");
    EXPECT_EQ(server.run({"ZCARD", "ps1:{m00000001}:i"}), "3000");
}

// Two branches are staged in turns, a few hundred items at a time; items are put again and removed long after they were
// sent.
TEST(RedisStore, KeepsCountWhileTheServerIsAtWorkOnWhatWasSentBefore) {
    constexpr store::branch branches[] = {MAIN_1, {store::root::receive, 2}};
    const std::string long_name(1300, 'n');
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 500, "old"));
    const auto writer = write_store(server.url());
    for (int i = 0; i < 3000; ++i) {
        for (const store::branch &each : branches) {
            const std::string path = "item/" + std::to_string(100'000 + i).substr(1) + "0";
            ASSERT_FALSE(put_named(writer.get(), path, long_name, each));
        }
        if (i % 1000 == 999) {
            std::uint64_t removed = 0;
            ASSERT_FALSE(put_named(writer.get(), "item/000010", "again", branches[1]));
            ASSERT_FALSE(writer->remove_item(branches[1], "item/0" + std::to_string(100'000 + i - 900).substr(2) + "0",
                                             &removed));
            EXPECT_EQ(removed, 1U);
        }
    }
    ASSERT_FALSE(writer->commit());
    const auto reader = read_store(server.url());
    store::census census;
    ASSERT_FALSE(reader->count(&census));
    EXPECT_EQ(census.records, 450U + 3000U + 3000U - 3U + 2U);  // of those of before, every tenth was replaced
    EXPECT_EQ(server.run({"ZCARD", "ps1:{x00000002}:i"}), "2997");
    std::string parcel;
    EXPECT_FALSE(reader->get(branches[1], "item/000010", {}, nullptr, &parcel));
    EXPECT_EQ(name_at(reader.get(), "item/000010"), long_name);
    EXPECT_EQ(name_at(reader.get(), "item/000011"), "old");
}

TEST(RedisStore, ListsInBatchesOf200AndSaysExactlyWhetherMoreFollow) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 400));
    const auto writer = write_store(server.url());
    ASSERT_FALSE(put_named(writer.get(), "item0", "beside"));  // after "item/" in byte order
    ASSERT_FALSE(writer->commit());
    const auto reader = read_store(server.url());
    pm_error error;
    int batches = 0;
    const std::vector<std::string> paths = all_paths(reader.get(), "item/", &error, &batches);
    ASSERT_FALSE(error) << error.text();
    ASSERT_EQ(paths.size(), 400U);
    EXPECT_EQ(paths.front(), "item/000000");
    EXPECT_EQ(paths.back(), "item/000399");
    EXPECT_EQ(batches, 2);
}

TEST(RedisStore, GoesOnExactlyAfterKeysOf400Bytes) {
    const redis_server server;
    const std::string common = "long/" + std::string(store::MAX_PATH_LENGTH - 6, 'x');
    const auto writer = write_store(server.url());
    for (const char last : {'a', 'b', 'c'}) {
        ASSERT_FALSE(put_named(writer.get(), common + last, "n"));
    }
    ASSERT_FALSE(writer->commit());
    store::batch batch;
    ASSERT_FALSE(read_store(server.url())->list(MAIN_1, {"long/", common + 'a', 200, {}}, nullptr, &batch));
    ASSERT_EQ(batch.items().size(), 2U);
    EXPECT_EQ(batch.items()[0].path, common + 'b');
}

TEST(RedisStore, CountsWhatItRemoves) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 10));
    const auto writer = write_store(server.url());
    std::uint64_t removed = 0;
    ASSERT_FALSE(writer->remove_item(MAIN_1, "item/000003", &removed));
    ASSERT_FALSE(writer->remove_item(MAIN_1, "item/000003", &removed));
    ASSERT_FALSE(writer->remove_item(MAIN_1, "nothing", &removed));
    EXPECT_EQ(removed, 1U);
    ASSERT_FALSE(writer->remove_below(MAIN_1, "item", &removed));
    EXPECT_EQ(removed, 10U);
    ASSERT_FALSE(writer->commit());
    std::vector<store::branch> branches;
    ASSERT_FALSE(read_store(server.url())->branches(&branches));
    EXPECT_TRUE(branches.empty());
}

TEST(RedisStore, KeepsStoresOfSeveralPrefixesAndDatabasesApart) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 1, "plain"));
    ASSERT_FALSE(load_items(server.url("&prefix=other"), 1, "other"));
    ASSERT_FALSE(load_items(server.url("&db=1"), 1, "one"));
    EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000000"), "plain");
    EXPECT_EQ(name_at(read_store(server.url("&prefix=other")).get(), "item/000000"), "other");
    EXPECT_EQ(name_at(read_store(server.url("&db=1")).get(), "item/000000"), "one");
}

TEST(RedisStore, AnswersLikeAStoppedPublisherOnceALeaseHasRunOut) {
    const redis_server server;
    const auto state_now = [&] {
        store::known_state state;
        store::batch batch;
        EXPECT_FALSE(read_store(server.url())->list(MAIN_1, {"", "", 200, {}}, &state, &batch));
        return state;
    };
    const auto writer = write_store(server.url());
    ASSERT_FALSE(put_named(writer.get(), "a", "one"));
    ASSERT_FALSE(writer->put_leased_publisher(MAIN_1, 60'000));
    ASSERT_FALSE(writer->commit());
    EXPECT_EQ(state_now(), store::publisher_state::running);
    EXPECT_EQ(server.run({"PEXPIRE", "ps1:{m00000001}:l", "0"}), "1");
    EXPECT_EQ(state_now(), store::publisher_state::stopped);
    const auto again = write_store(server.url());
    ASSERT_FALSE(again->put_publisher(MAIN_1, store::publisher_state::running));
    ASSERT_FALSE(again->commit());
    EXPECT_EQ(state_now(), store::publisher_state::running);
}

}  // namespace
