// SPDX-License-Identifier: Apache-2.0
// The data sets room writes the lines; the first error is kept here.
#include "perf-store/generator/generator_lines.h"

#include "perf-store/datasets/dataset_lines.h"

namespace perf_store {

// A line is complete: its error, or that of the file.
void generated_lines::written(pm_error error) {
    if (good()) {
        error_ = error ? std::move(error) : out_.flush_when_full();
    }
}

void generated_lines::version() {
    append_version_line(&out_.buffer());
    written({});
}

void generated_lines::platform(const local_platform &record) { written(append_platform_line(record, &out_.buffer())); }

void generated_lines::node(const local_node &record) { written(append_node_line(record, &out_.buffer())); }

void generated_lines::interface(std::uint32_t handle, const char *name) {
    written(append_interface_line(handle, {name}, &out_.buffer()));
}

void generated_lines::item(std::uint32_t node, std::string_view path, const parcel_descriptor *type,
                           const void *record) {
    written(append_item_line("main", node, path, type, record, json_fields::set, &out_.buffer()));
}

pm_error generated_lines::finish() {
    written(good() ? out_.flush() : pm_error());
    return error_;
}

}  // namespace perf_store
