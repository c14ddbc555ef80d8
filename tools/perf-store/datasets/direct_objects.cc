// SPDX-License-Identifier: Apache-2.0
// Items and names of interfaces; dataset_loader.cc reads the same and all others from nodes.
#include "perf-store/datasets/direct_objects.h"

#include "perf-store/datasets/dataset_names.h"
#include "perf-store/datasets/direct_reader.h"
#include "perf-store/datasets/json_cursor.h"
#include "perf-store/datasets/value_bytes.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

namespace {

bool take_u32(json_cursor *from, std::uint32_t *value) {
    std::uint64_t number = 0;
    const bool good = from->take_unsigned(MAX_U32, &number);
    *value = static_cast<std::uint32_t>(number);
    return good;
}

bool take_root(json_cursor *from, store::root *root) {
    std::string_view word;
    const store::root_name *const known = from->take_text(&word) ? find_word(store::ROOTS, word) : nullptr;
    if (known == nullptr) {
        return false;
    }
    *root = known->id;
    return true;
}

bool take_path(json_cursor *from, std::string_view *path) {
    return from->take_text(path) && !path->empty() && path->front() != '/' && path->size() <= store::MAX_PATH_LENGTH;
}

}  // namespace

bool direct_objects::read_type(json_cursor *from, const parcel_descriptor **type) {
    std::string_view name;
    if (!from->take_text(&name)) {
        return false;
    }
    if (last_type_ == nullptr || name != last_type_->name) {
        last_type_ = pm_find_descriptor(name);
    }
    *type = last_type_;
    return last_type_ != nullptr;
}

bool direct_objects::read_item(json_cursor *from, direct_item *item) {
    return from->take('{') && from->take_name("root") && take_root(from, &item->into.data_root) &&  //
           from->take(',') && from->take_name("node") && take_u32(from, &item->into.node) &&        //
           from->take(',') && from->take_name("path") && take_path(from, &item->path) &&            //
           from->take(',') && from->take_name("type") && read_type(from, &item->type) &&            //
           from->take(',') && from->take_name("record") &&
           direct_reader(from, &memory_).read(item->type, &item->record) && from->take('}');
}

bool direct_objects::read_interface(json_cursor *from, direct_interface *interface) {
    return from->take('{') && from->take_name("handle") && take_u32(from, &interface->handle) &&  //
           from->take(',') && from->take_name("name") &&
           direct_reader(from, &memory_).keep_text(&interface->record.Name) && from->take('}');
}

direct_objects::object direct_objects::read(std::string_view text) {
    json_cursor from(text);
    object result;
    if (from.take('{')) {
        if (from.take_name("item")) {
            direct_item item{};
            if (read_item(&from, &item)) {
                result = item;
            }
        } else if (from.take_name("interface")) {
            direct_interface interface {};
            if (read_interface(&from, &interface)) {
                result = interface;
            }
        }
    }
    if (!from.take('}')) {
        result = {};
    }
    length_ = from.passed();
    was_cut_ = from.is_at_end();
    return result;
}

}  // namespace perf_store
