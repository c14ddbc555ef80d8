// Whether the store can be read at all, and its opening.
#include "platform/local/answers/store_client.h"
#include "base/pm_output.h"
#include "platform/local/back_ends/readers.h"
#include "platform/opstore.h"

namespace {

// Tells once who may read a store that this user may not.
void report(const pm_error &denial) {
    static bool reported = false;
    if (!reported && !denial.text().empty()) {
        reported = true;
        pm_print_error<"perf-show: %s\n">(denial.text().c_str());
    }
}

}  // namespace

bool opstore_client_present() {
    const store::access_state access = store::check_access();
    report(access.denial);
    return access.readable;
}

namespace store_client {

errcode open(store::reader **out) {
    const pm_error error = store::shared_reader(out);
    report(error);
    return error.code();
}

errcode decode(std::string_view parcel, void *record, const parcel_descriptor *descriptor) {
    return parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), record, descriptor);
}

}  // namespace store_client
