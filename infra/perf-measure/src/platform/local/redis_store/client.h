// SPDX-License-Identifier: Apache-2.0
// Commands to the store's server and their answers, over a connection that is made when it is needed and again when it
// was lost.
//
// Errors name the server and are ready to be shown. OPSTORE_NO_CLIENT: no server answers, or it refuses, in its own
// words; OPSTORE_DAMAGED: what it says cannot be an answer, or a key is of another type.
#pragma once

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "platform/local/redis_store/answer.h"
#include "platform/local/redis_store/connection.h"
#include "platform/local/redis_store/redis_url.h"

namespace redis_store {

// Commands that are sent at once; their answers come in the same order.
class pipeline {
public:
    void add(std::initializer_list<std::string_view> words) { add(std::span(words.begin(), words.size())); }
    void add(std::span<const std::string_view> words);
    void append(const pipeline &others);
    void clear();

    [[nodiscard]] const std::string &bytes() const { return bytes_; }
    [[nodiscard]] std::size_t commands() const { return commands_; }

private:
    std::string bytes_;
    std::size_t commands_ = 0;
};

// Whether commands are sent again over a new connection when the first was lost before their answers came.
enum class repetition { allowed, forbidden };

class client {
public:
    explicit client(redis_url url) : url_(std::move(url)) {}

    [[nodiscard]] const redis_url &url() const { return url_; }
    // "HOST:PORT: " and a text. The server is the one connected last, else the first.
    [[nodiscard]] std::string describe(std::string_view text) const;

    // Sends commands and reads one answer for each, in one round trip, which the first one over a connection shares
    // with AUTH and SELECT. A server that is still loading its data is asked again until the URL's timeout is over.
    // A refusal of any command is an error, after all answers are there.
    [[nodiscard]] pm_error exchange(const pipeline &commands, std::span<answer *const> answers, repetition allowed);

    // The two halves of an exchange that may not be repeated; nothing else may be sent between them. The connection is
    // closed after an error other than a refusal.
    [[nodiscard]] pm_error send(const pipeline &commands);
    [[nodiscard]] pm_error receive(std::span<answer *const> answers);

    void close() { connection_.close(); }

private:
    using clock = std::chrono::steady_clock;

    [[nodiscard]] pm_error connect();
    [[nodiscard]] pm_error receive_start();
    [[nodiscard]] pm_error next(answer *into);
    [[nodiscard]] pm_error refused(const std::string &words) const;

    redis_url url_;
    connection connection_;
    reply_stream replies_;
    server_address server_;
    bool ever_answered_ = false;
    std::size_t start_answers_ = 0;  // of AUTH and SELECT, that were sent and not read yet
};

}  // namespace redis_store
