// SPDX-License-Identifier: Apache-2.0
// Called by no show: decoding of names that are components of database paths.
#pragma once

#include "platform/errcode.h"

// Decodes a path component (opstore_string_decode). On success `*out` is a heap text that the
// caller frees; null, without an error, for a null `encoded`. On failure the platform's error is
// returned and `*out` is null. `*out` is not read, so it may hold anything before the call.
[[nodiscard]] errcode pm_opstore_string_decode(const char *encoded, char **out);
