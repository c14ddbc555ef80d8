// SPDX-License-Identifier: Apache-2.0
// Sends the commands that build a staged set.
#include "platform/local/redis_store/stage_pipeline.h"

#include <utility>

namespace redis_store {

namespace {

constexpr std::size_t MEMBERS_AT_ONCE = 64;
constexpr std::size_t PIPELINE_BYTES = 512 * 1024;

constexpr char ADD_WITH_EXPIRY[] =
    "local added = redis.call('ZADD', KEYS[1], unpack(ARGV, 2)) "
    "redis.call('PEXPIRE', KEYS[1], ARGV[1]) "
    "return added";

}  // namespace

pm_error stage_pipeline::add(std::span<const std::string_view> words, const member_count &count) {
    next_.commands.add(words);
    next_.counts.push_back(count);
    return next_.commands.bytes().size() > PIPELINE_BYTES ? send() : pm_error();
}

pm_error stage_pipeline::send() {
    if (pm_error error = settle()) {
        return error;
    }
    std::swap(next_, sent_);
    if (!sent_.counts.empty()) {
        client_.begin(sent_.commands);
    }
    return {};
}

pm_error stage_pipeline::settle() {
    const std::vector<member_count> counts = std::exchange(sent_.counts, {});
    std::vector<plain_answer> answers(counts.size(), plain_answer(1));
    std::vector<answer *> all;
    for (plain_answer &each : answers) {
        all.push_back(&each);
    }
    pm_error error = all.empty() ? pm_error() : client_.finish(sent_.commands, all, repetition::forbidden);
    sent_.commands.clear();
    if (error) {
        return error;
    }
    for (std::size_t i = 0; i < counts.size(); ++i) {
        switch (counts[i].what) {
        case member_count::kind::none: break;
        case member_count::kind::came: *counts[i].members += answers[i].number(); break;
        case member_count::kind::went: *counts[i].members -= answers[i].number(); break;
        }
    }
    return {};
}

member_list::member_list(std::string_view key, std::string_view expiry_msec)
    : key_(key), words_({"EVAL", ADD_WITH_EXPIRY, "1", key, expiry_msec}), head_(words_.size()), room_(1) {}

bool member_list::full() const { return words_.size() == head_ + 2 * room_; }

void member_list::clear() {
    words_ = {"ZADD", key_};
    head_ = words_.size();
    room_ = MEMBERS_AT_ONCE;
}

}  // namespace redis_store
