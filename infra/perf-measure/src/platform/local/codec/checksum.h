// SPDX-License-Identifier: Apache-2.0
// The checksum of parcels and the fingerprint of schemas: XXH3-64 with seed 0.
#pragma once

#include <cstddef>
#include <cstdint>

[[nodiscard]] std::uint64_t checksum(const void *bytes, std::size_t length);
