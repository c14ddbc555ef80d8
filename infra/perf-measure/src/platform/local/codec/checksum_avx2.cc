// See checksum_avx2.h. This file alone is compiled for AVX2.
#include "platform/local/codec/checksum_avx2.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

std::uint64_t checksum_avx2(const void *bytes, std::size_t length) { return XXH3_64bits(bytes, length); }
