// SPDX-License-Identifier: Apache-2.0
// Commands that are sent at once; their answers come in the same order.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace redis_store {

class pipeline {
public:
    void add(std::initializer_list<std::string_view> words) { add(std::span(words.begin(), words.size())); }
    void add(std::span<const std::string_view> words);
    // A command without a key, for the server that has the keys of `tag`.
    void add_for(const std::string &tag, std::initializer_list<std::string_view> words);
    void clear();

    [[nodiscard]] std::size_t commands() const { return commands_.size(); }
    // All of them, or one, as they are sent.
    [[nodiscard]] const std::string &bytes() const { return bytes_; }
    [[nodiscard]] std::string_view bytes_of(std::size_t command) const;
    // What stands in braces in the command's first key, which chooses the server of a cluster; empty without a key.
    [[nodiscard]] const std::string &tag_of(std::size_t command) const { return commands_[command].tag; }

private:
    struct extent {
        std::size_t end;
        std::string tag;
    };

    std::string bytes_;
    std::vector<extent> commands_;
};

}  // namespace redis_store
