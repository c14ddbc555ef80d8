// SPDX-License-Identifier: Apache-2.0
// How often this program has allocated memory, whoever asked for it.
#pragma once

#include <cstddef>

[[nodiscard]] std::size_t allocation_count();
