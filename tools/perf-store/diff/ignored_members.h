// SPDX-License-Identifier: Apache-2.0
// The members that a comparison passes over.
#pragma once

#include <string>
#include <vector>

#include "base/pm_error.h"
#include "perf-store/datasets/member_path.h"

namespace perf_store {

class ignored_members {
public:
    // A member by its name, or by the end of its path, as "Average", "ProbeResults.Average" or
    // "CandidatePaths[0].Preference": without an index, whatever the index. With it goes all that it holds. The error
    // says that no object of a data set has a member of that name.
    [[nodiscard]] pm_error add(const std::string &member);

    // Whether the member that `path` leads to is one of them.
    [[nodiscard]] bool cover(const member_path &path) const;

private:
    struct wanted_step {
        std::string name;
        bool any_index = true;
        std::uint32_t index = 0;  // of the element that is meant
    };
    using wanted_path = std::vector<wanted_step>;

    [[nodiscard]] static bool ends_with(const std::vector<member_path::step> &path, const wanted_path &wanted);

    std::vector<wanted_path> paths_;
};

}  // namespace perf_store
