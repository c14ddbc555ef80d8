// SPDX-License-Identifier: Apache-2.0
// Takes the store's URL apart.
#include "platform/local/store/store_url.h"

#include <cstdlib>

#include "platform/errcode.h"

namespace store {

bool is_url_given() {
    const char *url = std::getenv("OPSTORE_URL");
    return url != nullptr && *url != '\0';
}

const char *configured_url() { return is_url_given() ? std::getenv("OPSTORE_URL") : DEFAULT_URL; }

std::string_view scheme_of(std::string_view url) {
    const std::size_t colon = url.find(':');
    return colon == std::string_view::npos || colon + 1 == url.size() ? std::string_view() : url.substr(0, colon);
}

std::string_view place_of(std::string_view url) { return url.substr(url.find(':') + 1); }

std::string describe(const pm_error &error, std::string_view url) {
    return error.text().empty() ? std::string(url) + ": " + errcode_strerror(error.code()) : error.text();
}

std::string describe(const pm_error &error) {
    const std::string text = describe(error, configured_url());
    return is_url_given() ? text : text + " (OPSTORE_URL is not set; it names another store, as lmdb:FOLDER)";
}

}  // namespace store
