// SPDX-License-Identifier: Apache-2.0
// The folder of a store while a writer is at work in it.
//
// A store that does not exist yet is made in a folder of its own inside this one and comes into its place
// whole, when it is first committed; until then nobody sees a part of it, and if that never comes nothing
// is left behind.
#pragma once

#include <string>
#include <vector>

#include "base/pm_error.h"

namespace lmdb_store {

class writers_folder {
public:
    writers_folder() = default;
    // Removes what was made and not settled.
    ~writers_folder();
    writers_folder(const writers_folder &) = delete;
    writers_folder &operator=(const writers_folder &) = delete;

    // Makes the folder, and its parents, when it is missing, and waits until no other writer is in it. A new store is
    // made when there is none, or when `anew` says so; it takes the place of the old one.
    [[nodiscard]] pm_error take(const std::string &folder, bool anew);

    // Whether the store does not exist yet; and the folder where its files are to be written.
    [[nodiscard]] bool is_new() const { return !making_.empty(); }
    [[nodiscard]] const std::string &place() const { return is_new() ? making_ : folder_; }

    // Gives the files at place() to the folder's group: the data to read, the lock to register its reading
    // beside a writer. Files of another owner stay as they are.
    void give_to_group() const;

    // Brings the files of a store that was made into their place, for good. Of one that was there it
    // changes nothing.
    [[nodiscard]] pm_error settle();

private:
    [[nodiscard]] pm_error make();
    [[nodiscard]] bool lock();
    void remove_leftovers() const;

    std::string folder_;
    std::string making_;                     // empty when the store is there
    std::vector<std::string> made_folders_;  // deepest first
    int lock_ = -1;                          // the folder, locked against other writers
};

}  // namespace lmdb_store
