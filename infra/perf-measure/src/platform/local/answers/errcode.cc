// SPDX-License-Identifier: Apache-2.0
// Texts of error codes.
#include "platform/errcode.h"

namespace {

struct code_text {
    errcode code;
    const char *text;
};

constexpr code_text TEXTS[] = {
    {ERRCODE_SUCCESS, "Success"},
    {ERRCODE_NOT_FOUND, "Item not found"},
    {ERRCODE_NO_MEMORY, "Not enough memory"},
    {ERRCODE_INVALID_ARGUMENT, "Invalid argument"},
    {ERRCODE_RANGE, "Value too large"},
    {OPSTORE_NOT_PUBLISHED, "Not published on this node"},
    {OPSTORE_UNREACHABLE, "Publisher unreachable"},
    {OPSTORE_STARTING, "Publisher starting"},
    {OPSTORE_STOPPED, "Publisher stopped"},
    {OPSTORE_NO_CLIENT, "Store client not available"},
    {OPSTORE_DAMAGED, "Store is damaged"},
    {OPSTORE_BUSY, "Store has no free reader slot"},
    {PARCEL_MALFORMED, "Malformed parcel"},
    {PARCEL_CHECKSUM, "Parcel checksum mismatch"},
    {PARCEL_OTHER_TYPE, "Parcel holds another record type"},
    {PARCEL_UNKNOWN_SCHEMA, "Parcel schema unknown"},
    {PARCEL_SCHEMA_CHANGED, "Parcel schema changed incompatibly"},
    {PARCEL_BAD_DESCRIPTOR, "Parcel descriptor inconsistent"},
};

}  // namespace

const char *errcode_strerror(errcode code) {
    for (const code_text &each : TEXTS) {
        if (each.code == code) {
            return each.text;
        }
    }
    return "Unknown error";
}
