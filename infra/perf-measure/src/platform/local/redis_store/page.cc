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
    last_ = after_;
    seen_ = 0;
    large_ = false;
}

bool page::array(std::size_t elements) { return seen_ == 0 && elements <= limit_ + std::size_t{1}; }

bool page::text(std::string_view member) {
    const std::string_view path = member.substr(0, member.find('\0'));
    const bool first = seen_++ == 0 && after_.empty();
    if (path.size() == member.size() || path.size() > store::MAX_PATH_LENGTH || !path.starts_with(prefix_) ||
        (!first && path <= last_)) {
        return false;
    }
    last_ = path;
    if (large_) {
        return true;
    }
    key_.resize(path_at_);
    key_ += path;
    const std::string_view parcel = store::unseal(key_, member.substr(path.size() + 1));
    large_ = !items_.add(path, parcel) && items_.items().size() < limit_;
    return true;
}

}  // namespace redis_store
