// SPDX-License-Identifier: Apache-2.0
// Owner of what the platform allocates and its caller frees with free.
#pragma once

#include <cstdlib>
#include <memory>

struct pm_heap_deleter {
    void operator()(void *block) const { std::free(block); }
};

template <class T>
using pm_heap_block = std::unique_ptr<T, pm_heap_deleter>;
