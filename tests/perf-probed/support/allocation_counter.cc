// SPDX-License-Identifier: Apache-2.0
// The C library's allocation, counted: in the sanitizer's build by its hooks, else by functions that go before the
// library's.
#include "tests/perf-probed/support/allocation_counter.h"

#include <atomic>

namespace {

std::atomic<std::size_t> allocations = 0;

}  // namespace

std::size_t allocation_count() { return allocations; }

#ifdef PM_SANITIZE

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*on_malloc)(const volatile void *, std::size_t),
                                                         void (*on_free)(const volatile void *));

namespace {

const int installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void *, std::size_t) { ++allocations; }, [](const volatile void *) {});

}  // namespace

#else

extern "C" {

void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);

void *malloc(std::size_t size) {
    ++allocations;
    return __libc_malloc(size);
}
void *calloc(std::size_t count, std::size_t size) {
    ++allocations;
    return __libc_calloc(count, size);
}
void *realloc(void *memory, std::size_t size) {
    ++allocations;
    return __libc_realloc(memory, size);
}

}  // extern "C"

#endif
