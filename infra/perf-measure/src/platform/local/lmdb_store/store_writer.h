// The store opened for writing: one transaction that is committed whole or leaves no trace.
//
// Every operation returns an empty text, or what went wrong, ready to be shown to the user. A failure
// ends the transaction; the store is then as it was before it began.
#pragma once

#include <cstdint>
#include <lmdb.h>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/local/lmdb_store/store.h"
#include "platform/local/lmdb_store/store_folder.h"

namespace store {

// What put_item says of a record whose arrays nest beyond the codec's limit.
inline constexpr char TOO_DEEP[] = "nested too deeply";

class writer {
public:
    writer() = default;
    ~writer();
    writer(const writer &) = delete;
    writer &operator=(const writer &) = delete;

    // Opens the store that the URL names and begins the transaction, behind another writer's if one is
    // at work. Folder and files are made when they are missing, readable for the folder's group; they are
    // gone again when nothing is committed.
    [[nodiscard]] problem begin(const char *url);

    // Removes everything.
    [[nodiscard]] problem clear();

    [[nodiscard]] problem put_platform(const void *local_platform_record);
    // Replaces the node of the same id in its place, or adds it behind the others.
    [[nodiscard]] problem put_node(std::uint32_t id, const void *local_node_record);
    [[nodiscard]] problem put_interface(std::uint32_t handle, const void *local_interface_record);
    [[nodiscard]] problem put_publisher(root root, std::uint32_t node, publisher_state state);
    // Puts an item under its path, replacing one that is there, and keeps the schema of its type. A
    // branch that gets its first item gets a running publisher with it.
    [[nodiscard]] problem put_item(root root, std::uint32_t node, std::string_view path, const void *record,
                                   const parcel_descriptor *descriptor);

    // Whether there is an item at a path or, if `below` says so, at one that continues it.
    [[nodiscard]] problem has_item(root root, std::uint32_t node, std::string_view path, bool below, bool *found);
    // Removes the item at a path. `*removed` counts what went: 0 when nothing was there.
    [[nodiscard]] problem remove_item(root root, std::uint32_t node, std::string_view path, std::uint64_t *removed);
    // Removes all items whose path continues `path` by one or more components, and adds to `*removed`.
    [[nodiscard]] problem remove_below(root root, std::uint32_t node, std::string_view path, std::uint64_t *removed);

    // Makes everything since `begin` durable.
    [[nodiscard]] problem commit();

private:
    template <class Body>
    [[nodiscard]] problem guarded(Body body);
    [[nodiscard]] problem open();
    [[nodiscard]] int open_environment(bool write_map);
    void cut_to(off_t size) const;
    void restore_size() const;
    [[nodiscard]] problem refuse_foreign_store();
    [[nodiscard]] problem read_everything();
    [[nodiscard]] problem check_format();
    [[nodiscard]] problem read_inventory();
    [[nodiscard]] problem get(std::string_view key, std::string_view *value);
    [[nodiscard]] problem put(std::string_view key, std::string_view value);
    [[nodiscard]] problem put_record(std::string_view key, const void *record, const parcel_descriptor *descriptor);
    [[nodiscard]] problem keep_schema(const parcel_descriptor *descriptor);
    [[nodiscard]] problem ensure_publisher(root root, std::uint32_t node);

    std::string folder_;
    writers_folder place_;
    int data_ = -1;           // the data file, whatever its path names meanwhile
    off_t size_before_ = 0;   // of the data file, as far as a state refers to it
    bool write_map_ = false;  // its pages are written where they are, in the map
    bool committed_ = false;
    MDB_env *env_ = nullptr;
    MDB_txn *txn_ = nullptr;
    MDB_dbi table_ = 0;
    bool damaged_ = false;  // LMDB must not be called any more
    bool inventory_known_ = false;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> nodes_;  // id and position
    std::set<const parcel_descriptor *> kept_schemas_;
    std::set<std::pair<root, std::uint32_t>> known_branches_;
    std::vector<std::uint8_t> parcel_;  // of the record being written, and its sealed value
    std::vector<std::uint8_t> value_;
};

}  // namespace store
