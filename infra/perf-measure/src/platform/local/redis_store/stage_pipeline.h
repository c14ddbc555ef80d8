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

// Sends commands whenever many bytes are together, and sums up what their answers say.
class stage_pipeline {
public:
    explicit stage_pipeline(client *server) : client_(*server) {}

    // `sign`: whether the command's answer counts members that came (1) or went (-1), or neither (0).
    [[nodiscard]] pm_error add(std::span<const std::string_view> words, int sign);
    [[nodiscard]] pm_error add(std::initializer_list<std::string_view> words, int sign) {
        return add(std::span(words.begin(), words.size()), sign);
    }
    [[nodiscard]] pm_error send();
    [[nodiscard]] std::uint64_t sum() const { return sum_; }  // modulo 2^64

private:
    client &client_;
    pipeline commands_;
    std::vector<int> signs_;
    std::uint64_t sum_ = 0;
};

// Members that become one ZADD. The first one gives the set its expiry in the same step: a writer that is killed after
// half of a pipeline leaves no set without.
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
};

}  // namespace redis_store
