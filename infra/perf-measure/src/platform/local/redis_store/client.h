// SPDX-License-Identifier: Apache-2.0
// Commands to the store's server, or to the servers of a cluster, and their answers.
//
// All begins at one of the URL's servers. One of a cluster may answer that another server has a key; then that one is
// asked, and remembered for all keys of the same hash tag.
//
// Errors name the server and are ready to be shown. OPSTORE_NO_CLIENT: no server answers, or it refuses, in its own
// words; OPSTORE_DAMAGED: what it says cannot be an answer, or a key is of another type.
#pragma once

#include <chrono>
#include <list>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/local/redis_store/pipeline.h"
#include "platform/local/redis_store/redirection.h"
#include "platform/local/redis_store/redis_url.h"
#include "platform/local/redis_store/server_link.h"

namespace redis_store {

// Whether commands are sent again over a new connection when the first was lost before their answers came.
enum class repetition { allowed, forbidden };

// Whether the replicas of a cluster that the URL names may answer.
enum class purpose { reading, writing };

class client {
public:
    client(redis_url url, purpose what);

    [[nodiscard]] const redis_url &url() const { return url_; }
    // "HOST:PORT: " and a text. The server is the one asked last, else the first.
    [[nodiscard]] std::string describe(std::string_view text) const { return last_->describe(text); }

    // Sends commands and reads one answer for each, in one round trip, which the first one over a connection shares
    // with AUTH and SELECT. Those that a cluster redirects are sent on, and those that have to wait (a server that is
    // still loading its data, a slot between two servers) again, until the URL's timeout is over. A refusal of any
    // command is an error, after all answers are there.
    [[nodiscard]] pm_error exchange(const pipeline &commands, std::span<answer *const> answers, repetition allowed) {
        begin(commands);
        return finish(commands, answers, allowed);
    }
    // Its two halves: the commands are sent, and at work while the caller does something else, but not with the client.
    // What fails shows at the end.
    void begin(const pipeline &commands);
    [[nodiscard]] pm_error finish(const pipeline &commands, std::span<answer *const> answers, repetition allowed);

    // The two halves of an exchange of commands with one hash tag, which is neither repeated nor redirected; nothing
    // else may be sent between them. The connection is closed after an error other than a refusal.
    [[nodiscard]] pm_error send(const pipeline &commands);
    [[nodiscard]] pm_error receive(std::span<answer *const> answers);

    // Whether a server has said that another one has a key.
    [[nodiscard]] bool was_redirected() const { return links_.size() > 1; }
    // Asks the masters of a cluster from now on; a replica may be behind, and does not know which keys are moving.
    // False when no replica was asked.
    [[nodiscard]] bool leave_replicas();

    void close();

private:
    using clock = std::chrono::steady_clock;

    // A command without its final answer.
    struct waiting {
        std::size_t command;
        server_link *to;
        bool asking = false;  // for a key whose slot is on its way to that server
        bool sent = false;
        bool to_replica = false;  // it would have answered as one
        pm_error lost{};          // why there is no answer
    };
    // What a round of answers asks for.
    struct next_round {
        std::vector<waiting> left;
        pm_error reason;  // the first one why something is left
        bool pause = false;
        bool redirected = false;
        bool lost = false;  // which the reason is then
    };

    [[nodiscard]] server_link &home() { return links_.front(); }
    [[nodiscard]] server_link &link_of(const std::string &tag);
    [[nodiscard]] server_link &link_to(const server_address &server);
    [[nodiscard]] static pm_error send_to(server_link *to, const pipeline &commands, const std::vector<waiting> &round);
    void send_round(const pipeline &commands, std::vector<waiting> *round);
    void receive_round(std::span<answer *const> answers, std::vector<waiting> *round);
    [[nodiscard]] pm_error judge(const pipeline &commands, std::span<answer *const> answers, repetition allowed,
                                 const std::vector<waiting> &round, next_round *next);
    [[nodiscard]] pm_error judge_lost(const waiting &each, const std::string &tag, repetition allowed,
                                      next_round *next);
    void redirect(const waiting &each, const std::string &tag, const redirection &where, next_round *next);

    redis_url url_;
    purpose purpose_;
    std::list<server_link> links_;                 // the first is to one of the URL's servers
    std::map<std::string, server_link *> owners_;  // by hash tag, where it is not the first
    server_link *last_;
    server_link *ahead_ = nullptr;  // to which send() sent
    std::vector<waiting> begun_;    // the first round of an exchange
};

}  // namespace redis_store
