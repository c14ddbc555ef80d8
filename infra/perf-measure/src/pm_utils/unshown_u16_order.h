// SPDX-License-Identifier: Apache-2.0
// Called by no show: the order of 16-bit numbers that travel in wider fields.
#pragma once

#include <cstdint>

// Whether a < b in their low 16 bits; the bits above do not count.
[[nodiscard]] constexpr bool pm_u16_less(std::uint32_t a, std::uint32_t b) { return (a & 0xFFFF) < (b & 0xFFFF); }
