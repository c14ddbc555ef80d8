// SPDX-License-Identifier: Apache-2.0
// Records into sealed values.
#include "platform/local/store/record_encoder.h"

#include <string>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/store/seal.h"
#include "platform/local/store/writer.h"

namespace store {

pm_error record_encoder::encode(std::string_view key, const void *record, const parcel_descriptor *descriptor) {
    parcel_.clear();
    if (const errcode code = parcel_encode(record, descriptor, &parcel_); code != ERRCODE_SUCCESS) {
        return pm_error(code, code == ERRCODE_RANGE ? std::string(TOO_DEEP)
                                                    : std::string(descriptor->name) + ": " + errcode_strerror(code));
    }
    seal(key, {reinterpret_cast<const char *>(parcel_.data()), parcel_.size()}, &value_);
    return {};
}

}  // namespace store
