// SPDX-License-Identifier: Apache-2.0
// The descriptions of record types that a process has made for JSON.
#include "perf-store/datasets/record_shape.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>

namespace perf_store {

type_shape::type_shape(const parcel_descriptor *descriptor) {
    if (const pm_error error = parcel_notation::describe(descriptor, &schema_)) {
        throw std::logic_error(std::string(descriptor->name) + ": " + error.text());
    }
}

const type_shape &shape_of(const parcel_descriptor *descriptor) {
    static std::unordered_map<const parcel_descriptor *, std::unique_ptr<type_shape>> shapes;
    std::unique_ptr<type_shape> &shape = shapes[descriptor];
    if (shape == nullptr) {
        shape = std::make_unique<type_shape>(descriptor);
    }
    return *shape;
}

}  // namespace perf_store
