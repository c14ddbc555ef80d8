// SPDX-License-Identifier: Apache-2.0
// Keeps the elements of small replies.
#include "platform/local/redis_store/answer.h"

#include <charconv>

namespace redis_store {

namespace {

constexpr std::size_t MAX_REFUSAL_BYTES = 300;

}  // namespace

bool answer::error(std::string_view words) {
    if (refusal_.empty()) {
        for (const char byte : words.substr(0, MAX_REFUSAL_BYTES)) {
            refusal_ += byte >= ' ' && byte <= '~' ? byte : '?';
        }
        refusal_ += refusal_.empty() ? "ERR" : "";
    }
    return true;
}

void plain_answer::begin() {
    answer::begin();
    is_array_ = false;
    elements_.clear();
}

bool plain_answer::add(std::string_view bytes, bool is_nil) {
    elements_.push_back({std::string(bytes), is_nil});
    return elements_.size() <= max_elements_;
}

bool plain_answer::array(std::size_t elements) {
    is_array_ = true;
    return elements <= max_elements_;
}

bool plain_answer::text(std::string_view bytes) { return add(bytes, false); }

bool plain_answer::integer(std::int64_t value) { return add(std::to_string(value), false); }

bool plain_answer::nil() { return add({}, true); }

const std::string &plain_answer::text() const {
    static const std::string nothing;
    return elements_.size() == 1 ? elements_[0].text : nothing;
}

std::uint64_t plain_answer::number() const {
    std::uint64_t number = 0;
    static_cast<void>(std::from_chars(text().data(), text().data() + text().size(), number));
    return number;
}

}  // namespace redis_store
