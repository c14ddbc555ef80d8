// SPDX-License-Identifier: Apache-2.0
// Makes and locks the folder, and moves a new store into its place.
#include "platform/local/lmdb_store/writers_folder.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/local/lmdb_store/data_file.h"
#include "platform/local/lmdb_store/table_state.h"

namespace lmdb_store {

namespace {

constexpr mode_t FOLDER_MODE = 0750;
constexpr mode_t ALL_MODES = 07777;
constexpr mode_t SEARCH_BY_ALL = 0111;
constexpr mode_t DATA_MODE = 0640;
constexpr mode_t LOCK_MODE = 0660;
constexpr char MAKING[] = "new-store-";  // and six characters: where a store is made

// What errno says of a folder.
pm_error system_error(const std::string &folder) {
    return pm_error(code_of(errno), folder + ": " + std::strerror(errno));
}

// Removes a folder where a store was made, and nothing that a store does not have.
void remove_making(const std::string &folder) {
    ::unlink(file_in(folder, DATA_FILE).c_str());
    ::unlink(file_in(folder, LOCK_FILE).c_str());
    ::rmdir(folder.c_str());
}

}  // namespace

writers_folder::~writers_folder() {
    if (is_new()) {
        remove_making(making_);
    }
    for (const std::string &each : made_folders_) {
        ::rmdir(each.c_str());  // not when anything else is in it
    }
    if (lock_ >= 0) {
        ::close(lock_);
    }
}

pm_error writers_folder::take(const std::string &folder, bool anew) {
    folder_ = folder;
    do {
        if (pm_error error = make()) {
            return error;
        }
    } while (!lock() && errno == ENOENT);  // another writer has removed what it had made
    if (lock_ < 0) {
        return system_error(folder_);
    }
    remove_leftovers();
    std::error_code none;
    if (!anew && std::filesystem::exists(file_in(folder_, DATA_FILE), none)) {
        return {};
    }
    std::string place = file_in(folder_, MAKING) + "XXXXXX";
    if (::mkdtemp(place.data()) == nullptr) {
        return system_error(folder_);
    }
    making_ = place;
    return {};
}

pm_error writers_folder::make() {
    std::error_code error;
    made_folders_.clear();
    if (std::filesystem::is_directory(folder_, error)) {
        return {};
    }
    for (std::filesystem::path each = folder_; !each.empty() && !std::filesystem::exists(each, error);
         each = each.parent_path()) {
        made_folders_.push_back(each);
    }
    if (!std::filesystem::create_directories(folder_, error) && error) {
        return pm_error(code_of(error.value()), folder_ + ": " + error.message());
    }
    // Whatever the umask: the group reads in the folder, and reaches it through those above that were made for it.
    for (const std::string &each : made_folders_) {
        struct stat status {};
        if (::stat(each.c_str(), &status) == 0) {
            static_cast<void>(::chmod(each.c_str(), (status.st_mode & ALL_MODES) | SEARCH_BY_ALL));
        }
    }
    static_cast<void>(::chmod(folder_.c_str(), FOLDER_MODE));
    return {};
}

// False with errno; ENOENT when the folder that was locked has lost its name meanwhile.
bool writers_folder::lock() {
    const int folder = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) {
        return false;
    }
    bool locked = false;
    do {
        locked = ::flock(folder, LOCK_EX) == 0;
    } while (!locked && errno == EINTR);
    struct stat held {};
    struct stat named {};
    if (locked && ::fstat(folder, &held) == 0 && ::stat(folder_.c_str(), &named) == 0) {
        if (held.st_ino == named.st_ino && held.st_dev == named.st_dev) {
            lock_ = folder;
            return true;
        }
        errno = ENOENT;
    }
    const int reason = errno;
    ::close(folder);
    errno = reason;
    return false;
}

// What writers that were killed have left.
void writers_folder::remove_leftovers() const {
    std::error_code ignored;
    for (const auto &each : std::filesystem::directory_iterator(folder_, ignored)) {
        const std::string name = each.path().filename();
        if (name.starts_with(MAKING) && name.size() == sizeof MAKING - 1 + 6) {
            remove_making(each.path());
        }
    }
}

void writers_folder::give_to_group() const {
    struct stat status {};
    const bool known = ::stat(folder_.c_str(), &status) == 0;
    for (const auto &[name, mode] : {std::pair{DATA_FILE, DATA_MODE}, {LOCK_FILE, LOCK_MODE}}) {
        const std::string path = file_in(place(), name);
        if (known) {
            static_cast<void>(!::chown(path.c_str(), static_cast<uid_t>(-1), status.st_gid));
        }
        static_cast<void>(::chmod(path.c_str(), mode));
    }
}

pm_error writers_folder::settle() {
    if (is_new()) {
        // The data last: a store is there when its data is.
        for (const char *name : {LOCK_FILE, DATA_FILE}) {
            if (::rename(file_in(making_, name).c_str(), file_in(folder_, name).c_str()) != 0) {
                return system_error(folder_);
            }
        }
        ::fsync(lock_);
        ::rmdir(making_.c_str());
        making_.clear();
        made_folders_.clear();
    }
    return {};
}

}  // namespace lmdb_store
