// SPDX-License-Identifier: Apache-2.0
// One input of the fuzz target of perf-probed's configuration: its text.
#pragma once

#include <cstddef>
#include <cstdint>

// Reads the configuration; aborts when an error does not name the file.
void config_fuzz_one(const std::uint8_t *data, std::size_t size);
