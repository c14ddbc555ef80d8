// SPDX-License-Identifier: Apache-2.0
// Whether the store can be read at all, and its opening.
#include "platform/local/answers/store_client.h"

#include <unistd.h>

#include "base/pm_output.h"
#include "platform/errcode.h"
#include "platform/local/back_ends/readers.h"
#include "platform/local/store/store_url.h"
#include "platform/opstore.h"

namespace {

// Tells once why the store cannot be read: to everyone who may read a store that this user may not; to a person at a
// terminal also which store was tried, for what follows is the same text for every path that is wrong.
void report(const pm_error &error) {
    static bool reported = false;
    if (reported || !error) {
        return;
    }
    reported = true;
    if (!error.text().empty()) {
        pm_print_error<"perf-show: %s\n">(error.text().c_str());
    } else if (::isatty(STDERR_FILENO) == 1) {
        const char *const why =
            error.code() == OPSTORE_NO_CLIENT ? "there is no store" : errcode_strerror(error.code());
        pm_print_error<"perf-show: %s: %s (OPSTORE_URL names another, as lmdb:FOLDER)\n">(store::configured_url(), why);
    }
}

}  // namespace

bool opstore_client_present() {
    const store::access_state access = store::check_access();
    report(access.readable || access.denial ? access.denial : pm_error(OPSTORE_NO_CLIENT));
    return access.readable;
}

namespace store_client {

errcode open(store::reader **out) {
    const pm_error error = store::shared_reader(out);
    report(error);
    return error.code();
}

void report_unreadable(const char *what, errcode code) {
    static bool reported = false;
    const bool expected = code == ERRCODE_SUCCESS || code == ERRCODE_NOT_FOUND || code == OPSTORE_NO_CLIENT;
    if (!reported && !expected) {
        reported = true;
        pm_print_error<"perf-show: %s: %s (0x%x)\n">(what, errcode_strerror(code), code);
    }
}

errcode decode(std::string_view parcel, void *record, const parcel_descriptor *descriptor) {
    return parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), record, descriptor);
}

}  // namespace store_client
