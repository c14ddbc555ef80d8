// See store_writer.h.
#include "platform/local/lmdb_store/store_writer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"

namespace store {

namespace {

constexpr std::size_t LARGEST_MAP = 64UL << 30;  // address space, not memory; the file grows as it is filled
constexpr std::size_t SMALLEST_MAP = 1UL << 30;
constexpr mode_t FILE_MODE = 0640;

constexpr fsblkcnt_t FEW_BLOCKS = 16;

constexpr char NOT_OURS[] = "not a perf-show store";

// A file of the store that may be of any size is mapped for writing whole: what a transaction writes then
// takes no memory of the process, however much it is.
bool may_be_any_size() {
    rlimit limit{};
    return ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
}

// Whether the file system of a folder is full, as far as anything of our size can tell.
bool is_full(const std::string &folder) {
    struct statvfs status {};
    return ::statvfs(folder.c_str(), &status) == 0 && status.f_bavail < FEW_BLOCKS;
}

// What the keys of the items begin with whose paths continue the one of `key` by one or more components.
std::string prefix_below(const std::string &key, std::string_view path) {
    return path.empty() || path.ends_with('/') ? key : key + '/';
}

// What a failure of LMDB means to the user.
problem describe(const std::string &folder, int failure) {
    switch (failure) {
    case MDB_MAP_FULL: return folder + ": the store is full";
    case MDB_INVALID: return folder + ": " + NOT_OURS;
    case MDB_CORRUPTED:
    case MDB_PAGE_NOTFOUND:
    case MDB_BAD_TXN:
    case MDB_PANIC:
    case MDB_CURSOR_FULL: return folder + ": " + errcode_strerror(OPSTORE_DAMAGED);
    default: return folder + ": " + mdb_strerror(failure);
    }
}

}  // namespace

// Runs body(), which returns an LMDB result, so that a fault in it becomes an error. After one LMDB is
// not called again: its locks are released when the process ends.
template <class Body>
problem writer::guarded(Body body) {
    if (damaged_) {
        return folder_ + ": " + errcode_strerror(OPSTORE_DAMAGED);
    }
    int failure = 0;
    const errcode code = fault_guard::guarded([&] {
        failure = body();
        return ERRCODE_SUCCESS;
    });
    if (code != ERRCODE_SUCCESS) {
        damaged_ = true;
        // A page of the map that the file system has no room for is a fault like one of a file cut short.
        return folder_ + ": " + (write_map_ && is_full(folder_) ? std::strerror(ENOSPC) : errcode_strerror(code));
    }
    return failure == 0 ? "" : describe(folder_, failure);
}

writer::~writer() {
    if (!damaged_ && env_ != nullptr) {
        const problem ignored = guarded([&] {
            if (txn_ != nullptr) {
                mdb_txn_abort(txn_);
            }
            return 0;
        });
    }
    if (!committed_) {
        restore_size();
    }
    if (!damaged_ && env_ != nullptr) {
        const problem ignored = guarded([&] {
            mdb_env_close(env_);
            return 0;
        });
    }
    if (data_ >= 0) {
        ::close(data_);
    }
}

problem writer::begin(const char *url) {
    const char *folder = folder_of(url);
    if (folder == nullptr) {
        return std::string(url) + ": a store is named lmdb:FOLDER";
    }
    folder_ = folder;
    occupy_standard_files();
    if (problem failure = place_.take(folder_); !failure.empty()) {
        return failure;
    }
    fault_guard::install();
    if (!place_.is_new() && check_file(folder) == OPSTORE_DAMAGED) {
        return folder_ + ": " + NOT_OURS;
    }
    if (problem failure = refuse_foreign_store(); !failure.empty()) {
        return failure;
    }
    // A page that is missing has to stay missing until it is found: mapped for writing, it would be made.
    const bool suspect = !place_.is_new() && ends_early(folder);
    write_map_ = may_be_any_size() && !suspect;
    problem failure = open();
    if (failure.empty() && suspect) {
        failure = read_everything();
    }
    return failure.empty() ? check_format() : failure;
}

// Leaves a store of another program as it is, its locks and its size included: it is read only.
problem writer::refuse_foreign_store() {
    struct stat status {};
    if (place_.is_new() || ::stat((folder_ + "/" + DATA_FILE).c_str(), &status) != 0 || status.st_size == 0) {
        return "";
    }
    // What a writer that was killed has left behind the data is not worth restoring.
    const auto accounted = static_cast<off_t>(accounted_size(folder_.c_str()));
    size_before_ = accounted != 0 ? std::min(status.st_size, accounted) : status.st_size;
    bool is_ours = true;
    const problem failure = guarded([&] {
        MDB_env *env = nullptr;
        MDB_txn *txn = nullptr;
        MDB_dbi table = 0;
        int code = create_environment(&env);
        code = code != 0 ? code : mdb_env_open(env, folder_.c_str(), MDB_RDONLY | MDB_NOLOCK | MDB_NOTLS, 0);
        code = code != 0 ? code : mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn);
        if (code == 0 && (code = mdb_dbi_open(txn, nullptr, 0, &table)) == 0) {
            code = view(txn, table).check_format(&is_ours) == ERRCODE_SUCCESS ? 0 : MDB_CORRUPTED;
        }
        mdb_txn_abort(txn);
        mdb_env_close(env);
        return code == ENOMEM ? 0 : code;  // too little address space for its map; check_format() comes later
    });
    return failure.empty() && !is_ours ? folder_ + ": " + NOT_OURS : failure;
}

// Opens the environment with the largest map that there is address space for. What is behind the data of a file
// that is mapped for writing is empty: reading ahead would fill memory with it.
int writer::open_environment(bool write_map) {
    int code = ENOMEM;
    for (std::size_t map = LARGEST_MAP; map >= SMALLEST_MAP && code == ENOMEM; map /= 2) {
        mdb_env_close(env_);
        env_ = nullptr;
        code = create_environment(&env_);
        if (code == 0) {
            mdb_env_set_mapsize(env_, map);
            code = mdb_env_open(env_, place_.place().c_str(), write_map ? MDB_WRITEMAP | MDB_NORDAHEAD : 0, FILE_MODE);
        }
    }
    return code;
}

problem writer::open() {
    const mode_t old_mask = ::umask(0007);
    problem failure = guarded([&] {
        int code = open_environment(write_map_);
        if (code > 0 && write_map_) {  // the file system has no such files or no such maps
            static_cast<void>(!::truncate((place_.place() + "/" + DATA_FILE).c_str(), size_before_));
            write_map_ = false;
            code = open_environment(write_map_);
        }
        int file = -1;
        if (code == 0 && mdb_env_get_fd(env_, &file) == 0) {
            data_ = ::fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        }
        return code;
    });
    ::umask(old_mask);
    if (!failure.empty()) {
        return failure;
    }
    place_.give_to_group();
    return guarded([&] {
        int cleared = 0;
        mdb_reader_check(env_, &cleared);  // slots of readers that were killed would keep pages in use
        const int code = mdb_txn_begin(env_, nullptr, 0, &txn_);
        return code != 0 ? code : mdb_dbi_open(txn_, nullptr, 0, &table_);
    });
}

void writer::cut_to(off_t size) const {
    struct stat status {};
    if (data_ >= 0 && ::fstat(data_, &status) == 0 && size < status.st_size) {
        static_cast<void>(!::ftruncate(data_, size));
    }
}

// A file that is mapped for writing is made as large as its map, another one grows. Takes that back, but nothing
// that the head refers to.
void writer::restore_size() const {
    cut_to(std::max(size_before_, static_cast<off_t>(accounted_size(place_.place().c_str()))));
}

// Touches every key and value, so that a page that is missing is found before anything is written.
problem writer::read_everything() {
    return guarded([&] {
        volatile char sink = 0;
        constexpr std::string_view BELOW_ALL("\0", 1);  // LMDB takes no empty key
        const errcode code = view(txn_, table_).scan("", BELOW_ALL, [&](std::string_view key, std::string_view value) {
            sink = static_cast<char>(sink + key.back() + (value.empty() ? 0 : value.back()));
            return true;
        });
        return code == ERRCODE_SUCCESS ? 0 : MDB_CORRUPTED;
    });
}

problem writer::check_format() {
    bool is_ours = false;
    std::string_view format;
    problem failure =
        guarded([&] { return view(txn_, table_).check_format(&is_ours) == ERRCODE_SUCCESS ? 0 : MDB_CORRUPTED; });
    if (failure.empty()) {
        failure = is_ours ? get(key(key_space::format), &format) : folder_ + ": " + NOT_OURS;
    }
    return failure.empty() && format.empty() ? put(key(key_space::format), FORMAT) : failure;
}

problem writer::read_inventory() {
    if (inventory_known_) {
        return "";
    }
    inventory_known_ = true;
    const std::string prefix = key(key_space::node);
    std::vector<std::string> parcels;
    std::vector<std::uint32_t> positions;
    problem failure = guarded([&] {
        const errcode code = view(txn_, table_).scan(prefix, "", [&](std::string_view found, std::string_view value) {
            std::uint32_t position = 0;
            for (const char byte : found.substr(prefix.size())) {
                position = position << 8 | static_cast<std::uint8_t>(byte);
            }
            positions.push_back(position);
            parcels.emplace_back(unseal(found, value));
            return true;
        });
        return code == ERRCODE_SUCCESS ? 0 : MDB_CORRUPTED;
    });
    for (std::size_t i = 0; failure.empty() && i < parcels.size(); ++i) {
        local_node node{};
        const errcode code = parcel_decode(parcels[i].data(), static_cast<std::uint32_t>(parcels[i].size()), &node,
                                           local_node_descriptor());
        if (code != ERRCODE_SUCCESS) {
            return folder_ + ": the inventory cannot be read: " + errcode_strerror(code);
        }
        nodes_.emplace_back(node.Id, positions[i]);
        parcel_free_indirections(&node, local_node_descriptor());
    }
    return failure;
}

problem writer::clear() {
    nodes_.clear();
    inventory_known_ = true;  // and empty, whatever was there
    kept_schemas_.clear();
    known_branches_.clear();
    problem failure = guarded([&] { return mdb_drop(txn_, table_, 0); });
    return failure.empty() ? put(key(key_space::format), FORMAT) : failure;
}

// An absent key gives an empty value.
problem writer::get(std::string_view key, std::string_view *value) {
    return guarded([&] {
        MDB_val wanted = detail::to_value(key);
        MDB_val found{};
        const int code = mdb_get(txn_, table_, &wanted, &found);
        *value = code == 0 ? detail::to_view(found) : std::string_view{};
        return code == MDB_NOTFOUND ? 0 : code;
    });
}

problem writer::put(std::string_view key, std::string_view value) {
    return guarded([&] {
        MDB_val to = detail::to_value(key);
        MDB_val bytes = detail::to_value(value);
        return mdb_put(txn_, table_, &to, &bytes, 0);
    });
}

problem writer::put_record(std::string_view key, const void *record, const parcel_descriptor *descriptor) {
    parcel_.clear();
    if (const errcode failure = parcel_encode(record, descriptor, &parcel_); failure != ERRCODE_SUCCESS) {
        return failure == ERRCODE_RANGE ? TOO_DEEP : std::string(descriptor->name) + ": " + errcode_strerror(failure);
    }
    if (problem failure = keep_schema(descriptor); !failure.empty()) {
        return failure;
    }
    seal(key, {reinterpret_cast<const char *>(parcel_.data()), parcel_.size()}, &value_);
    return put(key, {reinterpret_cast<const char *>(value_.data()), value_.size()});
}

problem writer::keep_schema(const parcel_descriptor *descriptor) {
    if (!kept_schemas_.insert(descriptor).second) {
        return "";
    }
    return put(schema_key(parcel_fingerprint(descriptor)), descriptor->schema);
}

problem writer::put_platform(const void *local_platform_record) {
    return put_record(key(key_space::platform), local_platform_record, local_platform_descriptor());
}

problem writer::put_node(std::uint32_t id, const void *local_node_record) {
    if (problem failure = read_inventory(); !failure.empty()) {
        return failure;
    }
    auto place = std::find_if(nodes_.begin(), nodes_.end(), [&](const auto &each) { return each.first == id; });
    if (place == nodes_.end()) {
        nodes_.emplace_back(id, nodes_.empty() ? 0 : nodes_.back().second + 1);
        place = nodes_.end() - 1;
    }
    return put_record(key(key_space::node, place->second), local_node_record, local_node_descriptor());
}

problem writer::put_interface(std::uint32_t handle, const void *local_interface_record) {
    return put_record(key(key_space::interface, handle), local_interface_record, local_interface_descriptor());
}

problem writer::put_publisher(root root, std::uint32_t node, publisher_state state) {
    known_branches_.emplace(root, node);
    const local_publisher record{static_cast<std::uint32_t>(state)};
    return put_record(branch_key(key_space::publisher, root, node), &record, local_publisher_descriptor());
}

problem writer::ensure_publisher(root root, std::uint32_t node) {
    if (!known_branches_.emplace(root, node).second) {
        return "";
    }
    std::string_view known;
    if (problem failure = get(branch_key(key_space::publisher, root, node), &known); !failure.empty()) {
        return failure;
    }
    return known.empty() ? put_publisher(root, node, publisher_state::running) : "";
}

problem writer::put_item(root root, std::uint32_t node, std::string_view path, const void *record,
                         const parcel_descriptor *descriptor) {
    if (problem failure = ensure_publisher(root, node); !failure.empty()) {
        return failure;
    }
    std::string to = branch_key(key_space::item, root, node);
    to += path;
    return put_record(to, record, descriptor);
}

problem writer::has_item(root root, std::uint32_t node, std::string_view path, bool below, bool *found) {
    const std::string key = branch_key(key_space::item, root, node) + std::string(path);
    std::string_view value;
    problem failure = get(key, &value);
    *found = !value.empty();
    if (*found || !below || !failure.empty()) {
        return failure;
    }
    const std::string prefix = prefix_below(key, path);
    return guarded([&] {
        const errcode code = view(txn_, table_).scan(prefix, "", [&](std::string_view, std::string_view) {
            *found = true;
            return false;
        });
        return code == ERRCODE_SUCCESS ? 0 : MDB_CORRUPTED;
    });
}

problem writer::remove_item(root root, std::uint32_t node, std::string_view path, std::uint64_t *removed) {
    std::string key = branch_key(key_space::item, root, node);
    key += path;
    return guarded([&] {
        MDB_val item = detail::to_value(key);
        const int code = mdb_del(txn_, table_, &item, nullptr);
        *removed += code == 0 ? 1 : 0;
        return code == MDB_NOTFOUND ? 0 : code;
    });
}

problem writer::remove_below(root root, std::uint32_t node, std::string_view path, std::uint64_t *removed) {
    const std::string prefix = prefix_below(branch_key(key_space::item, root, node) + std::string(path), path);
    return guarded([&] {
        MDB_cursor *cursor = nullptr;
        MDB_val key = detail::to_value(prefix);
        MDB_val value{};
        int code = mdb_cursor_open(txn_, table_, &cursor);
        if (code != 0) {
            return code;
        }
        code = mdb_cursor_get(cursor, &key, &value, MDB_SET_RANGE);
        while (code == 0 && detail::to_view(key).starts_with(prefix)) {
            code = mdb_cursor_del(cursor, 0);
            *removed += code == 0 ? 1 : 0;
            if (code == 0) {  // the cursor stands where the item was, on the next one
                code = mdb_cursor_get(cursor, &key, &value, MDB_GET_CURRENT);
                code = code == EINVAL ? MDB_NOTFOUND : code;
            }
        }
        mdb_cursor_close(cursor);
        return code == MDB_NOTFOUND ? 0 : code;
    });
}

problem writer::commit() {
    off_t size = 0;
    problem failure = guarded([&] {
        MDB_txn *txn = txn_;
        txn_ = nullptr;
        const int code = mdb_txn_commit(txn);
        MDB_envinfo info{};
        MDB_stat stat{};
        if (code == 0 && mdb_env_info(env_, &info) == 0 && mdb_env_stat(env_, &stat) == 0) {
            size = static_cast<off_t>((info.me_last_pgno + 1) * stat.ms_psize);
        }
        return code;
    });
    committed_ = failure.empty();
    if (size > 0) {  // as far as its head says, so that one cut short is told from a whole one
        cut_to(size);
    }
    return committed_ ? place_.settle() : failure;
}

}  // namespace store
