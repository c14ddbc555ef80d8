// SPDX-License-Identifier: Apache-2.0
// The datagram to the service manager.
#include "perf-probed/daemon/service_manager.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace probed {

void notify_manager(const std::string &state) {
    const char *const name = std::getenv("NOTIFY_SOCKET");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name == nullptr || std::strlen(name) >= sizeof address.sun_path || (name[0] != '/' && name[0] != '@')) {
        return;
    }
    const std::size_t length = std::strlen(name);
    std::memcpy(address.sun_path, name, length);
    if (name[0] == '@') {
        address.sun_path[0] = '\0';
    }
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket >= 0) {
        const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length);
        sendto(socket, state.data(), state.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr *>(&address), size);
        close(socket);
    }
}

mono_nsec watchdog_interval() {
    constexpr mono_nsec LONGEST = 24 * 3600 * NSEC_PER_SEC;
    const char *const usec = std::getenv("WATCHDOG_USEC");
    const char *const pid = std::getenv("WATCHDOG_PID");
    if (usec == nullptr || (pid != nullptr && std::atoll(pid) != getpid())) {
        return 0;
    }
    return std::clamp<mono_nsec>(std::atoll(usec), 0, LONGEST / NSEC_PER_USEC) * NSEC_PER_USEC;
}

}  // namespace probed
