// SPDX-License-Identifier: Apache-2.0
// The check of the store, before a show would say less.
#include "perf-measure/command_line/store_check.h"

#include "platform/local/back_ends/readers.h"
#include "platform/local/store/store_url.h"

namespace perf_measure {

std::string check_store() {
    const store::access_state access = store::check_access();
    if (access.readable) {
        return {};
    }
    if (access.denial) {
        return access.denial.text();
    }
    return std::string("there is no store at ") + store::configured_url() +
           "; OPSTORE_URL names another, or make this one with: perf-store load FILE";
}

}  // namespace perf_measure
