// SPDX-License-Identifier: Apache-2.0
// A file system of a few megabytes that only the calling process and its children see. For child processes of tests.
#pragma once

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

// Enters a mount namespace of this process's own, as root or as root of a user namespace. False with errno.
inline bool enter_mount_namespace() {
    const std::string user = "0 " + std::to_string(::geteuid()) + " 1";
    const std::string group = "0 " + std::to_string(::getegid()) + " 1";
    if (::unshare(CLONE_NEWNS) != 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return false;
        }
        for (const auto &[file, text] : {std::pair{"/proc/self/setgroups", std::string("deny")},
                                         {"/proc/self/uid_map", user},
                                         {"/proc/self/gid_map", group}}) {
            const int map = ::open(file, O_WRONLY | O_CLOEXEC);
            const bool written =
                map >= 0 && ::write(map, text.data(), text.size()) == static_cast<ssize_t>(text.size());
            const int reason = errno;
            ::close(map);
            if (!written) {
                errno = reason;
                return false;
            }
        }
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

// Puts an empty file system in the place of a folder; `options` say its size, as "size=3m". False with errno.
inline bool mount_small_disk(const std::string &folder, const std::string &options) {
    return enter_mount_namespace() && ::mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

// Why that cannot be done here, tried in another process; 0 when it can.
inline int reason_against_a_small_disk(const std::string &folder) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(mount_small_disk(folder, "size=1m") ? 0 : errno);
    }
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : EAGAIN;
}
