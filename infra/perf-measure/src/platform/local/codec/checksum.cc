// SPDX-License-Identifier: Apache-2.0
// The checksum by the form of the library's algorithm that this machine runs best.
#include "platform/local/codec/checksum.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include "platform/local/codec/checksum_avx2.h"

#ifdef PM_CHECKSUM_AVX2

// The C library has looked already when the program started. The compiler's own look costs a program that is started
// for one page of text a tenth of its time on a virtual machine, which leaves the guest for each CPUID instruction.
// Clang does not take the library's header as C++.
#if __has_include(<sys/platform/x86.h>) && !defined(__clang__)
#include <sys/platform/x86.h>

static bool has_avx2() { return CPU_FEATURE_ACTIVE(AVX2); }
#else
static bool has_avx2() { return __builtin_cpu_supports("avx2") != 0; }
#endif

#endif

std::uint64_t checksum(const void *bytes, std::size_t length) {
#ifdef PM_CHECKSUM_AVX2
    static const bool avx2 = has_avx2();
    if (avx2) {
        return checksum_avx2(bytes, length);
    }
#endif
    return XXH3_64bits(bytes, length);
}
