// Registers all descriptors of the catalogue with the codec.
#include "schema/registration.h"

errcode pm_register_parcels(std::span<const parcel_descriptor *const> descriptors) {
    if (const errcode failure = parcel_register_start(); failure != ERRCODE_SUCCESS) {
        return failure;
    }
    for (const parcel_descriptor *descriptor : descriptors) {
        if (const errcode failure = parcel_register(descriptor); failure != ERRCODE_SUCCESS) {
            parcel_register_abort();
            return failure;
        }
    }
    return parcel_register_end();
}
