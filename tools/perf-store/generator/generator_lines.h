// SPDX-License-Identifier: Apache-2.0
// The lines of a synthetic data set.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/pm_error.h"
#include "perf-store/datasets/output_file.h"
#include "platform/local/store/local_store_records.h"
#include "platform/parcel.h"

namespace perf_store {

// Writes the objects of a data set. After the first error nothing is written any more; whoever generates
// objects in a loop looks at good().
class generated_lines {
public:
    explicit generated_lines(output_file *out) : out_(*out) {}

    void version();
    void platform(const local_platform &record);
    void node(const local_node &record);
    void interface(std::uint32_t handle, const char *name);
    // An item of the root main.
    void item(std::uint32_t node, std::string_view path, const parcel_descriptor *type, const void *record);

    [[nodiscard]] bool good() const { return !error_; }
    // Writes what is left; the first error of all.
    [[nodiscard]] pm_error finish();

private:
    void written(pm_error error);

    output_file &out_;
    pm_error error_;
};

}  // namespace perf_store
