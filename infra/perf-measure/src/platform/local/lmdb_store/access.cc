// SPDX-License-Identifier: Apache-2.0
// Who may read the store in a folder.
#include <cerrno>
#include <cstdio>
#include <grp.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/errcode.h"
#include "platform/local/lmdb_store/data_file.h"
#include "platform/local/lmdb_store/lmdb_reader.h"

namespace lmdb_store {

namespace {

// Name of a group, or its number. Reads the group file itself: the name service would need
// modules at run time that a static program does not have.
std::string group_name(gid_t id) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::fopen("/etc/group", "re"), std::fclose);
    while (file != nullptr) {
        const struct group *entry = fgetgrent(file.get());
        if (entry == nullptr) {
            break;
        }
        if (entry->gr_gid == id) {
            return entry->gr_name;
        }
    }
    return std::to_string(id);
}

pm_error denial(const std::string &folder, const std::string &file) {
    std::string text = file + ": Permission denied";
    struct stat status {};
    if (::stat(folder.c_str(), &status) == 0) {
        text += "; the store may be read by members of group " + group_name(status.st_gid);
    }
    return pm_error(OPSTORE_NO_CLIENT, std::move(text));
}

}  // namespace

store::access_state check_access(const std::string &folder) {
    const std::string data = file_in(folder, DATA_FILE);
    const std::string lock = file_in(folder, LOCK_FILE);
    if (::access(data.c_str(), R_OK) != 0) {
        return {false, errno == EACCES ? denial(folder, data) : pm_error()};
    }
    const bool denied = ::access(lock.c_str(), R_OK | W_OK) != 0 && errno == EACCES;  // readers register there
    return {true, denied ? denial(folder, lock) : pm_error()};
}

}  // namespace lmdb_store
