// See store_access.h.
#include "platform/local/lmdb_store/store_access.h"

#include <cerrno>
#include <cstdio>
#include <grp.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace store {

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

std::string denial(const std::string &folder, const std::string &file) {
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0) {
        return file + ": Permission denied";
    }
    return file + ": Permission denied; the store may be read by members of group " + group_name(status.st_gid);
}

}  // namespace

access_state check_access(const std::string &folder) {
    const std::string data = folder + "/data.mdb";
    const std::string lock = folder + "/lock.mdb";
    if (::access(data.c_str(), R_OK) != 0) {
        return {false, errno == EACCES ? denial(folder, data) : ""};
    }
    const bool denied = ::access(lock.c_str(), R_OK | W_OK) != 0 && errno == EACCES;  // readers register there
    return {true, denied ? denial(folder, lock) : ""};
}

}  // namespace store
