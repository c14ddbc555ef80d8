// SPDX-License-Identifier: Apache-2.0
// Collects changes so that the last one of each item is left.
#include "platform/local/redis_store/branch_changes.h"

#include <algorithm>

namespace redis_store {

void branch_changes::put(std::string_view path, std::string member) {
    items_.insert_or_assign(std::string(path), std::move(member));
}

void branch_changes::remove(std::string_view path) { items_.insert_or_assign(std::string(path), std::nullopt); }

void branch_changes::remove_below(std::string_view prefix) {
    auto first = items_.lower_bound(prefix);
    auto last = first;
    while (last != items_.end() && last->first.starts_with(prefix)) {
        ++last;
    }
    items_.erase(first, last);
    removed_.emplace_back(prefix);
}

void branch_changes::clear() {
    removed_.clear();
    items_.clear();
}

branch_changes::knowledge branch_changes::about(std::string_view path) const {
    if (const auto found = items_.find(path); found != items_.end()) {
        return found->second ? knowledge::present : knowledge::absent;
    }
    const bool is_removed =
        std::any_of(removed_.begin(), removed_.end(), [&](const std::string &each) { return path.starts_with(each); });
    return is_removed ? knowledge::absent : knowledge::unknown;
}

branch_changes::knowledge branch_changes::below(std::string_view prefix, std::uint64_t *present) const {
    *present = 0;
    bool is_changed = false;
    for (auto each = items_.lower_bound(prefix); each != items_.end() && each->first.starts_with(prefix); ++each) {
        is_changed = true;
        *present += each->second ? 1 : 0;
    }
    for (const std::string &each : removed_) {
        if (prefix.starts_with(each)) {
            return *present > 0 ? knowledge::present : knowledge::absent;
        }
        is_changed = is_changed || each.starts_with(prefix);
    }
    return is_changed ? knowledge::partly : knowledge::unknown;
}

}  // namespace redis_store
