// SPDX-License-Identifier: Apache-2.0
// An object of a data set whose members have fixed names.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <initializer_list>

#include "base/pm_error.h"
#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/member_path.h"
#include "perf-store/datasets/record_reader.h"

namespace perf_store {

// The first error wins: after it the routines do nothing.
class object_members {
public:
    // Takes an object apart. An unknown or repeated member is an error. The node must outlive this.
    object_members(const json_document *document, member_path *path, record_reader *reader, const json_node &node,
                   std::initializer_list<const char *> names);

    // Calls read(value) when the member is there, with the path naming it. A required member that is not
    // there is an error.
    using member_read = std::function<pm_error(const json_node &value)>;
    void optional(const char *name, const member_read &read);
    void required(const char *name, const member_read &read);

    [[nodiscard]] const pm_error &error() const { return error_; }

private:
    static constexpr std::size_t MAX_MEMBERS = 8;

    [[nodiscard]] pm_error take_apart(const json_document &document);
    [[nodiscard]] const json_node *find(const char *name) const;

    member_path &path_;
    record_reader &reader_;
    const json_node &node_;
    std::size_t count_;
    std::array<const char *, MAX_MEMBERS> names_{};
    std::array<const json_node *, MAX_MEMBERS> values_{};  // null for a member that is not there
    pm_error error_;
};

}  // namespace perf_store
