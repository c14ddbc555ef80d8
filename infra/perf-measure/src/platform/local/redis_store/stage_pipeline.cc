// SPDX-License-Identifier: Apache-2.0
// Sends the commands that build a staged set.
#include "platform/local/redis_store/stage_pipeline.h"

namespace redis_store {

namespace {

constexpr std::size_t MEMBERS_AT_ONCE = 64;
constexpr std::size_t PIPELINE_BYTES = 512 * 1024;

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

bool member_list::full() const { return words_.size() == 2 + 2 * MEMBERS_AT_ONCE; }

}  // namespace redis_store
