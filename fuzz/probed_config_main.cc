// SPDX-License-Identifier: Apache-2.0
// Entry point for libFuzzer.
#include "fuzz/probed_config_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    config_fuzz_one(data, size);
    return 0;
}
