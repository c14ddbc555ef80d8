// SPDX-License-Identifier: Apache-2.0
// The loop over epoll.
#include "perf-probed/daemon/event_loop.h"

#include <algorithm>
#include <ctime>
#include <sys/epoll.h>
#include <unistd.h>

namespace probed {

event_loop::event_loop() : epoll_(epoll_create1(EPOLL_CLOEXEC)) {}

event_loop::~event_loop() { close(epoll_); }

void event_loop::watch(int fd, std::function<void()> ready) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = fd;
    if (epoll_ctl(epoll_, EPOLL_CTL_ADD, fd, &event) != 0) {
        epoll_ctl(epoll_, EPOLL_CTL_MOD, fd, &event);
    }
    watched_[fd] = std::move(ready);
}

void event_loop::forget(int fd) {
    epoll_ctl(epoll_, EPOLL_CTL_DEL, fd, nullptr);
    watched_.erase(fd);
}

void event_loop::wait(std::optional<mono_nsec> until, mono_nsec now, mono_nsec least) {
    constexpr int MOST_EVENTS = 64;
    epoll_event events[MOST_EVENTS];
    std::timespec timeout{0, least};
    if (least > 0) {
        nanosleep(&timeout, nullptr);
    }
    if (until) {
        const mono_nsec left = std::max<mono_nsec>(*until - now - least, 0);
        timeout = {left / NSEC_PER_SEC, left % NSEC_PER_SEC};
    }
    const int count = epoll_pwait2(epoll_, events, MOST_EVENTS, until ? &timeout : nullptr, nullptr);
    for (int index = 0; index < count; ++index) {
        const auto found = watched_.find(events[index].data.fd);
        if (found != watched_.end()) {
            const std::function<void()> ready = found->second;  // it may forget itself
            ready();
        }
    }
}

}  // namespace probed
