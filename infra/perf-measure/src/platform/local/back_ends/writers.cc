// SPDX-License-Identifier: Apache-2.0
// The back ends that can be written, by the scheme of their URLs.
#include "platform/local/back_ends/writers.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "platform/errcode.h"
#include "platform/local/lmdb_store/lmdb_writer.h"
#include "platform/local/redis_store/redis_writer.h"
#include "platform/local/store/store_url.h"

namespace store {

namespace {

struct back_end {
    std::string_view scheme;
    bool whole_url;  // else open() takes the place that follows the scheme
    pm_error (*open)(const std::string &place, missing_store missing, std::unique_ptr<writer> *out);
};
constexpr back_end BACK_ENDS[] = {
    {"lmdb", false, lmdb_store::open_writer},
    {"redis", true, redis_store::open_writer},
    {"rediss", true, redis_store::open_writer},
    {"redis+unix", true, redis_store::open_writer},
};

}  // namespace

pm_error open_writer(const char *url, missing_store missing, std::unique_ptr<writer> *out) {
    const auto *known = std::find_if(std::begin(BACK_ENDS), std::end(BACK_ENDS),
                                     [&](const back_end &each) { return each.scheme == scheme_of(url); });
    if (known == std::end(BACK_ENDS)) {
        return pm_error(OPSTORE_NO_CLIENT,
                        std::string(url) + ": a store is named lmdb:FOLDER, redis://HOST or redis+unix:///SOCKET");
    }
    return known->open(std::string(known->whole_url ? url : place_of(url)), missing, out);
}

}  // namespace store
