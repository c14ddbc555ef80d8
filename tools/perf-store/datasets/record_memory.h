// SPDX-License-Identifier: Apache-2.0
// Memory for one record and all that it points to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace perf_store {

// Blocks that are used again for the next record, so that memory grows to the largest record only.
class record_memory {
public:
    // Zeroed and aligned for any field. Valid until the next reset.
    [[nodiscard]] std::uint8_t *allocate(std::size_t size);
    // A terminated copy of a text.
    [[nodiscard]] const char *keep_text(std::string_view text) {
        std::uint8_t *copy = allocate(text.size() + 1);
        std::memcpy(copy, text.data(), text.size());
        return reinterpret_cast<const char *>(copy);
    }
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
