// See store.h.
#include "platform/local/lmdb_store/store.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/local/codec/checksum.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/lmdb_store/store_folder.h"

namespace store {

namespace {

// One of the two meta pages at the start of an LMDB file. The one with the later transaction counts.
struct meta_page {
    std::uint8_t page_header[16];
    std::uint32_t magic;
    std::uint32_t version;
    std::uint64_t address;
    std::uint64_t map_size;
    std::uint32_t page_size;
    std::uint8_t trees[92];
    std::uint64_t last_page;
    std::uint64_t transaction;
};
static_assert(sizeof(meta_page) == 152);

constexpr std::uint32_t LMDB_MAGIC = 0xBEEFC0DE;
constexpr std::uint32_t LMDB_VERSION = 1;

// Sizes of the map that LMDB takes for another one.
constexpr std::size_t RECORDED_MAP = 0;
constexpr std::size_t SMALLEST_MAP = 1;  // what the file holds

bool read_meta(int file, std::uint64_t at, meta_page *meta) {
    return ::pread(file, meta, sizeof *meta, static_cast<off_t>(at)) == static_cast<ssize_t>(sizeof *meta) &&
           meta->magic == LMDB_MAGIC && meta->version == LMDB_VERSION;
}

// How far a data file reaches: by its own account, and by its length.
struct extent {
    std::uint64_t accounted = 0;  // bytes
    std::uint64_t length = 0;
};

// False when the file has no sound head.
bool read_extent(int file, extent *out) {
    meta_page first{};
    meta_page second{};
    if (!read_meta(file, 0, &first) || first.page_size < 512 || first.page_size > 65536 ||
        (first.page_size & (first.page_size - 1)) != 0 || !read_meta(file, first.page_size, &second) ||
        second.page_size != first.page_size) {
        return false;
    }
    const std::uint64_t last_page = first.transaction > second.transaction ? first.last_page : second.last_page;
    struct stat status {};
    const bool known = ::fstat(file, &status) == 0;
    *out = {(last_page + 1) * first.page_size, known ? static_cast<std::uint64_t>(status.st_size) : 0};
    return true;
}

// The same of the data file in a folder.
errcode read_extent(const char *folder, extent *out) {
    const std::string path = std::string(folder) + "/data.mdb";
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return code_of(errno);
    }
    const bool sound = read_extent(file, out);
    ::close(file);
    return sound ? ERRCODE_SUCCESS : OPSTORE_DAMAGED;
}

template <class Number>
void append_big_endian(Number number, std::string *to) {
    for (int shift = static_cast<int>(sizeof number) * 8 - 8; shift >= 0; shift -= 8) {
        to->push_back(static_cast<char>(number >> shift));
    }
}

// The schema source of the parcel codec: schemas are kept under their fingerprint. A filter decodes records while
// a state is read; a second reading could move the map under it.
bool stored_schema(std::uint64_t fingerprint, std::string *schema) {
    environment *store = nullptr;
    if (environment::shared(&store) != ERRCODE_SUCCESS) {
        return false;
    }
    const std::string key = schema_key(fingerprint);
    std::string_view text;
    std::size_t length = 0;
    schema->clear();
    return store->read_further([&](const view &state) {
        const errcode failure = state.get(key, &text);
        if (failure == ERRCODE_SUCCESS) {
            length = text.size();
            schema->resize(length);
            std::memcpy(schema->data(), text.data(), length);
        }
        return failure;
    }) == ERRCODE_SUCCESS;
}

}  // namespace

std::string key(key_space space) { return {static_cast<char>(space)}; }

std::string key(key_space space, std::uint32_t number) {
    std::string result = key(space);
    append_big_endian(number, &result);
    return result;
}

std::string schema_key(std::uint64_t fingerprint) {
    std::string result = key(key_space::schema);
    append_big_endian(fingerprint, &result);
    return result;
}

std::string branch_key(key_space space, root root, std::uint32_t node) {
    std::string result = key(space);
    result.push_back(static_cast<char>(root));
    append_big_endian(node, &result);
    return result;
}

const char *folder_of(const char *url) {
    constexpr std::string_view SCHEME = "lmdb:";
    return std::string_view(url).starts_with(SCHEME) && url[SCHEME.size()] != '\0' ? url + SCHEME.size() : nullptr;
}

const char *configured_url() {
    const char *url = std::getenv("OPSTORE_URL");
    return url != nullptr && *url != '\0' ? url : DEFAULT_URL;
}

errcode code_of(int failure) {
    switch (failure) {
    case 0: return ERRCODE_SUCCESS;
    case MDB_NOTFOUND: return ERRCODE_NOT_FOUND;
    case ENOMEM: return ERRCODE_NO_MEMORY;
    case ENOENT:
    case ENOTDIR:
    case EACCES:
    case EPERM:
    case EROFS: return OPSTORE_NO_CLIENT;
    case MDB_READERS_FULL:
    case EAGAIN:
    case EMFILE:
    case ENFILE: return OPSTORE_BUSY;
    default: return OPSTORE_DAMAGED;
    }
}

errcode view::get(std::string_view key, std::string_view *value) const {
    MDB_val wanted = detail::to_value(key);
    MDB_val found{};
    const int failure = mdb_get(txn_, table_, &wanted, &found);
    if (failure == 0) {
        *value = detail::to_view(found);
    }
    return code_of(failure);
}

errcode view::check_format(bool *is_ours) const {
    const char format_key = static_cast<char>(key_space::format);  // no string: a fault may end this
    std::string_view format;
    const errcode code = get({&format_key, 1}, &format);
    if (code == ERRCODE_NOT_FOUND) {
        *is_ours = entries() == 0;
        return ERRCODE_SUCCESS;
    }
    *is_ours = format == FORMAT;
    return code;
}

std::size_t view::entries() const {
    MDB_stat stat{};
    return mdb_stat(txn_, table_, &stat) == 0 ? stat.ms_entries : 0;
}

errcode view::get_parcel(std::string_view key, std::string_view *parcel) const {
    std::string_view value;
    const errcode failure = get(key, &value);
    if (failure != ERRCODE_SUCCESS) {
        return failure;
    }
    *parcel = unseal(key, value);
    return parcel->empty() ? OPSTORE_DAMAGED : ERRCODE_SUCCESS;
}

void seal(std::string_view key, std::string_view parcel, std::vector<std::uint8_t> *value) {
    const std::uint64_t sum = checksum(key.data(), key.size());
    value->resize(sizeof sum + parcel.size());
    std::memcpy(value->data(), &sum, sizeof sum);
    std::memcpy(value->data() + sizeof sum, parcel.data(), parcel.size());
}

std::string_view unseal(std::string_view key, std::string_view value) {
    const std::uint64_t sum = checksum(key.data(), key.size());
    if (value.size() < sizeof sum || std::memcmp(value.data(), &sum, sizeof sum) != 0) {
        return {};
    }
    return value.substr(sizeof sum);
}

errcode check_file(const char *folder) {
    extent ignored;
    return read_extent(folder, &ignored);
}

bool ends_early(const char *folder) {
    extent found;
    return read_extent(folder, &found) == ERRCODE_SUCCESS && found.accounted > found.length;
}

std::uint64_t accounted_size(const char *folder) {
    extent found;
    return read_extent(folder, &found) == ERRCODE_SUCCESS ? found.accounted : 0;
}

void occupy_standard_files() {
    int file = 0;
    do {
        file = ::open("/dev/null", O_PATH);
    } while (file >= 0 && file <= STDERR_FILENO);
    if (file >= 0) {
        ::close(file);
    }
}

int create_environment(MDB_env **env) {
    occupy_standard_files();
    const int failure = mdb_env_create(env);
    if (failure != 0) {
        return failure;
    }
    mdb_env_set_maxreaders(*env, MAX_READERS);
    return mdb_env_set_assert(*env, [](MDB_env *, const char *) { fault_guard::abandon(); });
}

errcode environment::shared(environment **out) {
    static environment the_environment;
    *out = &the_environment;
    if (the_environment.env_ != nullptr) {
        return ERRCODE_SUCCESS;
    }
    const char *folder = folder_of(configured_url());
    return folder == nullptr ? OPSTORE_NO_CLIENT : the_environment.open(folder);
}

errcode environment::open(const char *folder) {
    folder_ = folder;
    if (const errcode failure = check_file(folder); failure != ERRCODE_SUCCESS) {
        return failure;
    }
    fault_guard::install();
    bool left = false;
    const errcode result = fault_guard::guarded([&] {
        const int failure = open_file();
        left = true;
        return code_of(failure);
    });
    if (!left) {
        broken_ = OPSTORE_DAMAGED;
    }
    if (result != ERRCODE_SUCCESS) {
        if (left) {
            mdb_env_close(env_);
            env_ = nullptr;
        }
        return result;
    }
    parcel_set_schema_source(stored_schema);
    // The one table is open in every transaction; its first read tells whether the store is ours.
    const errcode failure = read([](const view &state) {
        bool is_ours = false;
        const errcode code = state.check_format(&is_ours);
        return code == ERRCODE_SUCCESS && is_ours ? ERRCODE_SUCCESS : OPSTORE_DAMAGED;
    });
    if (failure == OPSTORE_DAMAGED) {
        broken_ = OPSTORE_DAMAGED;
    }
    return failure;
}

// Opens the data file. The map that it records is address space which a limited process may not have; then
// the map is as large as what is in the file.
int environment::open_file() {
    // A lock file that LMDB makes for a reader shuts everybody else out; a store copied without one is read
    // without a slot.
    unlocked_ = unlocked_ || ::access((folder_ + "/" + LOCK_FILE).c_str(), F_OK) != 0;
    int failure = ENOMEM;
    for (const std::size_t map : {RECORDED_MAP, SMALLEST_MAP}) {
        mdb_env_close(env_);
        env_ = nullptr;
        failure = create_environment(&env_);
        if (failure == 0 && map != RECORDED_MAP) {
            failure = mdb_env_set_mapsize(env_, map);
        }
        if (failure == 0) {
            failure = mdb_env_open(env_, folder_.c_str(), MDB_RDONLY | MDB_NOTLS | (unlocked_ ? MDB_NOLOCK : 0U), 0);
        }
        if (failure != ENOMEM) {
            break;
        }
    }
    return failure;
}

// Opens the store again, without its lock file.
int environment::open_unlocked() {
    unlocked_ = true;
    return open_file();
}

// Maps what writers have added. After a failure there is no map.
int environment::follow_map() {
    const int failure = mdb_env_set_mapsize(env_, SMALLEST_MAP);
    if (failure != 0) {
        broken_ = code_of(failure);
    }
    return failure;
}

// Whether a writer may have used pages of the state that was read without a slot: those that it frees
// are used again by the second transaction after the one that freed them.
bool environment::overtaken(MDB_txn *txn) const {
    MDB_envinfo info{};
    return unlocked_ && mdb_env_info(env_, &info) == 0 && info.me_last_txnid > mdb_txn_id(txn) + 1;
}

int environment::begin(MDB_txn **txn) {
    int failure = mdb_txn_begin(env_, nullptr, MDB_RDONLY, txn);
    if ((failure == EAGAIN || failure == EACCES) && !unlocked_) {  // a process of our number has the slot
        failure = open_unlocked();
        failure = failure != 0 ? failure : mdb_txn_begin(env_, nullptr, MDB_RDONLY, txn);
    }
    for (int tries = 0; failure == MDB_MAP_RESIZED && tries < MAX_TRIES; ++tries) {
        failure = follow_map();
        failure = failure != 0 ? failure : mdb_txn_begin(env_, nullptr, MDB_RDONLY, txn);
    }
    if (failure == MDB_READERS_FULL) {  // slots of readers that were killed
        int cleared = 0;
        mdb_reader_check(env_, &cleared);
        failure = mdb_txn_begin(env_, nullptr, MDB_RDONLY, txn);
    }
    if (failure == 0) {
        failure = mdb_dbi_open(*txn, nullptr, 0, &table_);
        if (failure != 0) {
            mdb_txn_abort(*txn);
        }
    }
    return failure;
}

errcode environment::get_record(std::string_view key, void *record, const parcel_descriptor *descriptor) {
    std::vector<std::uint8_t> parcel;
    const errcode failure = read([&](const view &state) {
        std::string_view value;
        const errcode code = state.get_parcel(key, &value);
        if (code == ERRCODE_SUCCESS) {
            parcel.resize(value.size());
            std::memcpy(parcel.data(), value.data(), value.size());
        }
        return code;
    });
    if (failure != ERRCODE_SUCCESS) {
        return failure;
    }
    return parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), record, descriptor);
}

}  // namespace store
