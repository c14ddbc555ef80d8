// Who may read a store.
#pragma once

#include <string>

namespace store {

// What keeps this user from reading the store in a folder, and which group's members may; an empty text
// when nothing does, or when it is no matter of permission.
[[nodiscard]] std::string access_problem(const std::string &folder);

}  // namespace store
