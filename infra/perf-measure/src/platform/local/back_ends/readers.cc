// SPDX-License-Identifier: Apache-2.0
// The back ends that can be read, by the scheme of their URLs.
#include "platform/local/back_ends/readers.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>

#include "platform/errcode.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/lmdb_store/lmdb_reader.h"
#include "platform/local/store/store_url.h"

namespace store {

namespace {

struct back_end {
    std::string_view scheme;
    pm_error (*open)(const std::string &place, std::unique_ptr<reader> *out);
    access_state (*check_access)(const std::string &place);
};
constexpr back_end BACK_ENDS[] = {
    {"lmdb", lmdb_store::open_reader, lmdb_store::check_access},
};

// Null for a URL that no back end takes.
const back_end *find_back_end(std::string_view url) {
    const auto *found = std::find_if(std::begin(BACK_ENDS), std::end(BACK_ENDS),
                                     [&](const back_end &each) { return each.scheme == scheme_of(url); });
    return found != std::end(BACK_ENDS) ? found : nullptr;
}

// The schema source of the parcel codec: the store keeps schemas by their fingerprint.
bool read_schema(std::uint64_t fingerprint, std::string *schema) {
    reader *opened = nullptr;
    return !shared_reader(&opened) && !opened->schema(fingerprint, schema);
}

}  // namespace

pm_error shared_reader(reader **out) {
    static reader *the_reader = nullptr;  // never closed: exit has nothing to wait for
    static errcode refused = ERRCODE_SUCCESS;
    if (the_reader == nullptr) {
        const std::string_view url = configured_url();
        const back_end *known = find_back_end(url);
        if (known == nullptr || refused != ERRCODE_SUCCESS) {
            return pm_error(known == nullptr ? OPSTORE_NO_CLIENT : refused);
        }
        std::unique_ptr<reader> opened;
        if (pm_error error = known->open(std::string(place_of(url)), &opened)) {
            refused = error.code() == OPSTORE_DAMAGED ? OPSTORE_DAMAGED : ERRCODE_SUCCESS;  // not opened a second time
            return error;
        }
        the_reader = opened.release();
        parcel_set_schema_source(read_schema);
    }
    *out = the_reader;
    return {};
}

access_state check_access() {
    const std::string_view url = configured_url();
    const back_end *known = find_back_end(url);
    return known != nullptr ? known->check_access(std::string(place_of(url))) : access_state{};
}

}  // namespace store
