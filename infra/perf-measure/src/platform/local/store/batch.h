// SPDX-License-Identifier: Apache-2.0
// Items read from a branch, in memory of their own: nothing of the store is held while they are used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace store {

inline constexpr std::size_t BATCH_BYTES = 256 * 1024;  // a batch ends early rather than grow beyond this

// One item of a batch. Both views are valid until the batch is cleared or destroyed.
struct item {
    std::string_view path;    // below the branch; a zero byte follows it
    std::string_view parcel;  // empty when the value under the path is not this item's: it is damaged
};

// Memory for the bytes of items.
struct block {
    block() = default;
    explicit block(std::size_t size) : bytes(std::make_unique_for_overwrite<char[]>(size)), capacity(size) {}

    std::unique_ptr<char[]> bytes;
    std::size_t capacity = 0;
};

// Items in ascending order of their paths. Filled by a reader; its memory is used again for the next items.
class batch {
public:
    batch() = default;
    batch(const batch &) = delete;
    batch &operator=(const batch &) = delete;

    [[nodiscard]] const std::vector<item> &items() const { return items_; }
    // Whether items follow the last one.
    [[nodiscard]] bool more() const { return more_; }

    // For readers ------------------------------------------------------------------------------

    // Empties the batch, and makes room for a number of items so that adding them allocates no list.
    void clear(std::uint32_t max_items, std::size_t max_bytes = BATCH_BYTES);
    // Copies an item to the end. False, and sets more(), when the batch has as many items as clear() was told
    // or would grow beyond max_bytes; a first item always fits.
    [[nodiscard]] bool add(std::string_view path, std::string_view parcel);
    // As add(), but the parcel's place is filled by copy_last() only, which comes before the next item. So a reader
    // can fetch the bytes from memory and go on meanwhile.
    [[nodiscard]] bool add_place(std::string_view path, std::string_view parcel);
    void copy_last();
    // Takes a block in exchange for its own, and loses its items.
    void take(block *filled) noexcept;
    // Adds an item that stands in the block which was taken, its path with the zero byte. False, and sets more(), when
    // the batch has as many items as clear() was told.
    [[nodiscard]] bool add_in_place(std::string_view path, std::string_view parcel);
    void swap(batch *other) noexcept;

private:
    std::vector<item> items_;
    std::unique_ptr<char[]> bytes_;
    std::size_t capacity_ = 0;
    std::size_t used_ = 0;
    std::uint32_t max_items_ = 0;
    std::size_t max_bytes_ = BATCH_BYTES;
    bool more_ = false;
    std::string_view to_copy_;  // into the place of the last item; empty when that is filled
};

}  // namespace store
