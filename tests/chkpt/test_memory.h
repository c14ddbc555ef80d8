// SPDX-License-Identifier: Apache-2.0
// The allocator of the decoders' tests: it counts, fails where it is told to, hands out memory that
// is not zero, and frees everything at its end.
#pragma once

#include <cstdlib>
#include <cstring>
#include <vector>

class test_memory {
public:
    static constexpr std::size_t NEVER = static_cast<std::size_t>(-1);

    explicit test_memory(std::size_t fail_at = NEVER) : fail_at_(fail_at) {}
    test_memory(const test_memory &) = delete;
    test_memory &operator=(const test_memory &) = delete;
    ~test_memory() {
        for (void *block : blocks_) {
            std::free(block);
        }
    }

    static void *allocate(std::size_t size, void *context) { return static_cast<test_memory *>(context)->take(size); }

    // How often memory was asked for, and the sizes.
    [[nodiscard]] const std::vector<std::size_t> &sizes() const { return sizes_; }

private:
    void *take(std::size_t size) {
        sizes_.push_back(size);
        if (sizes_.size() - 1 == fail_at_) {
            return nullptr;
        }
        void *const block = std::malloc(size);
        std::memset(block, 0xA5, size);
        blocks_.push_back(block);
        return block;
    }

    std::size_t fail_at_;
    std::vector<std::size_t> sizes_;
    std::vector<void *> blocks_;
};
