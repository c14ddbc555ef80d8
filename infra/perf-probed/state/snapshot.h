// SPDX-License-Identifier: Apache-2.0
// Records on their way into the store: built by the thread that measures, written by the one that publishes.
//
// A snapshot owns the memory of all its records, which are never changed once they are in it.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/local/store/branch.h"
#include "platform/parcel.h"

namespace probed {

// Memory for records and what hangs off them.
class record_arena {
public:
    // Zeroed.
    template <class T>
    [[nodiscard]] T *make(std::size_t count = 1) {
        static_assert(std::is_trivially_destructible_v<T>);
        T *const objects = static_cast<T *>(memory_.allocate(count * sizeof(T), alignof(T)));
        for (std::size_t index = 0; index < count; ++index) {
            new (objects + index) T{};
        }
        return objects;
    }
    // A terminated copy.
    [[nodiscard]] const char *text(std::string_view from) {
        char *const copy = make<char>(from.size() + 1);
        from.copy(copy, from.size());
        return copy;
    }
    template <class T>
    [[nodiscard]] parcel_array<T> array(std::size_t count) {
        return {static_cast<std::uint32_t>(count), count == 0 ? nullptr : make<T>(count)};
    }

private:
    std::pmr::monotonic_buffer_resource memory_{16 * 1024};
};

struct published_item {
    store::root root;
    std::string path;  // below the branch
    const parcel_descriptor *descriptor;
    const void *record;
};

struct removed_item {
    store::root root;
    std::string path;
};

struct named_interface {
    std::uint32_t handle;
    std::string name;
};

struct snapshot {
    record_arena arena;
    std::vector<published_item> items;
    std::vector<removed_item> removed;
    std::vector<named_interface> interfaces;
    std::string node_name;
    std::uint32_t node = 0;
    bool is_everything = false;  // what the store holds of this node goes first

    template <class Record>
    Record *add(store::root root, std::string path, const parcel_descriptor *descriptor) {
        Record *const record = arena.make<Record>();
        items.push_back({root, std::move(path), descriptor, record});
        return record;
    }
    template <class Record>
    Record *add_main(std::string path, const parcel_descriptor *descriptor) {
        return add<Record>(store::root::main, std::move(path), descriptor);
    }
};

}  // namespace probed
