// SPDX-License-Identifier: Apache-2.0
// Puts commands into the form that servers read.
#include "platform/local/redis_store/pipeline.h"

#include <hiredis/hiredis.h>
#include <new>

namespace redis_store {

namespace {

// The hash tag of a command's first key. A script's keys come after its text and their number.
std::string_view tag_in(std::span<const std::string_view> words) {
    const std::size_t at = words[0] == "EVAL" ? 3 : 1;
    if (at >= words.size()) {
        return {};
    }
    const std::string_view key = words[at];
    const std::size_t begin = key.find('{');
    const std::size_t end = key.find('}', begin);
    return end == std::string_view::npos ? std::string_view() : key.substr(begin + 1, end - begin - 1);
}

}  // namespace

void pipeline::add(std::span<const std::string_view> words) {
    std::vector<const char *> texts;
    std::vector<std::size_t> lengths;
    texts.reserve(words.size());
    lengths.reserve(words.size());
    for (const std::string_view word : words) {
        texts.push_back(word.data());
        lengths.push_back(word.size());
    }
    char *command = nullptr;
    const int length = redisFormatCommandArgv(&command, static_cast<int>(texts.size()), texts.data(), lengths.data());
    if (length < 0) {
        throw std::bad_alloc();
    }
    bytes_.append(command, static_cast<std::size_t>(length));
    redisFreeCommand(command);
    commands_.push_back({bytes_.size(), std::string(tag_in(words))});
}

void pipeline::add_for(const std::string &tag, std::initializer_list<std::string_view> words) {
    add(words);
    commands_.back().tag = tag;
}

void pipeline::clear() {
    bytes_.clear();
    commands_.clear();
}

std::string_view pipeline::bytes_of(std::size_t command) const {
    const std::size_t begin = command == 0 ? 0 : commands_[command - 1].end;
    return std::string_view(bytes_).substr(begin, commands_[command].end - begin);
}

}  // namespace redis_store
