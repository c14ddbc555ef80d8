// SPDX-License-Identifier: Apache-2.0
// A connection to a server that is made when something is sent and none is open: with AUTH and SELECT before the first
// command, so that the start costs no round trip of its own.
//
// Errors name the server and are ready to be shown. OPSTORE_NO_CLIENT: no server answers, or it refuses this user or
// database, in its own words; OPSTORE_DAMAGED: what it says cannot be an answer. The connection is closed after either.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/local/redis_store/answer.h"
#include "platform/local/redis_store/connection.h"
#include "platform/local/redis_store/redis_url.h"

namespace redis_store {

class server_link {
public:
    // To the first of the servers that can be connected to. `url` says how, and must outlive the link.
    server_link(const redis_url *url, std::vector<server_address> servers)
        : url_(*url), servers_(std::move(servers)), server_(servers_.front()) {}

    [[nodiscard]] pm_error send(std::string_view bytes);
    // Reads the next answer.
    [[nodiscard]] pm_error receive(answer *into);
    void close() { connection_.close(); }

    // Another server to connect to when those before it are gone.
    void add_server(const server_address &server);
    // The server connected last; else the first.
    [[nodiscard]] const server_address &server() const { return server_; }
    [[nodiscard]] bool ever_answered() const { return ever_answered_; }
    [[nodiscard]] std::string describe(std::string_view text) const {
        return server_.text() + ": " + std::string(text);
    }
    // What a refusal is as an error: a key of another type is damage.
    [[nodiscard]] pm_error refused(const std::string &words) const;

    // In a cluster: lets a replica answer for its master, from the next connection on, which it makes necessary.
    void let_replica_read(bool allowed);
    [[nodiscard]] bool lets_replica_read() const { return lets_replica_read_; }

private:
    [[nodiscard]] pm_error connect();
    [[nodiscard]] pm_error start_commands(std::string *bytes);
    [[nodiscard]] pm_error receive_start();
    [[nodiscard]] pm_error next(answer *into);

    const redis_url &url_;
    std::vector<server_address> servers_;
    server_address server_;
    connection connection_;
    reply_stream replies_;
    bool ever_answered_ = false;
    bool lets_replica_read_ = false;
    std::size_t start_answers_ = 0;  // of the commands before the first, that were sent and not read yet
};

}  // namespace redis_store
