// SPDX-License-Identifier: Apache-2.0
// Where the bytes of replies come from.
#pragma once

#include <cstddef>

#include "base/pm_error.h"

namespace redis_store {

class byte_source {
public:
    // Waits for bytes and reads some: on success `*length` is at least 1. The end of the stream is an error.
    [[nodiscard]] virtual pm_error receive(char *buffer, std::size_t size, std::size_t *length) = 0;

protected:
    ~byte_source() = default;
};

}  // namespace redis_store
