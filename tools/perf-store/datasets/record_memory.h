// SPDX-License-Identifier: Apache-2.0
// Memory for one record and all that it points to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace perf_store {

// Blocks that are used again for the next record, so that memory grows to the largest record only.
class record_memory {
public:
    // Zeroed and aligned for any field. Valid until the next reset.
    [[nodiscard]] std::uint8_t *allocate(std::size_t size);
    // Takes everything back.
    void reset();

private:
    struct block {
        std::unique_ptr<std::uint64_t[]> words;
        std::size_t size;  // bytes
    };
    std::vector<block> blocks_;
    std::size_t current_ = 0;  // the block in use
    std::size_t used_ = 0;     // bytes of it
};

}  // namespace perf_store
