// SPDX-License-Identifier: Apache-2.0
// Written without a name, where the file system can, then named, then renamed.
#include "perf-measure/metrics/replaced_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace perf_measure {

namespace {

constexpr mode_t FOR_EVERYONE = 0644;

pm_error system_error(const std::string &path) {
    return pm_error("cannot write " + path + ": " + std::strerror(errno));
}

std::string folder_of(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// Gives a file that has no name one.
bool name_file(int file, const std::string &name) {
    ::unlink(name.c_str());  // of a run that was killed
    const std::string itself = "/proc/self/fd/" + std::to_string(file);
    return ::linkat(AT_FDCWD, itself.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

// The new name is on the disk when its folder is.
bool sync_folder(const std::string &folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool is_synced = descriptor >= 0 && ::fsync(descriptor) == 0;
    ::close(descriptor);
    return is_synced;
}

}  // namespace

pm_error replace_file(const std::string &path, const std::function<pm_error(int descriptor)> &write) {
    const std::string folder = folder_of(path);
    const std::string fresh = path + ".new";
    int file = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, FOR_EVERYONE);
    const bool has_name = file < 0 && (errno == EOPNOTSUPP || errno == EISDIR);
    if (has_name) {
        ::unlink(fresh.c_str());
        file = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, FOR_EVERYONE);
    }
    if (file < 0) {
        return system_error(path);
    }
    pm_error error = write(file);
    // The mode is what it is whatever the umask.
    if (!error && (::fchmod(file, FOR_EVERYONE) != 0 || ::fsync(file) != 0 || (!has_name && !name_file(file, fresh)) ||
                   ::rename(fresh.c_str(), path.c_str()) != 0 || !sync_folder(folder))) {
        error = system_error(path);
    }
    ::close(file);
    if (error) {
        ::unlink(fresh.c_str());
    }
    return error;
}

}  // namespace perf_measure
