// SPDX-License-Identifier: Apache-2.0
// The commands that build a staged set.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "platform/local/redis_store/client.h"

namespace redis_store {

// What the answer to a command does to a number of members: it counts those that came or went, or something else.
struct member_count {
    enum class kind { none, came, went };
    kind what = kind::none;
    std::uint64_t *members = nullptr;  // valid until the answer is there
};

// Sends commands whenever many bytes are together. The server is at work on them while the next ones are collected.
class stage_pipeline {
public:
    explicit stage_pipeline(client *server) : client_(*server) {}

    // A failure of commands that were sent before may show here.
    [[nodiscard]] pm_error add(std::span<const std::string_view> words, const member_count &count);
    [[nodiscard]] pm_error add(std::initializer_list<std::string_view> words, const member_count &count) {
        return add(std::span(words.begin(), words.size()), count);
    }
    // Sends what is together, without waiting for the answers.
    [[nodiscard]] pm_error send();
    // Waits for all answers to what was sent; before the client is used for anything else.
    [[nodiscard]] pm_error settle();

private:
    struct part {
        pipeline commands;
        std::vector<member_count> counts;
    };

    client &client_;
    part next_;
    part sent_;  // whose answers are awaited
};

// Members that become one ZADD. The first one is of one member, and gives the set its expiry in the same step: a writer
// that is killed after half of a pipeline leaves no set without.
class member_list {
public:
    member_list(std::string_view key, std::string_view expiry_msec);
    void add(std::string_view member) { words_.insert(words_.end(), {"0", member}); }
    [[nodiscard]] bool empty() const { return words_.size() == head_; }
    [[nodiscard]] bool full() const;
    [[nodiscard]] const std::vector<std::string_view> &words() const { return words_; }
    // Begins the next one.
    void clear();

private:
    std::string_view key_;
    std::vector<std::string_view> words_;
    std::size_t head_;  // words before the members
    std::size_t room_;  // members at most
};

}  // namespace redis_store
