// Who may read a store.
#pragma once

#include <string>

namespace store {

struct access_state {
    bool data_readable = false;  // the data file is there and may be read
    std::string problem;         // what keeps this user out, and which group's members may read
};

// What this user may do with the store in a folder. The problem is an empty text when there is none, or
// when it is no matter of permission.
[[nodiscard]] access_state check_access(const std::string &folder);

}  // namespace store
