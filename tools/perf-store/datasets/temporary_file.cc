// SPDX-License-Identifier: Apache-2.0
#include "perf-store/datasets/temporary_file.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace perf_store {

std::string temporary_folder_name() {
    const char *const named = std::getenv("TMPDIR");
    return named != nullptr && *named != '\0' ? named : "/tmp";
}

pm_error temporary_file_error(int error_number) {
    return pm_error(temporary_folder_name() + ": " + std::strerror(error_number));
}

// Some file systems need a name for a moment.
pm_error open_temporary_file(int *file) {
    const std::string folder = temporary_folder_name();
    *file = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC | O_EXCL, 0600);
    if (*file >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)) {
        return *file >= 0 ? pm_error() : temporary_file_error(errno);
    }
    std::string name = folder + "/perf-XXXXXX";
    *file = ::mkostemp(name.data(), O_CLOEXEC);
    return *file >= 0 && ::unlink(name.c_str()) == 0 ? pm_error() : temporary_file_error(errno);
}

}  // namespace perf_store
