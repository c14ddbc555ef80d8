// SPDX-License-Identifier: Apache-2.0
// Objects of a data set straight from its text: the kinds of which a set has many.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

#include "perf-store/datasets/record_memory.h"
#include "platform/local/store/branch.h"
#include "platform/local/store/local_store_records.h"
#include "platform/parcel.h"

namespace perf_store {

class json_cursor;

struct direct_item {
    store::branch into;
    std::string_view path;  // of the text
    const parcel_descriptor *type;
    const void *record;  // in the memory
};

struct direct_interface {
    std::uint32_t handle;
    local_interface record;
};

class direct_objects {
public:
    explicit direct_objects(record_memory *memory) : memory_(*memory) {}

    using object = std::variant<std::monostate, direct_item, direct_interface>;

    // The object at the beginning of a terminated text, with its members in the order in which a dump writes them. None
    // for anything else, right or wrong, which the careful reader is for.
    [[nodiscard]] object read(std::string_view text);

    // Bytes of the object, and white space before it; valid after read() gave one.
    [[nodiscard]] std::size_t length() const { return length_; }
    // Whether read() gave none because the text ended.
    [[nodiscard]] bool was_cut() const { return was_cut_; }

private:
    [[nodiscard]] bool read_item(json_cursor *from, direct_item *item);
    [[nodiscard]] bool read_type(json_cursor *from, const parcel_descriptor **type);
    [[nodiscard]] bool read_interface(json_cursor *from, direct_interface *interface);

    record_memory &memory_;
    const parcel_descriptor *last_type_ = nullptr;  // items of a type often come together
    std::size_t length_ = 0;
    bool was_cut_ = false;
};

}  // namespace perf_store
