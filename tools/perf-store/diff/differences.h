// SPDX-License-Identifier: Apache-2.0
// The lines that tell what differs.
#pragma once

#include <string>
#include <string_view>

#include "base/pm_error.h"
#include "perf-store/datasets/member_path.h"
#include "perf-store/datasets/output_file.h"

namespace perf_store {

// What lines call the type of an item's record, and the order of the inventory.
inline constexpr char TYPE_MEMBER[] = "type";
inline constexpr char ORDER_MEMBER[] = "order";

// Each line begins with the object that it is about, as describe_object names it.
class differences {
public:
    explicit differences(output_file *out) : out_(*out) {}

    // The object of the lines that follow.
    void begin_object(std::string object) { object_ = std::move(object); }

    // "OBJECT: added" and "OBJECT: removed".
    void object(const char *what);
    // "OBJECT MEMBER: OLD -> NEW", with ", NOTE" unless that is empty. Values are JSON.
    void changed(const member_path &member, std::string_view from, std::string_view to, std::string_view note = {});
    // "OBJECT MEMBER: added VALUE", or removed.
    void element(const member_path &member, const char *what, std::string_view value);

    [[nodiscard]] bool any() const { return any_; }
    [[nodiscard]] pm_error flush_when_full() { return out_.flush_when_full(); }

private:
    void begin_line(const member_path &member);

    output_file &out_;
    std::string object_;
    bool any_ = false;
};

inline constexpr char ADDED[] = "added";
inline constexpr char REMOVED[] = "removed";

}  // namespace perf_store
