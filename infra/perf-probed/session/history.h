// SPDX-License-Identifier: Apache-2.0
// The newest of something, oldest first, up to a fixed number.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace probed {

template <class T>
class history {
public:
    // Has all its memory from the beginning: entries are added while packets are received.
    explicit history(std::size_t capacity = 0) : capacity_(capacity) { entries_.reserve(capacity); }

    // Forgets the oldest when full. With a capacity of 0 nothing is kept.
    void add(const T &entry) {
        if (capacity_ == 0) {
            return;
        }
        if (entries_.size() < capacity_) {
            entries_.push_back(entry);
        } else {
            entries_[first_] = entry;
            first_ = (first_ + 1) % capacity_;
        }
    }

    // Keeps the newest.
    void resize(std::size_t capacity) {
        if (capacity == capacity_) {
            return;
        }
        history resized(capacity);
        for (std::size_t index = 0; index < size(); ++index) {
            resized.add((*this)[index]);
        }
        *this = std::move(resized);
    }

    void clear() {
        entries_.clear();
        first_ = 0;
    }

    [[nodiscard]] std::size_t size() const { return entries_.size(); }
    [[nodiscard]] std::size_t capacity() const { return capacity_; }
    // 0 is the oldest.
    [[nodiscard]] const T &operator[](std::size_t index) const { return entries_[(first_ + index) % entries_.size()]; }
    [[nodiscard]] const T &newest() const { return (*this)[size() - 1]; }

private:
    std::vector<T> entries_;
    std::size_t capacity_;
    std::size_t first_ = 0;
};

}  // namespace probed
