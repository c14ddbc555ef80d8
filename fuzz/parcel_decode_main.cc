// SPDX-License-Identifier: Apache-2.0
// Entry point for libFuzzer.
#include "fuzz/parcel_decode_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    parcel_fuzz_one(data, size);
    return 0;
}
