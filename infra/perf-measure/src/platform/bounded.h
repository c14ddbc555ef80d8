// SPDX-License-Identifier: Apache-2.0
// Bounded copies (after C11 Annex K) and tagged allocation.
#pragma once

#include <cstddef>

#include "platform/errcode.h"

// A zeroed heap block of count * size bytes, freed with free; null when there is no memory. The
// tag names the block for memory accounting.
[[nodiscard]] void *calloc_named(std::size_t count, std::size_t size, const char *tag);

// Copies what fits and always terminates; `size` 0 does nothing. A null source copies "".
void safe_strncpy(char *destination, const char *source, std::size_t size);

// Copies at most `count` bytes of `source`. A result that does not fit, or a null argument, leaves
// the destination an empty text and returns an error.
errcode strncpy_s(char *destination, std::size_t size, const char *source, std::size_t count);

// Copies `count` bytes; a copy that does not fit zeroes the destination and returns an error.
errcode memcpy_s(void *destination, std::size_t size, const void *source, std::size_t count);

// Compares `text`, which ends after `size` bytes at the latest, with all of `other`; `*result` is below, at
// or above zero. A null argument gives an error.
errcode strcmp_s(const char *text, std::size_t size, const char *other, int *result);
