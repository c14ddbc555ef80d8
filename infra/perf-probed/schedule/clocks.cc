// SPDX-License-Identifier: Apache-2.0
// The system's clocks.
#include "perf-probed/schedule/clocks.h"

#include <ctime>

namespace probed {
namespace {

constexpr mono_nsec CLOSE_ENOUGH = 2 * NSEC_PER_USEC;
constexpr int MOST_TRIES = 4;

std::int64_t read_clock(clockid_t clock) {
    std::timespec time{};
    clock_gettime(clock, &time);
    return time.tv_sec * NSEC_PER_SEC + time.tv_nsec;
}

}  // namespace

moment system_clocks::now() const {
    moment best;
    mono_nsec least = 0;
    mono_nsec before = read_clock(CLOCK_MONOTONIC);
    for (int tries = 0; tries < MOST_TRIES; ++tries) {
        const wall_nsec wall = read_clock(CLOCK_REALTIME);
        const mono_nsec after = read_clock(CLOCK_MONOTONIC);
        if (tries == 0 || after - before < least) {
            least = after - before;
            best = {before + least / 2, wall};
        }
        if (least <= CLOSE_ENOUGH) {
            break;
        }
        before = after;
    }
    return best;
}

}  // namespace probed
