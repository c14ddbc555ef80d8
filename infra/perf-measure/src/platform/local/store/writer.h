// SPDX-License-Identifier: Apache-2.0
// The interface of a store that is written: one transaction that is committed whole or leaves no trace.
//
// A failure ends the transaction; the store is then as it was before it began. Its text names the store and is ready
// to be shown to the user. A writer that is destroyed before commit() has changed nothing.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/pm_error.h"
#include "platform/local/store/branch.h"
#include "platform/parcel.h"

namespace store {

// Text of the failure of put_item, whose code is ERRCODE_RANGE, for a record whose arrays nest beyond the codec's
// limit.
inline constexpr char TOO_DEEP[] = "nested too deeply";

class writer {
public:
    virtual ~writer() = default;
    writer(const writer &) = delete;
    writer &operator=(const writer &) = delete;

    // Removes everything.
    [[nodiscard]] virtual pm_error clear() = 0;

    [[nodiscard]] virtual pm_error put_platform(const void *local_platform_record) = 0;
    // Replaces the node of the same id in its place, or adds it after the others.
    [[nodiscard]] virtual pm_error put_node(std::uint32_t id, const void *local_node_record) = 0;
    [[nodiscard]] virtual pm_error put_interface(std::uint32_t handle, const void *local_interface_record) = 0;
    [[nodiscard]] virtual pm_error put_publisher(const branch &served, publisher_state state) = 0;
    // Says that the process that serves a branch is running, and vouches for it until `lease_msec` milliseconds after
    // the commit: unless it is put again by then, readers find its publisher stopped.
    [[nodiscard]] virtual pm_error put_leased_publisher(const branch &served, std::uint32_t lease_msec) = 0;
    // Puts an item under its path, of at most MAX_PATH_LENGTH bytes, replacing one that is there, and keeps the
    // schema of its type. A branch that gets its first item gets a running publisher with it.
    [[nodiscard]] virtual pm_error put_item(const branch &into, std::string_view path, const void *record,
                                            const parcel_descriptor *descriptor) = 0;

    // Whether there is an item at a path or, if `below` says so, at one that continues it.
    [[nodiscard]] virtual pm_error has_item(const branch &in, std::string_view path, bool below, bool *found) = 0;
    // Removes the item at a path. `*removed` counts what went: nothing when none was there.
    [[nodiscard]] virtual pm_error remove_item(const branch &from, std::string_view path, std::uint64_t *removed) = 0;
    // Removes all items whose path continues `path` by one or more components, and adds to `*removed`.
    [[nodiscard]] virtual pm_error remove_below(const branch &from, std::string_view path, std::uint64_t *removed) = 0;

    // Makes everything since the beginning durable.
    [[nodiscard]] virtual pm_error commit() = 0;

protected:
    writer() = default;
};

// What a writer does where there is no store. One that replaces begins with an empty store, also where the one that is
// there is damaged or of an earlier format; its place is taken at the commit.
enum class missing_store { make, refuse, replace };

}  // namespace store
