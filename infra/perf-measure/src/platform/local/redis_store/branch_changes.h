// SPDX-License-Identifier: Apache-2.0
// Changes of a branch that are not in the server yet.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace redis_store {

// Removals of everything below a prefix come before the puts and removals of single items.
class branch_changes {
public:
    // What the changes say about items; `unknown`: nothing, the server has to be asked.
    enum class knowledge { present, absent, unknown, partly };

    void put(std::string_view path, std::string member);
    void remove(std::string_view path);
    void remove_below(std::string_view prefix);
    void clear();

    [[nodiscard]] knowledge about(std::string_view path) const;
    // About the items whose paths begin with `prefix`: `absent` if none, `partly` if both changes and the server tell.
    // `*present` counts those that are put, where that is all there are.
    [[nodiscard]] knowledge below(std::string_view prefix, std::uint64_t *present) const;

    [[nodiscard]] bool empty() const { return items_.empty() && removed_.empty(); }
    [[nodiscard]] const std::vector<std::string> &removed() const { return removed_; }  // prefixes
    // By path: the member to put, or none for an item to remove.
    [[nodiscard]] const std::map<std::string, std::optional<std::string>, std::less<>> &items() const { return items_; }

private:
    std::vector<std::string> removed_;
    std::map<std::string, std::optional<std::string>, std::less<>> items_;
};

}  // namespace redis_store
