// Whether the store can be read at all. See platform/opstore.h.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <grp.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "base/pm_output.h"
#include "platform/local/store.h"
#include "platform/opstore.h"

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

// Tells once who may read a store that this user may not.
void report_permission(const char *folder, const std::string &file) {
    static bool reported = false;
    if (reported) {
        return;
    }
    reported = true;
    struct stat status {};
    if (::stat(folder, &status) != 0) {
        pm_print_error<"perf-show: %s: Permission denied\n">(folder);
        return;
    }
    const std::string group = group_name(status.st_gid);
    pm_print_error<"perf-show: %s: Permission denied; the store may be read by members of group %s\n">(file.c_str(),
                                                                                                     group.c_str());
}

}  // namespace

bool opstore_client_present() {
    const char *folder = store::folder_of(store::configured_url());
    if (folder == nullptr) {
        return false;
    }
    const std::string data = std::string(folder) + "/data.mdb";
    const bool readable = ::access(data.c_str(), R_OK) == 0;
    if (!readable && errno == EACCES) {
        report_permission(folder, data);
    }
    return readable;
}
