// SPDX-License-Identifier: Apache-2.0
// The back ends that can be read, by the scheme of their URLs.
#include "platform/local/back_ends/readers.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>

#include "platform/errcode.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/lmdb_store/inspect.h"
#include "platform/local/lmdb_store/lmdb_reader.h"
#include "platform/local/redis_store/inspect.h"
#include "platform/local/redis_store/redis_reader.h"
#include "platform/local/store/store_url.h"

namespace store {

namespace {

struct back_end {
    std::string_view scheme;
    // All take the place that follows the scheme, or of a back end that opens to see what it may read (it has no
    // check_access) the whole URL.
    pm_error (*open)(const std::string &place, std::unique_ptr<reader> *out);
    access_state (*check_access)(const std::string &place);
    pm_error (*inspect)(const std::string &place, inspector *to);
};
constexpr back_end BACK_ENDS[] = {
    {"lmdb", lmdb_store::open_reader, lmdb_store::check_access, lmdb_store::inspect},
    {"redis", redis_store::open_reader, nullptr, redis_store::inspect},
    {"rediss", redis_store::open_reader, nullptr, redis_store::inspect},
    {"redis+unix", redis_store::open_reader, nullptr, redis_store::inspect},
};

// Null for a URL that no back end takes.
const back_end *find_back_end(std::string_view url) {
    const auto *found = std::find_if(std::begin(BACK_ENDS), std::end(BACK_ENDS),
                                     [&](const back_end &each) { return each.scheme == scheme_of(url); });
    return found != std::end(BACK_ENDS) ? found : nullptr;
}

// A store that was asked for.
struct shared_store {
    std::unique_ptr<reader> opened;
    pm_error refused;  // that would be refused again, or only after another wait
};
using shared_stores = std::map<std::string, shared_store, std::less<>>;

// By their URLs. Never closed: exit has nothing to wait for.
shared_stores &stores() {
    static auto *const the_stores = new shared_stores;
    return *the_stores;
}

// The schema source of the parcel codec: a store keeps schemas by their fingerprint, which is the same in all.
bool read_schema(std::uint64_t fingerprint, std::string *schema) {
    return std::ranges::any_of(stores(), [&](const auto &each) {
        return each.second.opened != nullptr && !each.second.opened->schema(fingerprint, schema);
    });
}

}  // namespace

pm_error shared_reader(const std::string &url, reader **out) {
    shared_store &wanted = stores()[url];
    if (wanted.opened == nullptr) {
        const back_end *known = find_back_end(url);
        if (known == nullptr || wanted.refused) {
            return known == nullptr ? pm_error(OPSTORE_NO_CLIENT) : wanted.refused;
        }
        const bool whole_url = known->check_access == nullptr;
        std::unique_ptr<reader> opened;
        if (pm_error error = known->open(std::string(whole_url ? url : place_of(url)), &opened)) {
            wanted.refused = error.code() == OPSTORE_DAMAGED || whole_url ? error : pm_error();
            return error;
        }
        wanted.opened = std::move(opened);
        parcel_set_schema_source(read_schema);
    }
    *out = wanted.opened.get();
    return {};
}

pm_error shared_reader(reader **out) {
    static reader *configured = nullptr;
    if (configured == nullptr) {
        if (pm_error error = shared_reader(configured_url(), &configured)) {
            return error;
        }
    }
    *out = configured;
    return {};
}

bool is_store_url(std::string_view url) { return find_back_end(url) != nullptr; }

access_state check_access() {
    const std::string_view url = configured_url();
    const back_end *known = find_back_end(url);
    if (known == nullptr) {
        return {};
    }
    if (known->check_access == nullptr) {
        reader *ignored = nullptr;
        const pm_error error = shared_reader(&ignored);
        return {error.code() != OPSTORE_NO_CLIENT,
                error.text().empty() || error.code() != OPSTORE_NO_CLIENT ? pm_error() : error};
    }
    return known->check_access(std::string(place_of(url)));
}

pm_error inspect(inspector *to) {
    const std::string_view url = configured_url();
    const back_end *known = find_back_end(url);
    if (known == nullptr) {
        return pm_error(OPSTORE_NO_CLIENT);
    }
    return known->inspect(std::string(known->check_access == nullptr ? url : place_of(url)), to);
}

}  // namespace store
