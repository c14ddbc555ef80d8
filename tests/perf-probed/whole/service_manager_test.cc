// SPDX-License-Identifier: Apache-2.0
// What the service manager is told, and that it accepts the unit.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <vector>

#include "tests/perf-probed/support/live.h"

namespace {

// The socket that a service manager names in the environment.
class manager_socket {
public:
    manager_socket() : fd_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(bind(fd_, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    }
    ~manager_socket() { close(fd_); }
    manager_socket(const manager_socket &) = delete;
    manager_socket &operator=(const manager_socket &) = delete;

    [[nodiscard]] std::string path() const { return folder_.path() + "/notify"; }
    // The next message; empty when none comes in time.
    std::string next(int msec = 5000) {
        char text[512];
        pollfd waiting{fd_, POLLIN, 0};
        if (poll(&waiting, 1, msec) != 1) {
            return "";
        }
        const ssize_t size = recv(fd_, text, sizeof text, 0);
        return {text, static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
    }

private:
    temporary_folder folder_;
    int fd_;
};

constexpr char SELF[] = "node: {name: h, id: 1}\nreflector: {listen: [{address: 127.0.0.1, port: 18720}]}\n";

TEST(service_manager, is_told_of_the_start_each_reload_and_the_end) {
    manager_socket manager;
    live_service service(SELF, "env NOTIFY_SOCKET=" + manager.path());
    EXPECT_EQ(manager.next(), "READY=1");
    service.process().signal(SIGHUP);
    EXPECT_TRUE(manager.next().starts_with("RELOADING=1\nMONOTONIC_USEC="));
    EXPECT_EQ(manager.next(), "READY=1");
    EXPECT_EQ(manager.next(2500), "");  // nobody asked for signs of life
    EXPECT_EQ(service.process().end(), 0);
    EXPECT_EQ(manager.next(), "STOPPING=1");
}

TEST(service_manager, gets_the_signs_of_life_that_it_asks_for) {
    manager_socket manager;
    live_service service(SELF, "env WATCHDOG_USEC=3000000 NOTIFY_SOCKET=" + manager.path());
    EXPECT_EQ(manager.next(), "READY=1");
    for (int signs = 0; signs < 3; ++signs) {
        EXPECT_EQ(manager.next(3000), "WATCHDOG=1");
    }
    service.process().signal(SIGSTOP);  // a process that hangs gives none
    while (!manager.next(200).empty()) {
    }
    EXPECT_EQ(manager.next(3000), "");
}

TEST(service_manager, does_not_get_signs_of_life_that_are_another_processs) {
    manager_socket manager;
    live_service service(SELF, "env WATCHDOG_PID=1 WATCHDOG_USEC=3000000 NOTIFY_SOCKET=" + manager.path());
    EXPECT_EQ(manager.next(), "READY=1");
    EXPECT_EQ(manager.next(2500), "");
}

TEST(service_manager, accepts_the_unit_without_a_warning) {
    const temporary_folder folder;
    if (run_command("command -v systemd-analyze", folder.path()).status != 0) {
        GTEST_SKIP() << "systemd-analyze is not installed";
    }
    std::string unit = read_file(PM_PROBED_UNIT);
    const std::string installed = "/usr/sbin/perf-probed";
    const std::size_t at = unit.find(installed);
    ASSERT_NE(at, std::string::npos);
    unit.replace(at, installed.size(), PERF_PROBED);  // a program that is not there is refused
    const std::string file = folder.path() + "/perf-probed.service";
    write_file(file, unit);
    const command_result accepted = run_command("systemd-analyze verify --man=no " + file, folder.path());
    EXPECT_EQ(accepted.status, 0);
    EXPECT_EQ(accepted.out + accepted.err, "");
    // An unknown key is nothing but a warning, so the output is what counts.
    write_file(file, unit + "[Service]\nNoSuchKey=yes\n");
    EXPECT_NE(run_command("systemd-analyze verify --man=no " + file, folder.path()).err.find("NoSuchKey"),
              std::string::npos);
}

}  // namespace
