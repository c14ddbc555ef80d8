// SPDX-License-Identifier: Apache-2.0
// Servers that are none: one that answers whatever a test says, and one that passes on what a server says.
#pragma once

#include <atomic>
#include <cstring>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "tests/support/temporary_folder.h"

inline sockaddr_un address_of(const std::string &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

inline int listen_at(const std::string &path) {
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

// Passes bytes on between one client and a server, and counts how often the client speaks after the server did. Where
// the client says `last_word`, that is passed on, and nothing more.
class passing_server {
public:
    explicit passing_server(std::string server, std::string last_word = "")
        : server_(std::move(server)),
          last_word_(std::move(last_word)),
          listener_(listen_at(path())),
          thread_([this] { pass_on(); }) {}
    // The client must have closed its connection.
    ~passing_server() {
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
                open = open && (from == 1 || last_word_.empty() ||
                                std::string_view(bytes, static_cast<std::size_t>(length)).find(last_word_) ==
                                    std::string_view::npos);
            }
        }
        ::close(client);
        ::close(server);
    }

    temporary_folder folder_;
    std::string server_;
    std::string last_word_;
    int listener_;
    std::atomic<int> round_trips_ = 0;
    std::thread thread_;
};
