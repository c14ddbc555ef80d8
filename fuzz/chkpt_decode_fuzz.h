// SPDX-License-Identifier: Apache-2.0
// One input of the checkpoint fuzz target, for libFuzzer and for the ordinary tests that replay what
// it found. The first byte says which message the blob is, in the order of all_shapes() of
// tests/chkpt/shapes.h, the second at which allocation memory runs out (0 never); the rest is the blob.
#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr unsigned CHKPT_FUZZ_MESSAGES = 11;

// Decodes the input; aborts when a promise of the decoders does not hold.
void chkpt_fuzz_one(const std::uint8_t *data, std::size_t size);
