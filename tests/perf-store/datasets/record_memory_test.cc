// SPDX-License-Identifier: Apache-2.0
// Memory of records.
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "perf-store/datasets/record_memory.h"

namespace {

using namespace perf_store;

TEST(RecordMemory, IsZeroAndAlignedWheneverItIsGiven) {
    record_memory memory;
    for (int round = 0; round < 3; ++round) {
        for (const std::size_t size : {1UL, 7UL, 8UL, 65536UL, 65537UL, 3UL, 1000000UL, 24UL}) {
            std::uint8_t *bytes = memory.allocate(size);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % 8, 0U);
            EXPECT_TRUE(std::all_of(bytes, bytes + size, [](std::uint8_t byte) { return byte == 0; })) << size;
            std::memset(bytes, 0xA5, size);
        }
        memory.reset();
    }
}

TEST(RecordMemory, PiecesDoNotOverlap) {
    record_memory memory;
    std::vector<std::uint8_t *> pieces;
    for (int i = 0; i < 5000; ++i) {
        pieces.push_back(memory.allocate(40));
        std::memset(pieces.back(), i, 40);
    }
    for (int i = 0; i < 5000; ++i) {
        const auto wanted = static_cast<std::uint8_t>(i);
        ASSERT_EQ(pieces[static_cast<std::size_t>(i)][0], wanted);
        ASSERT_EQ(pieces[static_cast<std::size_t>(i)][39], wanted);
    }
}

}  // namespace
