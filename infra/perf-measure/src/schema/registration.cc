// SPDX-License-Identifier: Apache-2.0
// Registers all descriptors of the catalogue with the codec.
#include "schema/registration.h"

errcode pm_register_parcels(std::span<const parcel_descriptor *const> descriptors) {
    if (const errcode error = parcel_register_start(); error != ERRCODE_SUCCESS) {
        return error;
    }
    for (const parcel_descriptor *descriptor : descriptors) {
        if (const errcode error = parcel_register(descriptor); error != ERRCODE_SUCCESS) {
            parcel_register_abort();
            return error;
        }
    }
    return parcel_register_end();
}
