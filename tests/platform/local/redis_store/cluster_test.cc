// SPDX-License-Identifier: Apache-2.0
// A store in a Redis Cluster of three: keys that are at other servers, on their way, or at one that hangs.
#include <csignal>
#include <gtest/gtest.h>

#include "platform/local/redis_store/redis_key.h"
#include "platform/local/redis_store/redis_reader.h"
#include "platform/local/redis_store/redis_writer.h"
#include "tests/support/redis_cluster.h"

namespace {

constexpr char STATE_KEY[] = "ps1:{state}:m";

// One cluster for all tests: it takes seconds to make.
class RedisCluster : public testing::Test {
protected:
    static void SetUpTestSuite() { cluster_ = new redis_cluster(); }
    static void TearDownTestSuite() { delete cluster_; }
    static redis_cluster &cluster() { return *cluster_; }

    void SetUp() override {
        std::unique_ptr<store::writer> writer;
        ASSERT_FALSE(redis_store::open_writer(cluster().url(), store::missing_store::replace, &writer));
        ASSERT_FALSE(writer->commit());
    }

    // Puts items "item/000000" and so on into branches, in one commit.
    static pm_error load(const std::vector<store::branch> &branches, int count, const std::string &name) {
        const auto writer = write_store(cluster().url());
        for (const store::branch &each : branches) {
            for (int i = 0; i < count; ++i) {
                if (pm_error error = put_named(writer.get(), path_of(i), name, each)) {
                    return error;
                }
            }
        }
        return writer->commit();
    }

    static std::string path_of(int number) {
        const std::string digits = std::to_string(number);
        return "item/" + std::string(6 - digits.size(), '0') + digits;
    }

    // The next paths of a branch.
    static std::vector<std::string> next_page(store::reader *from, const store::branch &branch,
                                              const std::string &after) {
        store::batch batch;
        const pm_error error = from->list(branch, {"item/", after, 200, {}}, nullptr, &batch);
        EXPECT_FALSE(error) << error.text();
        std::vector<std::string> paths;
        for (const store::item &each : batch.items()) {
            paths.emplace_back(each.path);
        }
        return paths;
    }

    static void expect_page(const std::vector<std::string> &page, int first) {
        ASSERT_EQ(page.size(), 200U);
        EXPECT_EQ(page.front(), path_of(first));
        EXPECT_EQ(page.back(), path_of(first + 199));
    }

    static std::uint64_t items_counted() {
        store::census census;
        EXPECT_FALSE(read_store(cluster().url())->count(&census));
        return census.records;
    }

    static redis_cluster *cluster_;
};
redis_cluster *RedisCluster::cluster_ = nullptr;

// 3000 items are staged, 30 are not.
TEST_F(RedisCluster, KeepsEachBranchAtItsServer) {
    const std::vector<store::branch> branches = {cluster().branch_at(0), cluster().branch_at(1),
                                                 cluster().branch_at(2)};
    for (const int count : {30, 3000}) {
        ASSERT_FALSE(load(branches, count, "here"));
        for (int i = 0; i < redis_cluster::MASTERS; ++i) {
            const auto reader = read_store(cluster().url(i));
            std::vector<store::branch> found;
            ASSERT_FALSE(reader->branches(&found));
            EXPECT_EQ(found.size(), 3U);
            for (const store::branch &each : branches) {
                EXPECT_EQ(next_page(reader.get(), each, "").size(), std::min<std::size_t>(200, std::size_t(count)));
            }
            EXPECT_EQ(cluster().server(i).run_here({"ZCARD", redis_cluster::items_key(branches[std::size_t(i)])}),
                      std::to_string(count));
            EXPECT_EQ(cluster().server(i).run({"KEYS", "*:s:*"}), "");
            EXPECT_EQ(cluster().server(i).run({"KEYS", "*lock"}), "");
        }
        EXPECT_EQ(items_counted(), 3U * static_cast<unsigned>(count) + 3);  // and three publishers
    }
}

TEST_F(RedisCluster, RemovesWhatIsAtOtherServers) {
    const store::branch one = cluster().branch_at(1);
    const store::branch other = cluster().branch_at(2);
    ASSERT_FALSE(load({one, other}, 10, "here"));
    const auto writer = write_store(cluster().url());
    std::uint64_t removed = 0;
    ASSERT_FALSE(writer->remove_below(one, "item", &removed));
    ASSERT_FALSE(writer->remove_item(other, path_of(3), &removed));
    EXPECT_EQ(removed, 11U);
    ASSERT_FALSE(writer->commit());
    const auto reader = read_store(cluster().url());
    EXPECT_TRUE(next_page(reader.get(), one, "").empty());
    EXPECT_EQ(next_page(reader.get(), other, "").size(), 9U);
    EXPECT_EQ(items_counted(), 9U + 2);
}

// Between two pages the items go to another server, while the rest of the slot stays; then all of it goes.
TEST_F(RedisCluster, FollowsABranchThatMovesWithinAListing) {
    const store::branch branch = cluster().branch_at(0);
    const std::string key = redis_cluster::items_key(branch);
    ASSERT_FALSE(load({branch}, 1000, "here"));
    const auto reader = read_store(cluster().url());
    expect_page(next_page(reader.get(), branch, ""), 0);
    cluster().begin_move(key, 2);
    expect_page(next_page(reader.get(), branch, path_of(199)), 200);
    cluster().move_key(key, 2);
    expect_page(next_page(reader.get(), branch, path_of(399)), 400);
    cluster().end_move(key, 2);
    expect_page(next_page(reader.get(), branch, path_of(599)), 600);
    expect_page(next_page(reader.get(), branch, path_of(799)), 800);
    EXPECT_EQ(cluster().owner_of(key), 2);
}

TEST_F(RedisCluster, WritesABranchThatMoved) {
    const store::branch branch = cluster().branch_at(1);
    const std::string key = redis_cluster::items_key(branch);
    ASSERT_FALSE(load({branch}, 300, "old"));
    const auto writer = write_store(cluster().url());
    for (int i = 0; i < 3000; ++i) {
        ASSERT_FALSE(put_named(writer.get(), path_of(i), "new", branch));
        if (i == 2500) {  // 2001 of them are staged
            cluster().begin_move(key, 0);
            cluster().end_move(key, 0);
        }
    }
    const pm_error error = writer->commit();
    EXPECT_FALSE(error) << error.text();
    EXPECT_EQ(items_counted(), 3000U + 1);
}

// It keeps its slots: the others do not wait long enough to give it up.
TEST_F(RedisCluster, GoesOnWhileOneServerHangsAndNamesThatOne) {
    const store::branch there = cluster().branch_at(1);
    const store::branch hanging = cluster().branch_at(0);
    ASSERT_FALSE(load({there, hanging}, 500, "here"));
    if (cluster().owner_of(STATE_KEY) == 0) {  // which the start needs
        cluster().begin_move(STATE_KEY, 1);
        cluster().end_move(STATE_KEY, 1);
    }
    const auto reader = read_store(cluster().url(1));
    cluster().server(0).send_signal(SIGSTOP);
    EXPECT_EQ(next_page(reader.get(), there, "").size(), 200U);
    store::batch batch;
    EXPECT_EQ(reader->list(hanging, {"item/", "", 200, {}}, nullptr, &batch).text(),
              cluster().address(0) + ": no answer in time");
    cluster().server(0).send_signal(SIGCONT);
    EXPECT_EQ(next_page(reader.get(), hanging, "").size(), 200U);
}

// A stage that is lost at one server: that branch is old, the other one new, and the next writer finds both.
TEST_F(RedisCluster, ThatTakesHalfOfACommitIsReadAndRepaired) {
    const store::branch lost = cluster().branch_at(1);
    const store::branch done = cluster().branch_at(2);
    ASSERT_FALSE(load({lost}, 300, "old"));
    {
        const auto writer = write_store(cluster().url());
        for (const store::branch &each : {lost, done}) {
            for (int i = 0; i < 2500; ++i) {
                ASSERT_FALSE(put_named(writer.get(), path_of(i), "new", each));
            }
        }
        const int at = cluster().owner_of(redis_cluster::items_key(lost));
        const std::string stage = cluster().server(at).run_here({"KEYS", "*:s:*"});
        ASSERT_NE(stage.find("{" + redis_store::branch_name(lost) + "}"), std::string::npos);
        ASSERT_EQ(cluster().server(at).run_here({"DEL", stage}), "1");
        EXPECT_EQ(writer->commit().code(), OPSTORE_BUSY);
    }
    EXPECT_EQ(items_counted(), 300U + 2500U + 2);
    std::vector<store::branch> found;
    ASSERT_FALSE(read_store(cluster().url())->branches(&found));
    EXPECT_EQ(found.size(), 2U);
    ASSERT_FALSE(load({lost, done}, 2600, "newer"));
    EXPECT_EQ(items_counted(), 2600U * 2 + 2);
}

// The last test: it adds a server.
TEST_F(RedisCluster, IsReadAtAReplicaWhileTheMasterHangs) {
    const int master = cluster().owner_of(STATE_KEY);
    const store::branch branch = cluster().branch_at(master);
    ASSERT_FALSE(load({branch}, 500, "copied"));
    cluster().add_replica_of(master);
    cluster().server(master).send_signal(SIGSTOP);
    const auto reader = read_store(cluster().url(redis_cluster::REPLICA));
    expect_page(next_page(reader.get(), branch, ""), 0);
    expect_page(next_page(reader.get(), branch, path_of(199)), 200);
    std::unique_ptr<store::writer> refused;
    EXPECT_EQ(
        redis_store::open_writer(cluster().url(redis_cluster::REPLICA), store::missing_store::make, &refused).text(),
        cluster().address(master) + ": no answer in time");
    cluster().server(master).send_signal(SIGCONT);
}

}  // namespace
