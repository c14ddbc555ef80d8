// SPDX-License-Identifier: Apache-2.0
// One input of the fuzz target of a server's replies, for libFuzzer and for the ordinary tests that replay what it
// found. The first four bytes say in what pieces the rest arrives, which is what a server sends: answers to the
// commands of one page after another.
#pragma once

#include <cstddef>
#include <cstdint>

// Reads the replies until the first error; aborts when a promise of the pages does not hold, or when other pieces of
// the same bytes mean something else.
void redis_reply_fuzz_one(const std::uint8_t *data, std::size_t size);
