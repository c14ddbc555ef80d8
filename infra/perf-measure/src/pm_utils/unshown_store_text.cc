// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_store_text.h"

#include <cstddef>
#include <cstdlib>

#include "platform/opstore.h"

errcode pm_opstore_string_decode(const char *encoded, char **out) {
    *out = nullptr;
    if (encoded == nullptr) {
        return ERRCODE_SUCCESS;
    }
    std::size_t length = 0;
    const errcode error = opstore_string_decode(encoded, out, &length);
    if (error != ERRCODE_SUCCESS) {  // a failed decode may leave a text
        std::free(*out);
        *out = nullptr;
    }
    return error;
}
