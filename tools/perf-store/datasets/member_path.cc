// SPDX-License-Identifier: Apache-2.0
// The text of a path.
#include "perf-store/datasets/member_path.h"

#include "perf-store/datasets/message_text.h"

namespace perf_store {

pm_error member_path::refuse(const std::string &what, std::size_t offset) {
    error_offset_ = offset;
    return pm_error(on_one_line(text() + (steps_.empty() ? "" : ": ") + what));
}

// Of a path deeper than any that is meant, the middle is left out.
std::string member_path::text() const {
    constexpr std::size_t SHOWN_AT_EACH_END = 16;
    std::string result;
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        if (i == SHOWN_AT_EACH_END && steps_.size() > 2 * SHOWN_AT_EACH_END) {
            i = steps_.size() - SHOWN_AT_EACH_END;
            result += "...";
        }
        if (steps_[i].is_element) {
            result += "[" + std::to_string(steps_[i].index) + "]";
        } else {
            result += (result.empty() ? "" : ".") + excerpt(steps_[i].name);
        }
    }
    return result;
}

}  // namespace perf_store
