// SPDX-License-Identifier: Apache-2.0
// The memory of a batch: one block, which grows only for an item that is larger than it.
#include "platform/local/store/batch.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace store {

void batch::clear(std::uint32_t max_items, std::size_t max_bytes) {
    items_.clear();
    items_.reserve(max_items);
    max_items_ = max_items;
    if (max_bytes != max_bytes_) {
        max_bytes_ = max_bytes;
        bytes_.reset();
        capacity_ = 0;
    }
    used_ = 0;
    more_ = false;
    to_copy_ = {};
}

bool batch::add(std::string_view path, std::string_view parcel) {
    const bool added = add_place(path, parcel);
    copy_last();
    return added;
}

bool batch::add_place(std::string_view path, std::string_view parcel) {
    const std::size_t size = path.size() + 1 + parcel.size();
    const bool fits = size <= capacity_ - used_;
    if (items_.size() == max_items_ || (!fits && !items_.empty())) {
        more_ = true;
        return false;
    }
    if (!fits) {
        capacity_ = std::max(size, max_bytes_);
        bytes_ = std::make_unique_for_overwrite<char[]>(capacity_);
    }
    char *const to = bytes_.get() + used_;
    std::memcpy(to, path.data(), path.size());
    to[path.size()] = '\0';
    items_.push_back({{to, path.size()}, {to + path.size() + 1, parcel.size()}});
    to_copy_ = parcel;
    used_ += size;
    return true;
}

void batch::copy_last() {
    if (!to_copy_.empty()) {
        std::memcpy(bytes_.get() + used_ - to_copy_.size(), to_copy_.data(), to_copy_.size());
        to_copy_ = {};
    }
}

void batch::take(block *filled) noexcept {
    items_.clear();
    to_copy_ = {};
    bytes_.swap(filled->bytes);
    std::swap(capacity_, filled->capacity);
    used_ = capacity_;
}

bool batch::add_in_place(std::string_view path, std::string_view parcel) {
    more_ = more_ || items_.size() == max_items_;
    if (!more_) {
        items_.push_back({path, parcel});
    }
    return !more_;
}

void batch::swap(batch *other) noexcept {
    items_.swap(other->items_);
    bytes_.swap(other->bytes_);
    std::swap(capacity_, other->capacity_);
    std::swap(used_, other->used_);
    std::swap(max_items_, other->max_items_);
    std::swap(max_bytes_, other->max_bytes_);
    std::swap(more_, other->more_);
    std::swap(to_copy_, other->to_copy_);
}

}  // namespace store
