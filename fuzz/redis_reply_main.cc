// SPDX-License-Identifier: Apache-2.0
// Entry point for libFuzzer.
#include "fuzz/redis_reply_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    redis_reply_fuzz_one(data, size);
    return 0;
}
