// SPDX-License-Identifier: Apache-2.0
// A folder of a test's own, below TMPDIR or /tmp.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

// A folder that is removed with all it holds.
class temporary_folder {
public:
    temporary_folder() {
        std::string name = (std::filesystem::temp_directory_path() / "perf-show-test-XXXXXX").string();
        path_ = mkdtemp(name.data()) != nullptr ? name : "";
    }
    ~temporary_folder() { std::filesystem::remove_all(path_); }
    temporary_folder(const temporary_folder &) = delete;
    temporary_folder &operator=(const temporary_folder &) = delete;

    [[nodiscard]] const std::string &path() const { return path_; }  // empty when it could not be made

private:
    std::string path_;
};
