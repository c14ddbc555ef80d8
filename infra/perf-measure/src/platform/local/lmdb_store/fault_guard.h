// SPDX-License-Identifier: Apache-2.0
// Turns the faults of a damaged store into an error code.
//
// LMDB reads its file through a memory map and trusts it: a file cut short raises SIGBUS, a wild
// offset SIGSEGV, a size of zero SIGFPE, and a page that contradicts itself an assertion. Inside `guarded` these
// end the body with OPSTORE_DAMAGED; outside they keep their meaning.
#pragma once

#include <csetjmp>

#include "platform/errcode.h"

namespace fault_guard {

// Where a fault continues; null outside a guarded body.
extern sigjmp_buf *landing;

// Installs the handlers, once.
void install();

// Ends the guarded body as a fault would.
[[noreturn]] void abandon();

namespace detail {

// Restores the landing at the end of its scope, whichever way that is left.
class keep_landing {
public:
    keep_landing() = default;
    ~keep_landing() { landing = kept_; }
    keep_landing(const keep_landing &) = delete;
    keep_landing &operator=(const keep_landing &) = delete;

private:
    sigjmp_buf *kept_ = landing;
};

}  // namespace detail

// Runs `body`, which returns an errcode; an exception passes through. A fault abandons it where it is, so it must
// not own anything that a destructor would have to release, and LMDB must not be called again afterwards.
template <class Body>
[[nodiscard]] errcode guarded(Body body) {
    sigjmp_buf here;
    const detail::keep_landing outer;
    if (sigsetjmp(here, 0) != 0) {
        return OPSTORE_DAMAGED;
    }
    landing = &here;
    return body();
}

}  // namespace fault_guard
