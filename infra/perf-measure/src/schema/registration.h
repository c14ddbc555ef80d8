// SPDX-License-Identifier: Apache-2.0
// Registration of a run of record types with the parcel codec, all or nothing.
#pragma once

#include <span>

#include "platform/parcel.h"

// Registers the descriptors in their order in one transaction. The first failure aborts the
// transaction and is returned; nothing of the run stays registered.
[[nodiscard]] errcode pm_register_parcels(std::span<const parcel_descriptor *const> descriptors);
