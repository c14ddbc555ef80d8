// SPDX-License-Identifier: Apache-2.0
// The record type that someone may have meant.
#pragma once

#include <string>
#include <string_view>

#include "perf-store/datasets/nearest_word.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

// As did_you_mean.
[[nodiscard]] inline std::string nearest_type(std::string_view given) {
    return did_you_mean(given, pm_descriptors(), [](const parcel_descriptor *type) { return type->name; });
}

}  // namespace perf_store
