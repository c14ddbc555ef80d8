// The check of the store, before a show would say less.
#include "perf-measure/command_line/store_check.h"

#include <cstdlib>
#include <unistd.h>

#include "platform/local/lmdb_store/store.h"
#include "platform/local/lmdb_store/store_access.h"

namespace perf_measure {

std::string check_store() {
    const std::string url = store::configured_url();
    const char *const folder = store::folder_of(url.c_str());
    if (folder == nullptr) {
        return "OPSTORE_URL is '" + url + "', which names no store: it should be lmdb:FOLDER";
    }
    const store::access_state access = store::check_access(folder);
    if (access.data_readable) {
        return {};
    }
    if (!access.problem.empty()) {
        return access.problem;
    }
    return "there is no store at " + url + "; OPSTORE_URL names another, or make this one with: perf-store load FILE";
}

}  // namespace perf_measure
