// SPDX-License-Identifier: Apache-2.0
// Called by no show: a 32-bit checksum of texts.
#pragma once

#include <cstdint>

// Checksum of a text, which is never null; 0 for the empty text. No standard CRC-32: unshown_string_crc.cc
// says how it differs.
[[nodiscard]] std::uint32_t pm_string_crc32(const char *text);
