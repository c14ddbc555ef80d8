// SPDX-License-Identifier: Apache-2.0
// Sends the commands that build a staged set.
#include "platform/local/redis_store/stage_pipeline.h"

namespace redis_store {

namespace {

constexpr std::size_t MEMBERS_AT_ONCE = 64;
constexpr std::size_t PIPELINE_BYTES = 512 * 1024;

constexpr char ADD_WITH_EXPIRY[] =
    "local added = redis.call('ZADD', KEYS[1], unpack(ARGV, 2)) "
    "redis.call('PEXPIRE', KEYS[1], ARGV[1]) "
    "return added";

}  // namespace

pm_error stage_pipeline::add(std::span<const std::string_view> words, int sign) {
    commands_.add(words);
    signs_.push_back(sign);
    return commands_.bytes().size() > PIPELINE_BYTES ? send() : pm_error();
}

pm_error stage_pipeline::send() {
    std::vector<plain_answer> answers(signs_.size(), plain_answer(1));
    std::vector<answer *> all;
    for (plain_answer &each : answers) {
        all.push_back(&each);
    }
    if (pm_error error = client_.exchange(commands_, all, repetition::forbidden)) {
        return error;
    }
    for (std::size_t i = 0; i < answers.size(); ++i) {
        sum_ += signs_[i] < 0 ? -answers[i].number() : signs_[i] > 0 ? answers[i].number() : 0;
    }
    commands_.clear();
    signs_.clear();
    return {};
}

member_list::member_list(std::string_view key, std::string_view expiry_msec)
    : key_(key), words_({"EVAL", ADD_WITH_EXPIRY, "1", key, expiry_msec}), head_(words_.size()) {}

bool member_list::full() const { return words_.size() == head_ + 2 * MEMBERS_AT_ONCE; }

void member_list::clear() {
    words_ = {"ZADD", key_};
    head_ = words_.size();
}

}  // namespace redis_store
