// Whether the store can be read at all. See platform/opstore.h.
#include <string>

#include "base/pm_output.h"
#include "platform/local/lmdb_store/store.h"
#include "platform/local/lmdb_store/store_access.h"
#include "platform/opstore.h"

namespace {

// Tells once who may read a store that this user may not.
void report(const std::string &problem) {
    static bool reported = false;
    if (!reported && !problem.empty()) {
        reported = true;
        pm_print_error<"perf-show: %s\n">(problem.c_str());
    }
}

}  // namespace

bool opstore_client_present() {
    const char *folder = store::folder_of(store::configured_url());
    if (folder == nullptr) {
        return false;
    }
    const store::access_state access = store::check_access(folder);
    report(access.problem);
    return access.data_readable;
}
