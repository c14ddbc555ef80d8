// SPDX-License-Identifier: Apache-2.0
// Memory for the texts and arrays of a decoded checkpoint message.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <vector>

namespace perf_measure {

// Frees all that it gave when it ends. `allocate` is a ChkptAllocFn whose context is the object.
class chkpt_memory {
public:
    chkpt_memory() = default;
    ~chkpt_memory() {
        for (void *const block : blocks_) {
            std::free(block);
        }
    }
    chkpt_memory(const chkpt_memory &) = delete;
    chkpt_memory &operator=(const chkpt_memory &) = delete;

    [[nodiscard]] static void *allocate(std::size_t size, void *context) {
        void *const block = std::malloc(size);
        if (block != nullptr) {
            static_cast<chkpt_memory *>(context)->blocks_.push_back(block);
        }
        return block;
    }

private:
    std::vector<void *> blocks_;
};

}  // namespace perf_measure
