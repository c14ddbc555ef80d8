// SPDX-License-Identifier: Apache-2.0
// Entry point for libFuzzer.
#include "fuzz/stamp_packet_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    stamp_fuzz_one(data, size);
    return 0;
}
