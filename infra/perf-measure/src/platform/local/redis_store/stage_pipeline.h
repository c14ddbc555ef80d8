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

// Members that become one ZADD.
class member_list {
public:
    explicit member_list(std::string_view key) { words_ = {"ZADD", key}; }
    void add(std::string_view member) { words_.insert(words_.end(), {"0", member}); }
    [[nodiscard]] bool empty() const { return words_.size() == 2; }
    [[nodiscard]] bool full() const;
    [[nodiscard]] const std::vector<std::string_view> &words() const { return words_; }
    void clear() { words_.resize(2); }

private:
    std::vector<std::string_view> words_;
};

}  // namespace redis_store
