// SPDX-License-Identifier: Apache-2.0
// Replays the inputs of a fuzz target that are kept as files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <vector>

// Runs every file of a folder; returns how many there are, 0 when there is no such folder.
inline std::size_t replay_inputs(const std::filesystem::path &folder,
                                 void run_one(const std::uint8_t *data, std::size_t size)) {
    std::size_t replayed = 0;
    if (!std::filesystem::exists(folder)) {
        return 0;
    }
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> input(std::istreambuf_iterator<char>(in), {});
        SCOPED_TRACE(entry.path());
        run_one(reinterpret_cast<const std::uint8_t *>(input.data()), input.size());
        ++replayed;
    }
    return replayed;
}
