// SPDX-License-Identifier: Apache-2.0
// Registration: which record types this process serves, one descriptor for each name.
#include <algorithm>
#include <vector>

#include "platform/local/codec/parcel_codec.h"

namespace {

using descriptors = std::vector<const parcel_descriptor *>;

struct type_registry {
    descriptors registered;
    descriptors pending;  // of the open transaction
    bool open = false;
};

type_registry &registry() {
    static type_registry the_registry;
    return the_registry;
}

const parcel_descriptor *find(const descriptors &in, std::string_view name) {
    const auto found =
        std::find_if(in.begin(), in.end(), [&](const parcel_descriptor *each) { return name == each->name; });
    return found != in.end() ? *found : nullptr;
}

}  // namespace

errcode parcel_register_start() {
    if (registry().open) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    registry().open = true;
    return ERRCODE_SUCCESS;
}

errcode parcel_register(const parcel_descriptor *descriptor) {
    if (!registry().open || descriptor == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    for (const descriptors *known : {&registry().registered, &registry().pending}) {
        if (const parcel_descriptor *same = find(*known, descriptor->name); same != nullptr) {
            return same == descriptor ? ERRCODE_SUCCESS : ERRCODE_INVALID_ARGUMENT;
        }
    }
    if (const errcode error = parcel_prepare(descriptor); error != ERRCODE_SUCCESS) {
        return error;
    }
    registry().pending.push_back(descriptor);
    return ERRCODE_SUCCESS;
}

errcode parcel_register_end() {
    if (!registry().open) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    descriptors &registered = registry().registered;
    registered.insert(registered.end(), registry().pending.begin(), registry().pending.end());
    parcel_register_abort();
    return ERRCODE_SUCCESS;
}

void parcel_register_abort() {
    registry().pending.clear();
    registry().open = false;
}

const parcel_descriptor *parcel_registered(std::string_view name) { return find(registry().registered, name); }
