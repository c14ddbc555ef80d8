// SPDX-License-Identifier: Apache-2.0
// A place in a document or a record: "item.record.CandidatePaths[2].Preference".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/pm_error.h"

namespace perf_store {

// The members that are being read, outermost first. Names are not copied.
//
// Readers enter a member before they read its value and leave it when that went well; after an error the
// path stays where it was until it is cleared.
class member_path {
public:
    void enter(std::string_view name) { steps_.push_back({name, 0, false}); }
    void enter(std::uint32_t index) { steps_.push_back({{}, index, true}); }
    void leave() { steps_.pop_back(); }
    void clear() { steps_.clear(); }

    // An error whose text begins with the path and is on one line whatever the names hold. `offset` is the
    // byte of the document that is wrong; it is kept for who wants to name the line.
    [[nodiscard]] pm_error refuse(const std::string &what, std::size_t offset);
    [[nodiscard]] std::size_t error_offset() const { return error_offset_; }

    struct step {
        std::string_view name;
        std::uint32_t index;
        bool is_element;  // of an array
    };
    [[nodiscard]] const std::vector<step> &steps() const { return steps_; }
    // "CandidatePaths[2].Preference"; empty for no member.
    [[nodiscard]] std::string text() const;

private:
    std::vector<step> steps_;
    std::size_t error_offset_ = 0;
};

}  // namespace perf_store
