// SPDX-License-Identifier: Apache-2.0
// Allocation in blocks.
#include "perf-store/datasets/record_memory.h"

#include <algorithm>
#include <cstring>

namespace perf_store {

namespace {

constexpr std::size_t BLOCK_SIZE = 64 * 1024;
constexpr std::size_t WORD = sizeof(std::uint64_t);

}  // namespace

std::uint8_t *record_memory::allocate(std::size_t size) {
    size = (size + WORD - 1) / WORD * WORD;
    while (current_ < blocks_.size() && size > blocks_[current_].size - used_) {
        ++current_;
        used_ = 0;
    }
    if (current_ == blocks_.size()) {
        const std::size_t block_size = std::max(BLOCK_SIZE, size);
        blocks_.push_back({std::make_unique_for_overwrite<std::uint64_t[]>(block_size / WORD), block_size});
    }
    auto *result = reinterpret_cast<std::uint8_t *>(blocks_[current_].words.get()) + used_;
    std::memset(result, 0, size);
    used_ += size;
    return result;
}

void record_memory::reset() {
    current_ = 0;
    used_ = 0;
}

}  // namespace perf_store
