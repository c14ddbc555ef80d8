// SPDX-License-Identifier: Apache-2.0
// The lines of a data set: one object each, as JSON, in one form wherever a data set is written.
//
// Each routine appends one line with its newline. On an error nothing is appended, and the error says what
// the object holds that a data set cannot.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/pm_error.h"
#include "perf-store/datasets/record_json.h"
#include "platform/local/store/branch.h"
#include "platform/local/store/local_store_records.h"
#include "platform/parcel.h"

namespace perf_store {

// {"dataset":...}, with which a data set begins.
void append_version_line(std::string *out);

[[nodiscard]] pm_error append_platform_line(const local_platform &record, std::string *out);
[[nodiscard]] pm_error append_node_line(const local_node &record, std::string *out);
[[nodiscard]] pm_error append_interface_line(std::uint32_t handle, const local_interface &record, std::string *out);
// `root` is a word of data sets, "main".
[[nodiscard]] pm_error append_publisher_line(std::string_view root, std::uint32_t node, store::publisher_state state,
                                             std::string *out);
[[nodiscard]] pm_error append_item_line(std::string_view root, std::uint32_t node, std::string_view path,
                                        const parcel_descriptor *type, const void *record, json_fields fields,
                                        std::string *out);

}  // namespace perf_store
