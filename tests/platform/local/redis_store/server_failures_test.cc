// SPDX-License-Identifier: Apache-2.0
// What readers and writers say when a server fails, refuses or was tampered with.
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/local/redis_store/inspect.h"
#include "platform/local/redis_store/redis_reader.h"
#include "platform/local/redis_store/redis_writer.h"
#include "tests/support/redis_server.h"

namespace {

constexpr char ITEMS_KEY[] = "ps1:{m00000001}:i";

pm_error reading(const std::string &url) {
    std::unique_ptr<store::reader> ignored;
    return redis_store::open_reader(url, &ignored);
}

pm_error writing(const std::string &url) {
    std::unique_ptr<store::writer> ignored;
    return redis_store::open_writer(url, store::missing_store::make, &ignored);
}

pm_error listing(store::reader *from) {
    pm_error error;
    int ignored = 0;
    static_cast<void>(all_paths(from, "", &error, &ignored));
    return error;
}

TEST(FailingServer, ThatIsNotThereIsNamed) {
    const temporary_folder folder;
    const pm_error error = reading("redis+unix://" + folder.path() + "/none");
    EXPECT_EQ(error.code(), OPSTORE_NO_CLIENT);
    EXPECT_EQ(error.text(), folder.path() + "/none: No such file or directory");
}

TEST(FailingServer, OfSeveralHostsTheNextIsTried) {
    EXPECT_EQ(reading("redis://127.0.0.1:1,127.0.0.1:2").text(),
              "127.0.0.1:1: Connection refused; 127.0.0.1:2: Connection refused");
}

// As an embedded store's: shows print the same.
TEST(FailingServer, WithoutAStoreIsNoErrorOfTheServerAndNamedToWritersOnly) {
    const redis_server server;
    EXPECT_EQ(reading(server.url()).code(), OPSTORE_NO_CLIENT);
    EXPECT_EQ(reading(server.url()).text(), "");
    std::unique_ptr<store::writer> refused;
    const pm_error error =
        redis_store::open_writer(server.url("&prefix=mine&db=2"), store::missing_store::refuse, &refused);
    EXPECT_EQ(error.text(), server.socket() + ": there is no store of the prefix mine in database 2");
}

TEST(FailingServer, ThatWantsAPasswordTakesItFromAFileAndNeverShowsIt) {
    redis_server server({"requirepass", "open-sesame"});
    EXPECT_NE(reading(server.url()).text().find(server.socket() + ": NOAUTH"), std::string::npos);
    const std::string file = server.folder() + "/password";
    std::ofstream(file) << "open-says-me\n";
    const pm_error wrong = reading(server.url("&password-file=" + file));
    EXPECT_NE(wrong.text().find("WRONGPASS"), std::string::npos) << wrong.text();
    EXPECT_EQ(wrong.text().find("says-me"), std::string::npos);
    std::ofstream(file) << "open-sesame\n";
    ASSERT_FALSE(load_items(server.url("&password-file=" + file), 1, "in"));
    EXPECT_EQ(name_at(read_store(server.url("&password-file=" + file)).get(), "item/000000"), "in");
}

TEST(FailingServer, ThatWantsAPasswordTakesItFromTheEnvironmentToo) {
    const redis_server server({"requirepass", "open-sesame"});
    ::setenv("OPSTORE_PASSWORD", "open-sesame", 1);
    const pm_error error = load_items(server.url(), 1);
    ::unsetenv("OPSTORE_PASSWORD");
    EXPECT_FALSE(error) << error.text();
}

// The answers after a refused SELECT are those of database 0, which has a store.
TEST(FailingServer, WithoutThatDatabaseIsRefused) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 1));
    const pm_error error = reading(server.url("&db=99"));
    EXPECT_EQ(error.code(), OPSTORE_NO_CLIENT);
    EXPECT_EQ(error.text(), server.socket() + ": ERR DB index is out of range");
}

TEST(FailingServer, LetsAReaderReadWhoMayDoNothingElse) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "seen"));
    server.run({"ACL", "SETUSER", "operator", "on", ">word", "~ps1:*", "+@read", "+select"});
    const std::string file = server.folder() + "/password";
    std::ofstream(file) << "word\n";
    const std::string url = server.url("&user=operator&password-file=" + file);
    EXPECT_EQ(name_at(read_store(url).get(), "item/000001"), "seen");
    const pm_error refused = writing(url);
    EXPECT_NE(refused.text().find("NOPERM"), std::string::npos) << refused.text();
}

TEST(FailingServer, ThatMayEvictIsRefusedByWriters) {
    const redis_server server({"maxmemory-policy", "allkeys-lru"});
    EXPECT_EQ(writing(server.url()).text(),
              server.socket() + ": the server may evict keys (maxmemory-policy allkeys-lru)");
}

TEST(FailingServer, WithoutMemoryGoesOnAnsweringAndRefusesLoadsWhole) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 300, "old"));
    const auto writer = write_store(server.url());
    for (int i = 0; i < 3000; ++i) {
        ASSERT_FALSE(put_named(writer.get(), "item/" + std::to_string(i), "new"));
    }
    server.run({"CONFIG", "SET", "maxmemory", "1"});
    const pm_error error = writer->commit();
    EXPECT_NE(error.text().find("OOM"), std::string::npos) << error.text();
    const auto reader = read_store(server.url());
    EXPECT_EQ(name_at(reader.get(), "item/000299"), "old");
    EXPECT_FALSE(listing(reader.get()));
    EXPECT_EQ(server.run({"ZCARD", ITEMS_KEY}), "300");
}

TEST(FailingServer, WithoutMemoryRefusesSmallChangesToo) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "old"));
    const auto writer = write_store(server.url());
    ASSERT_FALSE(put_named(writer.get(), "item/000001", "new"));
    server.run({"CONFIG", "SET", "maxmemory", "1"});
    EXPECT_TRUE(writer->commit());
    EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000001"), "old");
}

TEST(FailingServer, ThatIsAReplicaIsReadAndNotWritten) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "copy"));
    server.run({"REPLICAOF", "127.0.0.1", "1"});
    EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000002"), "copy");
    EXPECT_NE(writing(server.url()).text().find("READONLY"), std::string::npos);
    server.run({"CONFIG", "SET", "replica-serve-stale-data", "no"});
    EXPECT_NE(reading(server.url()).text().find("MASTERDOWN"), std::string::npos);
}

// The master cannot tell the replica that the lease is over.
TEST(FailingServer, ThatIsAReplicaCountsLeasesItself) {
    const std::string port = std::to_string(redis_server::free_port());
    const redis_server master({"port", port, "bind", "127.0.0.1", "repl-diskless-sync-delay", "0"});
    const auto writer = write_store(master.url());
    ASSERT_FALSE(put_named(writer.get(), "item/000000", "here"));
    ASSERT_FALSE(writer->put_leased_publisher(MAIN_1, 60'000));
    ASSERT_FALSE(writer->commit());
    const redis_server replica;
    replica.run({"REPLICAOF", "127.0.0.1", port});
    const auto wait_for = [](const auto &is_so) {
        for (int tries = 0; tries < 5000 && !is_so(); ++tries) {
            ::usleep(2000);
        }
    };
    wait_for([&] { return replica.run({"EXISTS", "ps1:{m00000001}:l"}) == "1"; });
    ASSERT_EQ(master.run({"SET", "later", "1"}), "OK");
    wait_for([&] { return replica.run({"EXISTS", "later"}) == "1"; });  // it hears of changes now
    const auto state_there = [&] {
        store::known_state state;
        store::batch batch;
        EXPECT_FALSE(read_store(replica.url())->list(MAIN_1, {"", "", 200, {}}, &state, &batch));
        return state;
    };
    EXPECT_EQ(state_there(), store::publisher_state::running);
    master.run({"PEXPIRE", "ps1:{m00000001}:l", "500"});
    wait_for([&] { return std::stol(replica.run({"PTTL", "ps1:{m00000001}:l"})) <= 500; });
    master.send_signal(SIGSTOP);
    ::usleep(600'000);
    EXPECT_EQ(state_there(), store::publisher_state::stopped);
}

TEST(FailingServer, ThatHangsIsGivenUpInTime) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3));
    server.send_signal(SIGSTOP);
    EXPECT_EQ(reading("redis+unix://" + server.socket() + "?timeout=200").text(),
              server.socket() + ": no answer in time");
    server.send_signal(SIGCONT);
    EXPECT_FALSE(reading(server.url()));
}

TEST(FailingServer, RestartedWithinAListingIsAskedOnFromTheLastKey) {
    redis_server server;
    ASSERT_FALSE(load_items(server.url(), 500));
    server.run({"SAVE"});
    const auto reader = read_store(server.url());
    store::batch batch;
    ASSERT_FALSE(reader->list(MAIN_1, {"item/", "", 200, {}}, nullptr, &batch));
    server.kill_it();
    server.start();
    ASSERT_FALSE(reader->list(MAIN_1, {"item/", "item/000199", 200, {}}, nullptr, &batch));
    ASSERT_EQ(batch.items().size(), 200U);
    EXPECT_EQ(batch.items().front().path, "item/000200");
}

TEST(FailingServer, GoneWithinAListingIsAnErrorAfterTheTimeout) {
    redis_server server;
    ASSERT_FALSE(load_items(server.url(), 500));
    const auto reader = read_store(server.url());
    server.kill_it();
    EXPECT_EQ(listing(reader.get()).code(), OPSTORE_NO_CLIENT);
}

TEST(DamagedServer, WithKeysOfAnotherTypeIsDamaged) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3));
    const auto reader = read_store(server.url());
    server.run({"SET", ITEMS_KEY, "text"});
    EXPECT_EQ(listing(reader.get()).code(), OPSTORE_DAMAGED);
    const pm_error error = load_items(server.url(), 1);
    EXPECT_NE(error.text().find("WRONGTYPE"), std::string::npos) << error.text();
    EXPECT_EQ(server.run({"GET", ITEMS_KEY}), "text");
}

TEST(DamagedServer, WithTwoMembersOfOnePathIsDamaged) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3));
    server.run({"ZADD", ITEMS_KEY, "0", std::string_view("item/000001\0foreign!!", 21)});
    const auto reader = read_store(server.url());
    EXPECT_EQ(listing(reader.get()).code(), OPSTORE_DAMAGED);
    EXPECT_EQ(name_at(reader.get(), "item/000001"), errcode_strerror(OPSTORE_DAMAGED));
}

TEST(DamagedServer, WithMembersOutOfOrderIsDamaged) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3));
    server.run({"ZADD", ITEMS_KEY, "-1", std::string_view("item/000009\0foreign!!", 21)});
    EXPECT_EQ(listing(read_store(server.url()).get()).code(), OPSTORE_DAMAGED);
}

TEST(DamagedServer, WithAValueOfAnotherPathNeverShowsIt) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 1, "mine"));
    std::string member = server.run({"ZRANGE", ITEMS_KEY, "0", "0"});
    member.replace(0, 11, "item/000005");
    server.run({"ZADD", ITEMS_KEY, "0", member});
    const auto reader = read_store(server.url());
    EXPECT_EQ(name_at(reader.get(), "item/000000"), "mine");
    EXPECT_EQ(name_at(reader.get(), "item/000005"), errcode_strerror(OPSTORE_DAMAGED));
}

TEST(DamagedServer, WithAChangedBitNeverShowsTheRecord) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 2, "mine"));
    const std::string member = server.run({"ZRANGE", ITEMS_KEY, "0", "0"});
    for (std::size_t at = 12; at < member.size(); ++at) {  // after the path
        std::string changed = member;
        changed[at] = static_cast<char>(changed[at] ^ 4);
        server.run({"ZREMRANGEBYRANK", ITEMS_KEY, "0", "0"});
        server.run({"ZADD", ITEMS_KEY, "0", changed});
        const auto reader = read_store(server.url());
        const std::string shown = name_at(reader.get(), "item/000000");
        EXPECT_TRUE(shown == errcode_strerror(OPSTORE_DAMAGED) || shown == errcode_strerror(PARCEL_CHECKSUM) ||
                    shown == errcode_strerror(PARCEL_MALFORMED))
            << shown << " at " << at;
        EXPECT_EQ(name_at(reader.get(), "item/000001"), "mine");
    }
}

TEST(DamagedServer, WhoseBranchVanishedIsDamagedAndNoEmptyListing) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3));
    server.run({"DEL", ITEMS_KEY});
    EXPECT_EQ(listing(read_store(server.url()).get()).code(), OPSTORE_DAMAGED);
}

TEST(DamagedServer, WithAStoreOfAnotherFormatIsDamaged) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3));
    server.run({"HSET", "ps1:{state}:m", "F", "perf-show 2"});
    EXPECT_EQ(reading(server.url()).code(), OPSTORE_DAMAGED);
}

TEST(DamagedServer, WithAStoreOfAnotherFormatIsReplaced) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "old"));
    server.run({"HSET", "ps1:{state}:m", "F", "perf-show 2"});
    server.run({"HSET", "ps1:{state}:b", "of another form", "x"});
    server.run({"SET", "ps1:{state}:n", "of another type"});
    std::unique_ptr<store::writer> writer;
    ASSERT_FALSE(redis_store::open_writer(server.url(), store::missing_store::replace, &writer));
    ASSERT_FALSE(put_named(writer.get(), "item/000007", "new", {store::root::receive, 2}));
    ASSERT_FALSE(writer->commit());
    EXPECT_EQ(server.run({"EXISTS", ITEMS_KEY}), "0");
    EXPECT_FALSE(reading(server.url()));
}

// An inspection notes losses and goes on.
class noting final : public store::inspector {
public:
    void record(store::key_space, std::string_view, std::string_view value) override {
        values += value.empty() ? 0 : 1;
    }
    void loss(const std::string &what) override { losses.push_back(what); }
    int values = 0;
    std::vector<std::string> losses;
};

TEST(Inspection, OfASoundStoreFindsEverythingAndNoLoss) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 450));
    noting notes;
    ASSERT_FALSE(redis_store::inspect(server.url(), &notes));
    EXPECT_EQ(notes.values, 450 + 3);  // and the publisher, and the schemas of both
    EXPECT_TRUE(notes.losses.empty()) << notes.losses.front();
}

TEST(Inspection, NoticesItemsThatAreGoneTwiceOrForeign) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 450));
    server.run({"ZREMRANGEBYRANK", ITEMS_KEY, "100", "102"});
    server.run({"ZADD", ITEMS_KEY, "0", std::string_view("item/000001\0foreign!!", 21)});
    server.run({"ZADD", ITEMS_KEY, "0", "no item"});
    server.run({"DEL", "ps1:{m00000001}:u"});
    noting notes;
    ASSERT_FALSE(redis_store::inspect(server.url(), &notes));
    EXPECT_EQ(notes.losses, (std::vector<std::string>{
                                "branch m00000001: item/000001 is there twice or out of its order",
                                "branch m00000001: a member is no item", "branch m00000001: there are 449 of 450",
                                "the publisher of branch m00000001 is missing"}));
}

TEST(Inspection, GoesOnAfterAKeyOfAnotherType) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 5));
    const auto writer = write_store(server.url());
    ASSERT_FALSE(put_named(writer.get(), "item/000001", "other", {store::root::receive, 1}));
    ASSERT_FALSE(writer->commit());
    server.run({"SET", ITEMS_KEY, "text"});
    noting notes;
    ASSERT_FALSE(redis_store::inspect(server.url(), &notes));
    EXPECT_EQ(notes.values, 1 + 2 + 2);  // the other branch's item, two publishers, two schemas
    ASSERT_EQ(notes.losses.size(), 2U);
    EXPECT_NE(notes.losses[0].find("WRONGTYPE"), std::string::npos) << notes.losses[0];
    EXPECT_EQ(notes.losses[1], "branch m00000001: there are 0 of 5");
}

TEST(Inspection, OfNoStoreIsAnError) {
    const redis_server server;
    noting notes;
    EXPECT_EQ(redis_store::inspect(server.url(), &notes).code(), OPSTORE_NO_CLIENT);
}

TEST(KilledWriter, LeavesAStageAndALockThatExpireAndTheOldState) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "old"));
    const pid_t child = fork();
    if (child == 0) {
        const auto writer = write_store(server.url());
        for (int i = 0; i < 2500; ++i) {
            static_cast<void>(put_named(writer.get(), "item/" + std::to_string(i), "new"));
        }
        ::kill(getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000000"), "old");
    const std::string stage = server.run({"KEYS", "*:s:*"});
    ASSERT_NE(stage, "");
    for (const std::string &key : {stage, std::string("ps1:{state}:lock")}) {
        const long left = std::stol(server.run({"PTTL", key}));
        EXPECT_GT(left, 0) << key;
        EXPECT_LE(left, 60'000) << key;
    }
}

TEST(LosingTheLock, ChangesNothing) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "old"));
    for (const int count : {1, 2500}) {
        const auto writer = write_store(server.url());
        for (int i = 0; i < count; ++i) {
            ASSERT_FALSE(put_named(writer.get(), "item/00000" + std::to_string(i), "new"));
        }
        server.run({"SET", "ps1:{state}:lock", "another"});
        EXPECT_EQ(writer->commit().code(), OPSTORE_BUSY) << count;
        EXPECT_EQ(server.run({"GET", "ps1:{state}:lock"}), "another");
        server.run({"DEL", "ps1:{state}:lock"});
        EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000000"), "old");
    }
}

TEST(LosingAStage, ChangesNothing) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "old"));
    const auto writer = write_store(server.url());
    ASSERT_FALSE(writer->clear());
    for (int i = 0; i < 2500; ++i) {
        ASSERT_FALSE(put_named(writer.get(), "item/" + std::to_string(i), "new"));
    }
    const std::string stage = server.run({"KEYS", "*:s:*"});
    ASSERT_EQ(server.run({"DEL", stage}), "1");
    EXPECT_TRUE(writer->commit());
    EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000002"), "old");
}

}  // namespace
