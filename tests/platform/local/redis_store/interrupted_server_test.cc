// SPDX-License-Identifier: Apache-2.0
// Servers that are not ready, do not take a connection, or are cut off while a change is on its way.
#include <chrono>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include "platform/local/redis_store/redis_reader.h"
#include "tests/support/fake_server.h"
#include "tests/support/redis_server.h"

namespace {

pm_error reading(const std::string &url) {
    std::unique_ptr<store::reader> ignored;
    return redis_store::open_reader(url, &ignored);
}

// Loading a thousand keys takes half a second here.
TEST(LoadingServer, IsAskedAgainUntilTheTimeoutIsOver) {
    redis_server server({"key-load-delay", "500", "loading-process-events-interval-bytes", "1024"});
    ASSERT_FALSE(load_items(server.url(), 3, "loaded"));
    server.run({"EVAL", "for i = 1, 1000 do redis.call('SET', 'key' .. i, string.rep('x', 5000)) end", "0"});
    server.run({"CONFIG", "SET", "rdbcompression", "no"});
    server.run({"SAVE"});
    server.kill_it();
    server.begin_start();
    std::string said;
    for (int tries = 0; tries < 1000 && said.find("LOADING") == std::string::npos; ++tries) {
        said = server.run_here({"GET", "key1"});
        ::usleep(1'000);
    }
    ASSERT_NE(said.find("LOADING"), std::string::npos) << said;
    const std::string in_a_hurry = reading("redis+unix://" + server.socket() + "?timeout=1").text();
    EXPECT_NE(in_a_hurry.find(server.socket() + ": "), std::string::npos) << in_a_hurry;
    EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000002"), "loaded");
}

TEST(BusyServer, ThatTakesNoConnectionIsGivenUpInTime) {
    const temporary_folder folder;
    const std::string path = folder.path() + "/full";
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const sockaddr_un address = address_of(path);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listener, 0), 0);
    const int first = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::connect(first, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(reading("redis+unix://" + path + "?timeout=200").text(), path + ": no answer in time");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(200));
    ::close(first);
    ::close(listener);
}

// Over TCP the system drops the requests for connections that the queue has no place for.
TEST(BusyServer, ThatTakesNoConnectionFromTheNetworkIsGivenUpInTime) {
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listener, 0), 0);
    ASSERT_EQ(::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size), 0);
    const int first = ::socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_EQ(::connect(first, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    const std::string place = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    EXPECT_EQ(reading("redis://" + place + "?timeout=200").text(), place + ": no answer in time");
    ::close(first);
    ::close(listener);
}

// The server executed it, or not: who asks again could undo what another one did since.
TEST(CutConnection, IsAnErrorOfACommitThatIsNotSentAgain) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "old"));
    pm_error error;
    {
        const passing_server between(server.socket(), "EXEC");
        {
            const auto writer = write_store("redis+unix://" + between.path() + "?timeout=1000");
            ASSERT_FALSE(put_named(writer.get(), "item/000001", "new"));
            error = writer->commit();
        }
    }
    EXPECT_EQ(error.code(), OPSTORE_NO_CLIENT);
    EXPECT_NE(error.text().find("the server closed the connection"), std::string::npos) << error.text();
    EXPECT_EQ(server.run({"HGET", "ps1:{state}:m", "V"}), "2");  // once
    EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000001"), "new");
}

// The lock went with the server: nobody knows who wrote meanwhile.
TEST(RestartedServer, WithinALoadChangesNothing) {
    redis_server server;
    ASSERT_FALSE(load_items(server.url(), 3, "old"));
    server.run({"SAVE"});
    const auto writer = write_store(server.url());
    ASSERT_FALSE(put_named(writer.get(), "item/000001", "new"));
    server.kill_it();
    server.start();
    EXPECT_EQ(writer->commit().code(), OPSTORE_BUSY);
    EXPECT_EQ(name_at(read_store(server.url()).get(), "item/000001"), "old");
}

}  // namespace
