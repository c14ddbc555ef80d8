// Whether the store can be read at all. See platform/opstore.h.
#include <string>
#include <unistd.h>

#include "base/pm_output.h"
#include "platform/local/store.h"
#include "platform/local/store_access.h"
#include "platform/opstore.h"

namespace {

// Tells once who may read a store that this user may not.
void report_access(const char *folder) {
    static bool reported = false;
    const std::string problem = reported ? "" : store::access_problem(folder);
    if (!problem.empty()) {
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
    report_access(folder);
    return ::access((std::string(folder) + "/data.mdb").c_str(), R_OK) == 0;
}
