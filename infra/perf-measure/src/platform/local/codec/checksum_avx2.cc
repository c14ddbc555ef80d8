// SPDX-License-Identifier: Apache-2.0
// The checksum compiled for AVX2, which only this file is.
#include "platform/local/codec/checksum_avx2.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

std::uint64_t checksum_avx2(const void *bytes, std::size_t length) { return XXH3_64bits(bytes, length); }
