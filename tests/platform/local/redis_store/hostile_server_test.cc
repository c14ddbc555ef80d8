// SPDX-License-Identifier: Apache-2.0
// Servers that answer anything, and how often a server is asked.
#include <atomic>
#include <cstring>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "platform/local/redis_store/redis_reader.h"
#include "tests/support/redis_server.h"

namespace {

sockaddr_un address_of(const std::string &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

int listen_at(const std::string &path) {
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const sockaddr_un address = address_of(path);
    EXPECT_EQ(::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(listener, 5), 0);
    return listener;
}

// Answers the first bytes that come over one connection, and closes it.
class fake_server {
public:
    explicit fake_server(std::string answer)
        : listener_(listen_at(path())), thread_([this, text = std::move(answer)] {
              const int client = ::accept(listener_, nullptr, nullptr);
              char ignored[4096];
              static_cast<void>(::read(client, ignored, sizeof ignored));
              static_cast<void>(::send(client, text.data(), text.size(), MSG_NOSIGNAL));
              ::close(client);
          }) {}
    ~fake_server() {
        thread_.join();
        ::close(listener_);
    }
    [[nodiscard]] std::string path() const { return folder_.path() + "/fake"; }

private:
    temporary_folder folder_;
    int listener_;
    std::thread thread_;
};

pm_error answer_to_start(const std::string &answer) {
    const fake_server server(answer);
    std::unique_ptr<store::reader> ignored;
    return redis_store::open_reader("redis+unix://" + server.path() + "?timeout=1000", &ignored);
}

TEST(HostileServer, IsDamagedWhenItsBytesAreNoAnswer) {
    const std::string endless(200'000, '+');
    for (const std::string &answer :
         {std::string("HTTP/1.1 200 OK\r\n\r\n"), std::string("*1000000000\r\n"), std::string("*-2\r\n"),
          std::string("$99999999999999999999\r\n"), std::string("$-5\r\n"),
          std::string("*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n:1\r\n"),
          std::string("*4\r\n:1\r\n:1\r\n:1\r\n:1\r\n"), endless, std::string("\0\0\0\0\r\n", 6)}) {
        const pm_error error = answer_to_start(answer);
        EXPECT_EQ(error.code(), OPSTORE_DAMAGED) << answer.substr(0, 40);
        EXPECT_NE(error.text().find("/fake: "), std::string::npos) << error.text();
    }
}

TEST(HostileServer, ThatClosesWithinAnAnswerIsAnError) {
    for (const char *answer : {"", "*3\r\n", "*3\r\n$-1\r\n$-1\r\n", "$100\r\nshort"}) {
        EXPECT_EQ(answer_to_start(answer).code(), OPSTORE_NO_CLIENT) << answer;
    }
}

TEST(HostileServer, CannotSendControlCharactersToATerminal) {
    const std::string text = answer_to_start("-ERR \x1b[2J gone\r\n*0\r\n*0\r\n").text();
    EXPECT_NE(text.find("ERR ?[2J gone"), std::string::npos) << text;
}

// Passes bytes on between one client and a server, and counts how often the client speaks after the server did.
class counting_proxy {
public:
    explicit counting_proxy(std::string server)
        : server_(std::move(server)), listener_(listen_at(path())), thread_([this] { pass_on(); }) {}
    // The client must have closed its connection.
    ~counting_proxy() {
        thread_.join();
        ::close(listener_);
    }
    [[nodiscard]] std::string path() const { return folder_.path() + "/proxy"; }
    [[nodiscard]] int round_trips() const { return round_trips_; }

private:
    void pass_on() {
        const int client = ::accept(listener_, nullptr, nullptr);
        const int server = ::socket(AF_UNIX, SOCK_STREAM, 0);
        const sockaddr_un address = address_of(server_);
        static_cast<void>(::connect(server, reinterpret_cast<const sockaddr *>(&address), sizeof address));
        pollfd ends[] = {{client, POLLIN, 0}, {server, POLLIN, 0}};
        bool server_spoke = true;
        for (bool open = true; open && ::poll(ends, 2, 10'000) > 0;) {
            for (int from = 0; from < 2; ++from) {
                char bytes[65536];
                if ((ends[from].revents & (POLLIN | POLLHUP)) == 0) {
                    continue;
                }
                const ssize_t length = ::read(ends[from].fd, bytes, sizeof bytes);
                open = open && length > 0;
                round_trips_ += from == 0 && length > 0 && server_spoke ? 1 : 0;
                server_spoke = from == 1;
                if (length > 0) {
                    static_cast<void>(::send(ends[1 - from].fd, bytes, static_cast<std::size_t>(length), MSG_NOSIGNAL));
                }
            }
        }
        ::close(client);
        ::close(server);
    }

    temporary_folder folder_;
    std::string server_;
    int listener_;
    std::atomic<int> round_trips_ = 0;
    std::thread thread_;
};

// One for the start, with SELECT in it, one for an item, and one for each batch of 200; the last batch of the four
// tells that no other follows.
TEST(RoundTrips, AreOneForTheStartAndOneForABatch) {
    const redis_server server;
    ASSERT_FALSE(load_items(server.url("&db=1"), 700));
    const counting_proxy proxy(server.socket());
    {
        const auto reader = read_store("redis+unix://" + proxy.path() + "?db=1");
        EXPECT_EQ(proxy.round_trips(), 1);
        EXPECT_EQ(name_at(reader.get(), "item/000005"), "x");
        EXPECT_EQ(proxy.round_trips(), 2);
        pm_error error;
        int batches = 0;
        EXPECT_EQ(all_paths(reader.get(), "item/", &error, &batches).size(), 700U);
        EXPECT_EQ(batches, 4);
        EXPECT_EQ(proxy.round_trips(), 6);
    }
}

}  // namespace
