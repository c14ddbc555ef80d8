// SPDX-License-Identifier: Apache-2.0
// The checksum by the form of the library's algorithm that this machine runs best.
#include "platform/local/codec/checksum.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include "platform/local/codec/checksum_avx2.h"

std::uint64_t checksum(const void *bytes, std::size_t length) {
#ifdef PM_CHECKSUM_AVX2
    static const bool has_avx2 = __builtin_cpu_supports("avx2") != 0;
    if (has_avx2) {
        return checksum_avx2(bytes, length);
    }
#endif
    return XXH3_64bits(bytes, length);
}
