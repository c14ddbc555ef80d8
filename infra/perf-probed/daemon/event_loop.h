// SPDX-License-Identifier: Apache-2.0
// Waits for file descriptors and a deadline on the monotonic clock, and calls whoever asked for them.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "perf-probed/schedule/clocks.h"

namespace probed {

class event_loop {
public:
    event_loop();
    ~event_loop();
    event_loop(const event_loop &) = delete;
    event_loop &operator=(const event_loop &) = delete;

    // Calls `ready` whenever there is something to read, or an error to fetch. Replaces what was asked for before.
    void watch(int fd, std::function<void()> ready);
    // The descriptor is about to be closed.
    void forget(int fd);
    // Waits until something is ready or the time `until`, but for `least` nanoseconds in any case, and calls for what
    // is ready then. None: waits for ever.
    void wait(std::optional<mono_nsec> until, mono_nsec now, mono_nsec least = 0);

private:
    int epoll_;
    std::map<int, std::function<void()>> watched_;
};

}  // namespace probed
