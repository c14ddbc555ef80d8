// SPDX-License-Identifier: Apache-2.0
// A reading of a whole store that goes on where something is wrong: what is there, and what is lost.
#pragma once

#include <string>
#include <string_view>

#include "platform/local/store/record_key.h"

namespace store {

// Takes what a back end finds, in the order of the keys.
class inspector {
public:
    virtual ~inspector() = default;
    // A record, by its key of record_key.h. The value is a schema's text, else a parcel; it is empty when the value
    // there is not the key's. Both views are valid within the call.
    virtual void record(key_space kind, std::string_view key, std::string_view value) = 0;
    // Something that is wrong or missing, in one line without the store's name.
    virtual void loss(const std::string &what) = 0;
};

}  // namespace store
