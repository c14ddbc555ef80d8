// SPDX-License-Identifier: Apache-2.0
// Members into items.
#include "platform/local/redis_store/page.h"

#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"

namespace redis_store {

void page::expect(const store::branch &from, std::string_view prefix, std::string_view after, std::uint32_t limit) {
    key_ = branch_key(store::key_space::item, from);
    path_at_ = key_.size();
    prefix_ = prefix;
    after_ = after;
    limit_ = limit;
    begin();
}

void page::begin() {
    answer::begin();
    items_.clear(limit_, PAGE_BYTES);
    members_.clear();
    members_.reserve(limit_);
    bytes_ = 0;
    seen_ = 0;
    last_dropped_.clear();
    large_ = false;
    unsealed_ = false;
}

bool page::array(std::size_t elements) { return seen_ == 0 && elements <= limit_ + std::size_t{1}; }

// The first member of a page is kept however large it is.
bool page::text(std::string_view text) {
    const std::string_view path = text.substr(0, text.find('\0'));
    const std::string_view last = !last_dropped_.empty() ? last_dropped_ : members_.empty() ? after_ : last_path();
    const bool is_first = seen_++ == 0 && after_.empty();
    if (path.size() == text.size() || path.size() > store::MAX_PATH_LENGTH || !path.starts_with(prefix_) ||
        (!is_first && path <= last)) {
        return false;
    }
    const bool is_kept = keeps_texts();
    bytes_ += text.size();
    large_ = large_ || (bytes_ > PAGE_BYTES && !members_.empty());
    if (is_kept && !large_) {
        members_.push_back({path, text.substr(path.size() + 1)});
    } else {
        last_dropped_ = path;
    }
    return true;
}

void page::moved(const char *from, const char *to) {
    for (member &each : members_) {
        each.path = {to + (each.path.data() - from), each.path.size()};
        each.sealed = {to + (each.sealed.data() - from), each.sealed.size()};
    }
}

void page::take(store::block *received) { items_.take(received); }

store::batch &page::items() {
    if (!unsealed_) {
        unsealed_ = true;
        items_.clear(static_cast<std::uint32_t>(members_.size()), PAGE_BYTES);
        for (const member &each : members_) {
            key_.resize(path_at_);
            key_ += each.path;
            static_cast<void>(items_.add_in_place(each.path, store::unseal(key_, each.sealed)));
        }
        if (has_more()) {
            static_cast<void>(items_.add_in_place({}, {}));  // one too many, which says so
        }
    }
    return items_;
}

}  // namespace redis_store
